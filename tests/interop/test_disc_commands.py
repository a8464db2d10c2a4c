#!/usr/bin/python3
"""Discs, from the first series that is staged to the image that xorriso reads: every file is there as it was, under
each of the three kinds of names that systems look for, and what cannot be staged, burned or removed is told in one
line and harms neither what is staged nor an older image.
"""

import json
import os
import pathlib
import shutil
import signal
import stat
import subprocess
import time
import unittest
import unittest.mock

from pydicom import dcmread

import media_tree
import medium_test
import program
import real_files
from saved_series import NOBODY, limited

COMMANDS = ["status", "stage", "viewer", "burn", "clear"]
NO_RECORDER = "vantor: discs cannot be burned here; vantor disc --help tells what that needs"
NOTHING = {"canBurn": False, "drive": "", "folder": "", "empty": True, "viewer": False}
EXTRACTED_NAMES = ["any", "norock", "ecma119"]  # Rock Ridge, Joliet, plain
LONG_NAME = "A note of what the player does when nobody looks " + "n" * 40 + ".txt"
BIG = 48 << 20
KILLS = [signal.SIGINT, signal.SIGTERM, signal.SIGKILL]


def contents(folder):
    """Every file, by its path in the folder; links are what they lead to."""
    return {(pathlib.Path(place) / name).relative_to(folder): (pathlib.Path(place) / name).read_bytes()
            for place, _, names in os.walk(folder, followlinks=True) for name in names}


class DiscCommandsTest(medium_test.MediumTest):
    def setUp(self):
        super().setUp()
        self.area, self.image = self.top / "AREA", self.top / "IMAGES/exam.iso"
        self.image.parent.mkdir()
        environment = {"VANTOR_RECORDER": self.image, "VANTOR_DISC_AREA": self.area, "LC_ALL": "C",
                       "VANTOR_DRIVES": f"{self.top}/NO DRIVES=cdrom", "XDG_CONFIG_HOME": self.top / "CONFIG",
                       "XDG_DATA_HOME": self.top / "DATA"}
        changed = unittest.mock.patch.dict(os.environ, {name: str(value) for name, value in environment.items()})
        changed.start()
        self.addCleanup(changed.stop)

    def make_exam(self):
        """The series of a DICOMDIR of another program."""
        shutil.copytree(real_files.DATA / "test_files/dicomdirtests", self.folder)
        return [series["uid"] for patient in self.tree(self.folder)["patients"] for study in patient["studies"]
                for series in study["series"]]

    def make_player(self):
        root, others = self.top / "HOST", self.top / "OTHERS"
        for path, content in [
                (root / "ViewerFiles/autorun.inf", b"[autorun]\r\n"), (root / f"ViewerFiles/{LONG_NAME}", b"long"),
                (root / "ViewerFiles/Read me, Größe 心.txt", "Größe".encode()), (root / "ViewerFiles/EMPTY", b""),
                (root / "ViewerFiles/Viewer/player.exe", os.urandom(100_000)),
                (root / "ViewerFiles/Viewer/lib/de ep/er/Ünï/data.bin", os.urandom(3000)),
                (others / "notes.txt", b"notes"), (others / "skins/dark/skin.bin", b"dark")]:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)
        (root / "ViewerFiles/Viewer/player.exe").chmod(0o444)
        (root / "ViewerFiles/notes.txt").symlink_to(others / "notes.txt")
        (root / "ViewerFiles/Viewer/skins").symlink_to(others / "skins")
        return root

    def make_big(self, size=BIG):
        data_set = media_tree.make_data_set(9, 0, 0, 0)
        data_set.PixelData = os.urandom(size)
        return media_tree.save(data_set, self.top / "BIG/I0").parent

    def status(self):
        found, = self.objects("disc", "status")
        self.assertEqual(list(found), list(NOTHING))
        return found

    def stage(self, *series, source=None):
        """With nothing to complain about."""
        options = ["--series", *series] if series else ["--all"]
        return self.objects("disc", "stage", source or self.folder, *options)

    def refused(self, command, *arguments, **options):
        """The one line of a command that does nothing."""
        run = program.run("disc", command, *arguments, **options)
        self.assertEqual((run.returncode, run.stdout), (1, b""), run.stderr)
        line, = program.lines(run.stderr)
        return line

    def refused_series(self, **options):
        run = program.run("disc", "stage", self.folder, "--all", "--json", **options)
        self.assertEqual((run.returncode, len(program.lines(run.stderr))), (1, 1), run.stderr)
        return program.read_json_lines(run.stdout)[-1]["result"]

    def burn(self):
        self.assertEqual(self.done("disc", "burn").decode(), f"burned {self.area} on {self.image}\n")

    def extract(self, names="any"):
        folder = self.top / f"EXTRACTED {names} {time.monotonic_ns()}"
        # Without the rights of what is read: it is removed again.
        subprocess.run(["xorriso", "-no_rc", "-abort_on", "WARNING", "-read_fs", names, "-osirrox",
                        "on:auto_chmod_on", "-indev", self.image, "-extract", "/", folder],
                       check=True, capture_output=True, env={**os.environ, "LC_ALL": "C.UTF-8"})
        for path in [folder, *folder.rglob("*")]:
            path.chmod(path.stat().st_mode | 0o200)
        return folder

    def relative_tree(self, folder):
        text = json.dumps(self.tree(folder))
        self.assertIn(f'"{folder}/DICOMDIR"', text)
        tree = json.loads(text.replace(f'"{folder}/', '"'))
        return {key: value for key, value in tree.items() if key != "displayName"}  # which has the drive

    def volume_name(self):
        shown = subprocess.run(["xorriso", "-no_rc", "-indev", self.image, "-pvd_info"], check=True,
                               capture_output=True).stdout.decode()
        return next(line.split(":", 1)[1].strip() for line in shown.splitlines() if line.startswith("Volume Id"))

    # ---- What is burned ----

    def test_from_status_to_clear(self):
        first, second, third, *_ = self.make_exam()
        empty = {"canBurn": True, "drive": str(self.image), "folder": str(self.area), "empty": True, "viewer": False}
        self.assertEqual(self.status(), empty)
        text = self.done("disc", "status").decode()
        for told in (f"  Drive          {self.image}\n", f"  Staging area   {self.area}\n", "  Staged         nothing\n"):
            self.assertIn(told, text)
        for result, uid in zip(self.stage(first, second), (first, second), strict=True):
            self.assertEqual((list(result), result["series"], result["result"]),
                             (["series", "result", "kilobytes"], uid, "success"))
        self.assertEqual({place[2] for place in self.files(self.area).values()}, {first, second})
        self.check_all_agree(self.area)
        self.assertEqual(self.relative_tree(self.area)["dirName"], self.relative_tree(self.folder)["dirName"])
        told = program.lines(self.done("disc", "stage", self.folder, "--series", second, third))
        self.assertRegex("\n".join(told), rf"^kept +{second}  there already  .+\ncopied +{third} ")
        self.check_all_agree(self.area)

        self.assertEqual(self.done("disc", "viewer", self.make_player()).decode(), f"player copied to {self.area}\n")
        self.assertEqual(self.status(), {**empty, "empty": False, "viewer": True})
        before = contents(self.area)
        self.burn()
        self.assertEqual(contents(self.area), before)
        self.area.chmod(0o2750)
        self.assertEqual(self.done("disc", "clear").decode(), f"cleared {self.area}\n")
        self.assertEqual((list(self.area.iterdir()), stat.S_IMODE(self.area.stat().st_mode)), ([], 0o2750))
        self.assertEqual(self.status(), empty)
        self.assertEqual(self.done("disc", "clear").decode(), f"{self.area} is empty already\n")
        self.assertEqual(contents(self.extract()), before)

    def test_all_systems_find_all_files(self):
        self.stage(*self.make_exam()[:2])
        staged = contents(self.area)
        root = self.make_player()
        self.done("disc", "viewer", root)
        outside = self.top / "OTHERS/notes.txt"
        (self.area / "LINK").symlink_to(outside)
        (self.area / "FOLDERS").symlink_to(self.top / "OTHERS")
        expected = {**staged, **contents(root / "ViewerFiles"), pathlib.Path("LINK"): b"notes",
                    **{"FOLDERS" / path: content for path, content in contents(self.top / "OTHERS").items()}}
        self.assertEqual(contents(self.area), expected)
        for locale in ("C", "C.UTF-8"):
            with unittest.mock.patch.dict(os.environ, LC_ALL=locale):
                self.burn()
            self.assertEqual(self.volume_name(), "PYDICOM_TEST")
            for names in EXTRACTED_NAMES:
                with self.subTest(names=names, locale=locale):
                    folder = self.extract(names)
                    found = contents(folder)
                    self.assertEqual({path: found.get(path) for path in staged}, staged)
                    self.assertEqual(self.relative_tree(folder), self.relative_tree(self.area))
                    self.assertEqual(sorted(found.values()), sorted(expected.values()))
                    if names != "ecma119":
                        self.assertEqual(set(found), set(expected))
        for record in dcmread(self.area / "DICOMDIR").DirectoryRecordSequence:
            if "ReferencedFileID" in record:
                self.assertIn(pathlib.Path(*[record.ReferencedFileID] if isinstance(record.ReferencedFileID, str)
                                           else record.ReferencedFileID), staged)
        self.done("disc", "clear")
        self.assertEqual((outside.read_bytes(), list(self.area.iterdir())), (b"notes", []))

    def test_what_others_stage(self):
        uid, other, *_ = self.make_exam()
        self.area.mkdir()
        self.done("create", self.area, "--name", "BY HAND 7")
        self.assertIn("nothing is staged", self.refused("burn"))
        self.done("save-as", self.folder, "--series", uid, "--to", self.area, "--anonymous", "--new-study")
        self.done("copy", self.folder, self.area, "--series", other)
        self.burn()
        self.assertEqual(self.volume_name(), "BY HAND 7")
        folder = self.extract()
        self.assertEqual(self.relative_tree(folder), self.relative_tree(self.area))
        self.check_all_agree(folder)
        self.stage()
        self.burn()
        self.check_all_agree(self.extract())

    def test_the_name_of_the_disc(self):
        folder = self.top / "exam-12 of a long day"
        file = media_tree.save(media_tree.make_data_set(1, 0, 0, 0), folder / "I1")
        for source in (folder, file):
            self.stage(source=source)
            self.burn()
            self.assertEqual((self.tree(self.area)["dirName"], self.volume_name()), ("EXAM_12 OF A LON",) * 2)
            self.done("disc", "clear")

    def test_loose_files_in_the_area_are_entered(self):
        loose = media_tree.save(media_tree.make_data_set(1, 0, 0, 0), self.area / "LOOSE/I1")
        uid = self.make_exam()[0]
        self.stage(uid)
        self.check_all_agree(self.area)
        self.assertEqual({place[2] for place in self.files(self.area).values()}, {uid, media_tree.instance(loose)[2]})

    # ---- What cannot be done ----

    def test_without_a_recorder(self):
        self.make_exam()
        root = self.make_player()
        (self.top / "FILE").write_bytes(b"no folder")
        self.area.mkdir()
        (self.area / "KEPT").write_bytes(b"kept")
        before = {path for path in self.top.rglob("*") if not path.is_dir()}
        for variables in ({"VANTOR_RECORDER": str(self.top / "MISSING/exam.iso")}, {"PATH": str(self.top)},
                          {"VANTOR_RECORDER": str(self.area / "exam.iso")}, {"VANTOR_RECORDER": "exam.iso"},
                          {"VANTOR_RECORDER": str(self.top)}, {"VANTOR_DISC_AREA": str(self.top / "FILE/AREA")}):
            with self.subTest(variables), unittest.mock.patch.dict(os.environ, variables):
                self.assertEqual(self.status(), NOTHING)
                self.assertIn("  Can be burned  no", self.done("disc", "status").decode())
                for command in (["stage", self.folder, "--all"], ["viewer", root], ["burn"], ["clear"]):
                    self.assertEqual(self.refused(*command), NO_RECORDER)
                self.assertEqual({path for path in self.top.rglob("*") if not path.is_dir()}, before)

    def test_errors_are_one_line_and_change_nothing(self):
        uid = self.make_exam()[0]
        missing, plain, note = self.top / "MISSING", self.top / "PLAIN", self.folder / "README.txt"
        plain.mkdir()
        for command, told in [
                (["burn"], f"{self.area}: nothing is staged; vantor disc stage does that"),
                (["stage", missing, "--all"], f"{missing}: no such file or folder"),
                (["stage", plain, "--all"], f"{plain}: no DICOM file is in this folder"),
                (["stage", self.folder, "--series", uid, "1.2"], f"series 1.2 is not in {self.path}"),
                (["viewer", missing], f"{missing}: no player is here; it would be the folder Viewer in ViewerFiles"),
                (["viewer", note], f"{note}: no player is here; it would be the folder Viewer in ViewerFiles")]:
            self.assertEqual(self.refused(*command), "vantor: " + told)
            self.assertEqual(list(self.area.iterdir()), [])
        self.stage(uid)
        before = contents(self.area)
        self.assertEqual(self.refused("stage", self.area, "--all"),
                         f"vantor: {self.area}: this is the staging area itself")
        root = self.make_player()
        shutil.copy(self.path, root / "ViewerFiles/dicomdir")
        self.assertIn("the player has a DICOMDIR", self.refused("viewer", root))
        (root / "ViewerFiles/dicomdir").unlink()
        (self.area / "viewer").mkdir()
        self.assertIn("a player is there already", self.refused("viewer", root))
        self.assertEqual(contents(self.area), before)
        (self.area / "DICOMDIR").write_bytes(before[pathlib.Path("DICOMDIR")][:200])
        damaged = contents(self.area)
        for command in (["burn"], ["stage", self.folder, "--all"]):
            self.assertEqual(self.refused(*command),
                             f"vantor: Damaged DICOMDIR file found at {self.area}/DICOMDIR")
        self.assertEqual(contents(self.area), damaged)
        self.assertFalse(self.image.exists())
        self.done("disc", "clear")
        self.assertEqual(list(self.area.iterdir()), [])

    def test_a_damaged_disc_in_a_drive_is_no_hindrance(self):
        self.make_exam()
        drive = self.top / "DRIVE"
        drive.mkdir()
        (drive / "DICOMDIR").write_bytes(b"damaged")
        with unittest.mock.patch.dict(os.environ, VANTOR_DRIVES=f"{drive}=cdrom:/=fixed"):
            self.stage()
            self.burn()
            self.assertIn("Damaged DICOMDIR", self.refused("stage", drive, "--all"))

    def test_nothing_that_is_remembered_is_forgotten(self):
        self.make_exam()
        registry = self.top / "CONFIG/vantor/registry"
        registry.parent.mkdir(parents=True)
        registry.write_text('[Software\\Norvik\\Lumina\\DIR_INFO]\n"FolderDirPath1"="/away at the moment"\n')
        before = registry.read_bytes()
        self.stage()
        self.burn()
        self.done("disc", "clear")
        self.assertEqual(registry.read_bytes(), before)

    def test_full_disks(self):
        series = self.make_exam()
        self.assertIn("a DICOMDIR cannot be written there",
                      self.refused("stage", self.folder, "--all", **limited(0)))
        self.assertEqual(contents(self.area), {})
        self.assertEqual(self.refused_series(**limited(6000)), "CopySeriesDirUpdateFailure")
        self.assertEqual(self.shown(self.area), self.file_set(self.area))
        self.assertTrue(self.shown(self.area))
        self.stage()
        self.assertEqual(self.shown(self.area), self.file_set(self.area))
        self.assertEqual({place[2] for place in self.shown(self.area).values()}, set(series))
        before = contents(self.area)
        root = self.make_player()
        self.assertIn("the player cannot be copied", self.refused("viewer", root, **limited(50_000)))
        self.assertEqual(contents(self.area), before)
        self.assertFalse(self.status()["viewer"])
        self.burn()
        image = self.image.read_bytes()
        self.done("disc", "viewer", root)
        self.assertEqual(self.refused("burn", **limited(len(image))),
                         f"vantor: {self.image}: the disc cannot be burned; --trace error shows what the system says")
        run = program.run("--trace", "error", "disc", "burn", **limited(len(image)))
        self.assertGreater(len(program.lines(run.stderr)), 1)
        self.assertEqual(self.image.read_bytes(), image)
        self.assertEqual(list(self.image.parent.iterdir()), [self.image])

    def test_media_that_cannot_be_written(self):
        uid, other, *_ = self.make_exam()
        root = self.make_player()
        self.stage(uid)
        (self.area / "IMAGESDC/.trash").mkdir()
        user = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
        for path in (self.area / "IMAGESDC", self.area, self.image.parent):
            path.chmod(0o555)
            self.addCleanup(lambda path=path: path.exists() and path.chmod(0o755))
        before = contents(self.area)
        with unittest.mock.patch.object(program, "PROGRAM", self.copy_program()):
            run = program.run("disc", "stage", self.folder, "--series", other, **user)
            self.assertEqual((run.returncode, len(program.lines(run.stderr))), (1, 1), run.stderr)
            self.refused("burn", **user)
            run = program.run("disc", "clear", **user)
            self.assertEqual((run.returncode, run.stdout, program.lines(run.stderr)), (1, b"", [
                f"vantor: {self.area}/DICOMDIR: cannot be removed",
                f"vantor: {self.area}/IMAGESDC/.trash: not removed, as folders whose names begin with a period"]))
            self.assertIn("the player cannot be copied", self.refused("viewer", root, **user))
            self.assertEqual(contents(self.area), before)
            self.area.chmod(0o777)
            run = program.run("disc", "clear", **user)
            self.assertEqual(run.returncode, 1)
            self.assertEqual({path.name for path in self.area.iterdir()}, {"IMAGESDC"})
        self.assertFalse(self.image.exists())

    def test_clear_removes_what_others_have_left(self):
        self.stage(*self.make_exam()[:1])
        kept = self.top / "KEPT"
        (kept / "BELOW").mkdir(parents=True)
        (kept / "BELOW/FILE").write_bytes(b"kept")
        (self.area / "LINK").symlink_to(kept)
        (self.area / "NOWHERE").symlink_to(self.top / "MISSING")
        (self.area / ".hidden file").write_bytes(b"")
        os.mkfifo(self.area / "PIPE")
        (self.area / "READ ONLY").write_bytes(b"")
        (self.area / "READ ONLY").chmod(0o444)
        (self.area / os.fsdecode(b"c\xe9")).write_bytes(b"a name of old media")
        hidden = self.area / ".Trash/BELOW"
        hidden.mkdir(parents=True)
        self.assertEqual(self.refused("clear"), f"vantor: {self.area}/.Trash: not removed, as folders whose names "
                                                "begin with a period")
        self.assertEqual(list(self.area.iterdir()), [hidden.parent])
        hidden.rmdir()
        hidden.parent.rmdir()
        self.done("disc", "clear")
        self.assertEqual(contents(kept), {pathlib.Path("BELOW/FILE"): b"kept"})

    def test_the_area_may_be_a_link(self):
        self.make_exam()
        real = self.top / "REAL"
        real.mkdir()
        self.area.symlink_to(real)
        self.stage()
        self.assertEqual(self.status()["folder"], str(real))
        self.done("disc", "burn")
        self.done("disc", "clear")
        self.assertEqual((self.area.is_symlink(), list(self.area.iterdir())), (True, []))

    def test_an_interrupted_burn_leaves_the_old_image(self):
        self.stage(*self.make_exam()[:1])
        self.burn()
        image = self.image.read_bytes()
        self.stage(source=self.make_big())
        seen = set()
        for number, signal_number in enumerate(KILLS * 2):
            with subprocess.Popen([program.PROGRAM, "disc", "burn"], stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL, start_new_session=True) as process:
                while process.poll() is None and not self.half_images():
                    time.sleep(0.001)
                time.sleep(0.01 * number)
                os.killpg(process.pid, signal_number)
                seen.add(process.wait(program.TIME_LIMIT))
            self.assertEqual(self.image.read_bytes(), image)
            for half in self.half_images():
                half.unlink()
        self.assertLessEqual({-signal_number for signal_number in KILLS}, seen, "none was interrupted in time")
        self.burn()
        self.check_all_agree(self.extract())

    def test_only_a_burn_that_ended_well_is_done(self):
        """Whatever the burning program says, and although the caller lets the system forget its children."""
        self.stage(*self.make_exam()[:1])
        self.burn()
        image = self.image.read_bytes()
        burner = self.top / "BIN/xorriso"
        burner.parent.mkdir()
        path = {"PATH": f"{burner.parent}:{os.environ['PATH']}"}
        for script in ["exit 32", "kill -9 $$", "head -c 300000 /dev/zero | tr '\\0' x; exit 1",
                       "printf 'xorriso : UPDATE : 1e999%% done\\r%%\\r : UPDATE : %%'; exit 1"]:
            burner.write_text(f"#!/bin/sh\n{script}\n")
            burner.chmod(0o755)
            for ignored in ([], [signal.SIGCHLD]):
                run = program.run("disc", "burn", env={**os.environ, **path}, preexec_fn=lambda ignored=ignored: [
                    signal.signal(number, signal.SIG_IGN) for number in ignored] and None)
                self.assertEqual((run.returncode, run.stdout), (1, b""), script)
                self.assertEqual(self.image.read_bytes(), image, script)
                self.assertEqual(self.half_images(), [], script)

    def half_images(self):
        return [path for path in self.image.parent.iterdir() if path != self.image]

    # ---- Help and usage ----

    def test_help_and_wrong_usage(self):
        text = self.done("disc", "--help").decode()
        for command in COMMANDS:
            self.assertIn(f"\n  {command} ", text)
            self.assertIn(f"Example:\n  vantor disc {command}", self.done("disc", command, "--help").decode())
        self.assertIn("Example:\n  vantor disc ", text)
        for arguments, told in [
                ([], "a command is required (vantor disc"), (["eject"], "no such command or option: eject (vantor disc"),
                (["--all"], "no such command or option: --all (vantor disc"),
                (["stage"], "PATH is required (vantor disc stage"),
                (["stage", "a"], "--series or --all is required (vantor disc stage"),
                (["stage", "a", "--all", "--series", "1.2"], "--series excludes --all (vantor disc stage"),
                (["status", "a"], "The following argument was not expected: a (vantor disc status"),
                (["viewer"], "ROOT is required (vantor disc viewer"),
                (["burn", "stage"], "The following argument was not expected: stage (vantor disc burn"),
                (["clear", "--force"], "The following argument was not expected: --force (vantor disc clear")]:
            run = program.run("disc", *arguments)
            self.assertEqual((run.returncode, run.stdout), (2, b""), arguments)
            self.assertEqual(program.lines(run.stderr), [f"vantor: {told} --help tells more)"])


if __name__ == "__main__":
    unittest.main()
