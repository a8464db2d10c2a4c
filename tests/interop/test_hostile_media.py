#!/usr/bin/python3
"""A medium that was made to erase or overwrite what lies beside it: whatever its names and links lead to, no command
changes anything there, and what is good on it goes on working. And one that was cut short, of which no command passes
by, or gives up, what is lost.
"""

import os
import pathlib
import shutil
import unittest
import unittest.mock

from pydicom import dcmread

import media_tree
import medium_test
import program

SERIES = "1.2.3.0.0.0"
LONGEST_NAME = 200


class HostileMediaTest(medium_test.MediumTest):
    def setUp(self):
        super().setUp()
        self.next, self.own, self.area = self.top / "NEXT", self.top / "OWN", self.top / "AREA"
        for number, path in enumerate([self.next / "VICTIM", self.next / "IMAGES/I1", self.top / "VICTIM",
                                       self.top / "MEDIUMX/I1"]):
            self.save(path, 900 + number)
        self.done("create", self.next)
        self.changed = [self.folder, self.own, self.area, self.top / "CONFIG", self.top / "DATA"]
        environment = {"VANTOR_RECORDER": self.top / "AREA/exam.iso", "VANTOR_DISC_AREA": self.area / "STAGE",
                       "VANTOR_DRIVES": f"{self.top}/NO DRIVES=cdrom", "XDG_CONFIG_HOME": self.top / "CONFIG",
                       "XDG_DATA_HOME": self.top / "DATA"}
        replaced = unittest.mock.patch.dict(os.environ, {name: str(value) for name, value in environment.items()})
        replaced.start()
        self.addCleanup(replaced.stop)

    def save(self, path, number, series=0):
        return media_tree.save(media_tree.make_data_set(0, 0, series, number), path)

    def names(self):
        victim = str(self.next / "VICTIM")
        self.assertLess(len(victim), LONGEST_NAME)
        return [r"..\NEXT\VICTIM", r".. \NEXT\VICTIM", r".\..\NEXT\VICTIM", r"...\NEXT\VICTIM", "../NEXT/VICTIM",
                r"IMAGES\..\..\NEXT\VICTIM", "IMAGES/../../NEXT/VICTIM", r"IMAGES\\..\..\NEXT\VICTIM", r"..\MEDIUMX\I1",
                "\\".join([*"ABCDEFGHI", *[".."] * 10, "NEXT", "VICTIM"]), victim, victim.replace("/", "\\"),
                "/" + victim, r"\..\VICTIM", r"C:\NEXT\VICTIM", "C:VICTIM", r"\\SRV\SHARE\VICTIM",
                r"LINKS\OUT\VICTIM", r"LINKS\HOP\VICTIM", r"LINKS\VICTIM", r"LINKS\NOTHING", r"LINKS\OUT\NEW",
                "DICOMDIR", r".\DICOMDIR", r"IMAGES\..\DICOMDIR", r"LINKS\DIR", "DICOMDIR.", "NUL", "CON"]

    def make(self, path=None):
        """The medium anew, with a good image before and behind those with the names."""
        path = path or self.folder
        for folder in self.changed:
            shutil.rmtree(folder, ignore_errors=True)
        names = [name.ljust(4) + " " * (len(name) % 2) for name in self.names()]
        places = [(f"P{number:03}" + "X" * len(name))[:len(name)] for number, name in enumerate(names)]
        for number, place in enumerate(["A1", *places, "Z1"]):
            self.save(path / place, number)
        self.done("create", path)
        content = (path / "DICOMDIR").read_bytes()
        for name, place in zip(names, places):
            self.assertEqual(content.count(place.encode()), 1)
            content = content.replace(place.encode(), name.encode())
            (path / place).unlink()
        (path / "DICOMDIR").write_bytes(content)
        (path / "IMAGES").mkdir()
        (path / "LINKS").mkdir()
        for name, target in [("oUt", self.next), ("HOP", "oUt"), ("VICTIM", self.next / "VICTIM"),
                             ("NOTHING", self.next / "NEW"), ("DIR", "../DICOMDIR")]:
            (path / "LINKS" / name).symlink_to(target)

    def make_own(self, number=500, series=1):
        self.save(self.own / "I1", number, series)
        self.done("create", self.own)

    def outside(self):
        """Every file and folder that no command has any business with, as it is."""
        found = {}
        for place, folders, files in os.walk(self.top):
            folders[:] = [name for name in folders if pathlib.Path(place, name) not in self.changed]
            for path in [pathlib.Path(place), *(pathlib.Path(place, name) for name in files)]:
                state = path.lstat()
                content = path.read_bytes() if path.is_file() else None
                # The folder that they are all in changes when they come.
                times = None if path == self.top else state.st_mtime_ns
                found[path] = state.st_ino, state.st_mode, state.st_nlink, times, content
        del found[self.top]
        return found

    def run_harmlessly(self, *arguments):
        before = self.outside()
        run = program.run(*arguments)
        self.assertIn(run.returncode, (0, 1), run.stderr)
        self.assertEqual(self.outside(), before, arguments)
        return run

    def good(self, folder):
        """How many of the two good images are there, whatever they are called."""
        good = [f"{SERIES}.{number}" for number in (0, len(self.names()) + 1)]
        paths = [path for path in folder.rglob("*") if path.is_file() and not path.is_symlink()]
        return sum(dcmread(path, force=True).get("SOPInstanceUID") in good for path in paths)

    def test_its_names(self):
        for command, good in [(["delete", self.folder, "--series", SERIES], {self.folder: 0}),
                              (["save", self.folder, "--series", SERIES], {self.folder: 2}),
                              (["save", self.folder, "--series", SERIES, "--new-uids"], {self.folder: 0}),
                              (["save-as", self.folder, "--series", SERIES, "--to", self.folder], {self.folder: 2}),
                              (["save-as", self.folder, "--series", SERIES, "--to", self.own], {self.folder: 2}),
                              (["copy", self.folder, self.own, "--all"], {self.folder: 2, self.own: 2}),
                              (["disc", "stage", self.folder, "--all"], {self.folder: 2, self.area: 2}),
                              (["add", self.folder, *(self.folder / name.replace("\\", "/") for name in self.names())],
                               {self.folder: 2}),
                              (["create", self.folder, "--force"], {self.folder: 2}),
                              (["tree", self.folder], {self.folder: 2})]:
            with self.subTest(command=command[0]):
                self.make()
                self.make_own()
                self.run_harmlessly(*command)
                self.assertEqual({folder: self.good(folder) for folder in good}, good, command)
                self.assertEqual(program.run("tree", self.folder).returncode, 0)

    def test_instances_that_the_destination_has(self):
        """Their files go in place of those that they were copied from."""
        self.make(self.own)
        kept = self.own.rename(self.top / "KEPT")
        self.make()
        kept.rename(self.own)
        content = (self.own / "DICOMDIR").read_bytes()
        (self.own / "DICOMDIR").write_bytes(content.replace(SERIES.encode(), SERIES[:-1].encode() + b"9"))
        self.assertEqual(self.run_harmlessly("copy", self.folder, self.own, "--all").returncode, 0)
        self.assertEqual(self.good(self.folder), 2)

    def test_an_image_folder_that_is_a_link(self):
        for name in ["IMAGESDC", "iMaGeSdC"]:
            for target in [self.next, self.next / "NONE", "LINKS/HOP"]:
                self.make()
                self.make_own()
                (self.folder / "IMAGESDC").rmdir()
                (self.folder / name).symlink_to(target)
                own = SERIES[:-1] + "1"
                for command in [["copy", self.own, self.folder, "--all"],
                                ["save-as", self.own, "--series", own, "--to", self.folder]]:
                    run = self.run_harmlessly(*command)
                    self.assertEqual((run.returncode, len(program.lines(run.stderr))), (1, 1), run.stderr)
                (self.folder / name).unlink()
                self.assertEqual(self.run_harmlessly("copy", self.own, self.folder, "--all").returncode, 0)

    def test_a_DICOMDIR_that_is_a_link(self):
        for target in [self.next / "DICOMDIR", self.next / "VICTIM", self.next / "NONE"]:
            for command in [["delete", self.folder, "--series", SERIES], ["save", self.folder, "--series", SERIES],
                            ["add", self.folder, self.folder / "A1"], ["copy", self.own, self.folder, "--all"],
                            ["create", self.folder, "--force"]]:
                self.make()
                self.make_own()
                self.path.unlink()
                self.path.symlink_to(target)
                run = self.run_harmlessly(*command)
                is_new = command[0] == "create"
                self.assertEqual(self.path.is_symlink(), not is_new, command)
                # Without one, it is a folder, of which the files that are found are the images.
                if target.exists() or is_new:
                    self.assertEqual(run.returncode, 0 if is_new else 1, command)

    def test_a_DICOMDIR_that_was_cut_short(self):
        self.make_own()
        self.folder.mkdir()
        for number in range(4):
            self.save(self.folder / f"I{number}", number, number)
        self.done("create", self.folder)
        whole = self.path.read_bytes()
        for length in [*range(len(whole) - 1, 400, -97), 400]:
            self.path.write_bytes(whole[:length])
            run = program.run("tree", self.folder)
            self.assertEqual((run.returncode, len(program.lines(run.stderr))), (1, 1), (length, run.stderr))
            for command in [["delete", self.folder, "--series", SERIES], ["add", self.folder, self.folder / "I1"],
                            ["save", self.folder, "--series", SERIES], ["copy", self.folder, self.own, "--all"],
                            ["copy", self.own, self.folder, "--all"]]:
                self.assertTrue(self.refusal(*command), length)
            self.assertEqual(self.path.read_bytes(), whole[:length])
        self.done("create", self.folder, "--force")
        self.assertEqual(program.lines(self.done("tree", self.folder))[-1], "1 patient, 1 study, 4 series, 4 instances")


if __name__ == "__main__":
    unittest.main()
