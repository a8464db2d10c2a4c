#!/usr/bin/python3
"""The commands that make, show and change a DICOMDIR, as a new user meets them, on real files: what they leave on
the disk is what pydicom and dcmtk read, and what they cannot do is told in one line and harms nothing.
"""

import os
import pathlib
import resource
import shutil
import signal
import subprocess
import time
import unittest

from pydicom import dcmread

import media_tree
import medium_test
import program

COMMANDS = ["tree", "create", "add", "copy", "delete", "save", "save-as", "drives", "dirs"]
TREE_KEYS = ["path", "displayName", "dirName", "kind", "patients"]
STUDY_KEYS = ["uid", "id", "date", "time", "description", "accession", "modalities", "referringPhysician", "series"]
NOBODY = 65534
WRITERS, FILES_EACH = range(8), range(100)
KILLS, BIG = 20, 1 << 20
SHOWN_SKIPPED, TERMINAL_WIDTH = 20, 80


class DirectoryCommandsTest(medium_test.MediumTest):
    # ---- create, tree ----

    def test_a_new_medium(self):
        before = self.make_medium()
        self.assertEqual(self.files(), before)
        self.check_all_agree()
        self.assertEqual(self.shown(self.path), before)

    def test_tree_tells_what_the_files_hold(self):
        self.make_medium()
        tree = self.tree(self.folder)
        self.assertEqual(list(tree), TREE_KEYS)
        self.assertEqual((tree["path"], tree["dirName"], tree["kind"]), (str(self.path), "MEDIUM", "dicomdir"))
        for patient in tree["patients"]:
            self.assertEqual(list(patient), ["name", "id", "studies"])
            for study in patient["studies"]:
                self.assertEqual(list(study), STUDY_KEYS)
                for series in study["series"]:
                    self.assertEqual(list(series), ["uid", "number", "modality", "description", "instances"])
                    for instance in series["instances"]:
                        self.check_instance(patient, study, series, instance)

    def check_instance(self, patient, study, series, instance):
        file = dcmread(instance["path"], stop_before_pixels=True)
        kind = medium_test.KINDS.get(file.SOPClassUID, "image")
        numbered = ["kind", "uid", "classUID", "number", "path"]
        self.assertEqual(list(instance), [key for key in numbered if key != "number" or kind == "image"])
        uids = ("", "") if kind == medium_test.PRIVATE else (file.SOPClassUID, file.SOPInstanceUID)
        self.assertEqual((instance["kind"], instance["classUID"], instance["uid"]), (kind, *uids))
        self.assertEqual(instance.get("number"), file.InstanceNumber if kind == "image" else None)
        self.assertEqual((patient["name"], study["date"], study["id"], series["number"], series["modality"]),
                         (str(file.PatientName), file.StudyDate, file.StudyID, str(file.SeriesNumber), file.Modality))

    def test_a_folder_without_DICOMDIR_and_a_single_file(self):
        files = self.make_files()
        self.assertEqual(self.shown(self.folder), files)
        tree = self.tree(self.folder)
        self.assertEqual((tree["kind"], tree["path"]), ("folder", str(self.folder)))
        self.assertFalse(self.path.exists())
        path = next(iter(files))
        self.assertEqual(self.shown(path), {path: files[path]})

    def test_tree_as_text_fits_a_terminal(self):
        files = self.make_medium()
        lines = program.lines(self.done("tree", "MEDIUM", cwd=self.top))
        self.assertLessEqual(max(len(line) for line in lines), TERMINAL_WIDTH)
        self.assertEqual(lines[1], str(self.path))
        counts = [len({place[:depth] for place in files.values()}) for depth in range(1, 5)]
        self.assertEqual(lines[-1], "{} patients, {} studies, {} series, {} instances".format(*counts))
        text = "\n".join(lines)
        for path, place in files.items():
            self.assertIn(f"  {path.relative_to(self.folder)}\n", text)
            self.assertIn(f" UID {place[2]}\n", text)

    def test_create_names_it_after_the_folder_or_as_told(self):
        self.make_files()
        folder = self.folder.rename(self.top / "exam-12 of a long day")
        for options, name in [([], "EXAM_12 OF A LON"), (["--name", "A 1_B"], "A 1_B")]:
            run = program.run("create", folder, "--force", *options)
            self.assertEqual((run.returncode, run.stderr), (0, b""))
            self.assertEqual(self.tree(folder)["dirName"], name)
        for name in ["", "SEVENTEEN LETTERS", "lower", "A-B", "Ä"]:
            self.assertIn("vantor create --help", self.refusal("create", folder, "--name", name, status=2))

    def test_create_replaces_only_when_it_is_forced(self):
        files = self.make_medium()
        self.path.rename(self.folder / "dicomdir")  # still one, wherever it is mounted
        before = (self.folder / "dicomdir").read_bytes()
        self.assertIn("--force", self.refusal("create", self.folder))
        self.assertEqual((self.folder / "dicomdir").read_bytes(), before)
        first = next(iter(files))
        first.unlink()
        self.assertEqual(self.objects("create", self.folder, "--force")[0]["entered"], len(files) - 1)
        self.assertNotIn(first, self.shown(self.folder))

    def test_create_tells_what_it_leaves_out_and_which_names_are_in_lower_case(self):
        self.make_files()
        media_tree.save(media_tree.make_data_set(7, 0, 0, 0), self.folder / "NEW/i1.dcm")
        for number in range(SHOWN_SKIPPED + 4):
            (self.folder / f"NOTE{number:02}").write_text("no DICOM file")
        run = program.run("create", self.folder)
        self.assertEqual(run.returncode, 0)
        note, = program.lines(run.stderr)
        self.assertRegex(note, "1 file has lower-case letters")
        headline, *skipped, more = program.lines(run.stdout)
        self.assertRegex(headline, rf"^{self.path}: \d+ files entered, 25 skipped$")
        self.assertEqual((len(skipped), more), (SHOWN_SKIPPED, "and 5 more"))
        for line in skipped:
            self.assertRegex(line, r"^skipped  (NOTE\d\d|README.TXT) +\S")
        self.assertEqual(len(program.read_json_lines(program.run("create", self.folder, "--force", "--json").stdout)
                             [0]["skipped"]), SHOWN_SKIPPED + 5)

    # ---- copy, delete, add ----

    def test_copy_delete_and_add(self):
        files = self.make_medium()
        copy = self.top / "NEW/COPY"
        series = {place[2] for place in files.values()}
        sizes = {uid: [path.stat().st_size / 1024 for path in files if files[path][2] == uid] for uid in series}
        results = self.objects("copy", self.folder, copy, "--all", "--create", "COPY 1")
        self.assertEqual({result["series"] for result in results}, series)
        for result in results:
            self.assertEqual((list(result), result["result"]), (["series", "result", "kilobytes"], "success"))
            own = sizes[result["series"]]
            self.assertAlmostEqual(result["kilobytes"], sum(own), delta=len(own))
        self.check_all_agree(copy)
        contents = {place: path.read_bytes() for path, place in files.items()}
        copied = self.files(copy)
        self.assertEqual({place: path.read_bytes() for path, place in copied.items()}, contents)

        again = program.lines(self.done("copy", self.folder, copy, "--series", *series))
        self.assertTrue(all(line.startswith("kept ") for line in again))

        first, second = sorted(series)[:2]
        self.assertEqual(self.objects("delete", copy, "--series", first, second),
                         [{"series": uid, "result": "success"} for uid in (first, second)])
        kept = {path: place for path, place in copied.items() if place[2] not in (first, second)}
        self.assertEqual(self.files(copy), kept)
        self.check_all_agree(copy)

        back = [shutil.copy(path, copy / f"BACK{number}")
                for number, path in enumerate(path for path, place in files.items() if place[2] == first)]
        relative = [os.path.relpath(path, self.top) for path in back]
        added, = self.objects("add", "NEW/COPY/DICOMDIR", *relative, cwd=self.top)
        self.assertEqual(added, {"dicomdir": str(copy / "DICOMDIR"), "entered": len(back), "skipped": []})
        self.check_all_agree(copy)

    def test_add_reports_what_it_does_not_enter(self):
        files = self.make_medium()
        outside = shutil.copy(next(iter(files)), self.top)
        bad = [self.folder / "README.TXT", self.folder / "MISSING", outside, self.folder]
        new = media_tree.save(media_tree.make_data_set(7, 0, 0, 0), self.folder / "I1")
        for accepted in ([], [new]):
            run = program.run("add", self.folder, "--json", *bad, *accepted)
            self.assertEqual(run.returncode, 1)
            added, = program.read_json_lines(run.stdout)
            self.assertEqual((added["entered"], [each["path"] for each in added["skipped"]]),
                             (len(accepted), [str(path) for path in bad]))
            self.assertEqual(program.lines(run.stderr),
                             [f"vantor: {each['path']}: {each['why']}" for each in added["skipped"]])
        self.check_all_agree()

    def test_many_writers_at_once(self):
        self.folder.mkdir()
        self.done("create", self.folder)
        own = [[media_tree.save(media_tree.make_data_set(writer % 3, 0, writer, index),
                                self.folder / f"W{writer}/I{index:02}") for index in FILES_EACH] for writer in WRITERS]
        processes = [subprocess.Popen([program.PROGRAM, "add", self.path, *files], stdout=subprocess.DEVNULL)
                     for files in own]
        self.assertEqual([process.wait(media_tree.TIME_LIMIT) for process in processes], [0] * len(own))
        self.check_all_agree()
        self.assertEqual(len(self.shown(self.path)), len(WRITERS) * len(FILES_EACH))

    # ---- What cannot be done ----

    def test_errors_are_one_line_and_change_nothing(self):
        self.make_medium()
        before = self.path.read_bytes()
        plain, damaged = self.top / "PLAIN", self.top / "DAMAGED"
        shutil.copytree(self.folder / "OTHERS", plain)
        damaged.mkdir()
        (damaged / "DICOMDIR").write_bytes(before[:200])
        note, missing, uid = self.folder / "README.TXT", self.top / "MISSING", "1.2.3.4.5"
        known = next(iter(self.files().values()))[2]
        for arguments, told in [
                (["tree", missing], f"{missing}: no such file or folder"),
                (["tree", note], f"{note}: no DICOM file"),
                (["tree", damaged], f"Damaged DICOMDIR file found at {damaged}/DICOMDIR"),
                (["create", missing], f"{missing}: no such folder"),
                (["create", note], f"{note}: no such folder"),
                (["add", plain, plain / "I0"], f"{plain}: no DICOMDIR is here; vantor create makes one"),
                (["add", damaged, note], f"Damaged DICOMDIR file found at {damaged}/DICOMDIR"),
                (["copy", missing, self.folder, "--all"], f"{missing}: no such file or folder"),
                (["copy", self.folder, missing, "--all"], f"{missing}: no such file or folder"),
                (["copy", self.folder, plain, "--all"], f"{plain}: no DICOMDIR is here; --create makes one"),
                (["copy", plain, self.folder, "--all", "--create", "A"], f"{self.path} is there already; leave out "
                                                                        "--create to copy into it"),
                (["copy", self.folder, plain, "--series", known, uid], f"series {uid} is not in {self.path}"),
                (["delete", self.folder, "--series", known, uid], f"series {uid} is not in {self.path}"),
                (["delete", plain, "--series", uid], f"series {uid} is not in {plain}")]:
            with self.subTest(arguments):
                self.assertEqual(self.refusal(*arguments), "vantor: " + told)
        self.assertEqual(self.path.read_bytes(), before)
        self.check_all_agree()

    def test_media_that_cannot_be_written(self):
        self.make_medium()
        other, empty = self.top / "OTHER", self.top / "EMPTY"
        self.done("copy", self.folder, other, "--create", "OTHER", "--series", "1.2.3.0.0.1")
        empty.mkdir()
        uid = next(place[2] for place in self.files().values() if place[0] != "P0")
        run_by_all = self.copy_program()
        for folder in (empty, *(path for path in other.rglob("*") if path.is_dir()), other):
            folder.chmod(0o555)
            self.addCleanup(folder.chmod, 0o755)
        before = self.files(other)
        user = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
        for arguments in (["create", empty], ["create", other, "--force"], ["add", other, next(iter(before))],
                          ["copy", self.folder, other, "--series", uid], ["delete", other, "--series", "1.2.3.0.0.1"]):
            with self.subTest(arguments[0]):
                run = subprocess.run([run_by_all, *arguments], capture_output=True, check=False, **user,
                                     timeout=program.TIME_LIMIT)
                self.assertEqual((run.returncode, run.stderr.count(b"\n")), (1, 1), run.stderr)
        self.assertEqual(self.files(other), before)
        self.check_all_agree(other)

    def test_an_interrupted_copy_leaves_a_DICOMDIR_that_opens(self):
        source = self.top / "SOURCE"
        for series in range(4):
            data_set = media_tree.make_data_set(1, 0, series, 0)
            data_set.PixelData = bytes(BIG)
            media_tree.save(data_set, source / f"I{series}")
        self.done("copy", source, self.folder, "--all", "--create", "WHOLE")
        seen = set()
        for round_number in range(KILLS):
            shutil.rmtree(self.folder)
            with subprocess.Popen([program.PROGRAM, "copy", source, self.folder, "--all", "--create", "CUT"],
                                  stdout=subprocess.PIPE) as process:
                while not self.path.exists() or self.path.stat().st_size == 0:
                    time.sleep(0.0005)
                if round_number % 2:
                    process.stdout.read(1)
                time.sleep(round_number * 0.001)
                process.send_signal(signal.SIGINT)
            shown = self.shown(self.folder)
            self.assertEqual({path: media_tree.instance(path) for path in shown}, shown)
            seen.add(len(shown))
        self.assertNotEqual(seen, {4}, "none was interrupted in time")

    def test_full_disks(self):
        def limit(size):
            def fill_disk():  # writing beyond it fails, without a signal
                signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
            return {"preexec_fn": fill_disk}

        self.make_medium()
        other, new = self.top / "OTHER", self.top / "NEW"
        self.assertEqual(self.refusal("copy", self.folder, new, "--all", "--create", "A", **limit(0)),
                         f"vantor: {new}/DICOMDIR: cannot be written")
        self.assertFalse((new / "DICOMDIR").exists())
        self.done("copy", self.folder, other, "--all", "--create", "A")
        source = self.top / "SOURCE"
        for number, size in enumerate([100, BIG]):
            data_set = media_tree.make_data_set(9, number, number, number)
            data_set.PixelData = bytes(size)
            media_tree.save(data_set, source / f"I{number}")
        self.done("create", source)
        small, large = "1.2.3.9.0.0", "1.2.3.9.1.1"
        before, full = self.file_set(other), (other / "DICOMDIR").stat().st_size
        for uid, result in [(small, "CopySeriesDirUpdateFailure"), (large, "CopySeriesVolumeFull")]:
            run = program.run("copy", source, other, "--series", uid, "--json", **limit(full))
            self.assertEqual((run.returncode, program.read_json_lines(run.stdout)[0]["result"]), (1, result))
            self.assertEqual(len(program.lines(run.stderr)), 1)
            self.assertEqual(self.file_set(other), before)
        self.done("copy", source, other, "--all")
        self.assertEqual(len(self.file_set(other)), len(before) + 2)

    def test_names_that_are_not_ascii(self):
        for name in ("Müller", "心電図"):
            self.make_medium()
            folder = self.top / name
            os.rename(self.folder, folder)
            (folder / "ÜBER").write_bytes(b"no DICOM file")
            (folder / os.fsdecode(b"c\xe9")).write_bytes(b"a name of old media")
            with self.subTest(name):
                self.done("create", folder, "--force", "--name", "A")
                self.done("tree", folder)
                self.done("copy", folder, self.top / f"{name} 2", "--all", "--create", "B")
                run = program.run("add", folder, folder / "ÜBER")
                self.assertEqual(program.lines(run.stderr), [f"vantor: {folder}/ÜBER: Invalid Dicom File"])

    # ---- drives, dirs ----

    def test_drives_and_dirs(self):
        self.make_medium()
        away = self.top / "AWAY"
        drives = f"{self.folder}=removable,FAT32,ECHO 12:{away}=cdrom"
        environment = {**os.environ, "VANTOR_DRIVES": drives, "XDG_CONFIG_HOME": str(self.top / "config")}
        self.assertEqual(self.objects("drives", env=environment), [
            {"name": f"{self.folder}/", "type": "removable", "format": "FAT32", "label": "ECHO 12", "ready": True},
            {"name": f"{away}/", "type": "cdrom", "format": "", "label": "", "ready": False}])
        self.assertEqual([line.split() for line in program.lines(self.done("drives", env=environment))],
                         [[f"{self.folder}/", "removable", "FAT32", "ECHO", "12"], [f"{away}/", "cdrom", "not", "ready"]])
        found, = self.objects("dirs", env=environment)
        self.assertEqual(list(found), ["displayName", "path", "kind", "writable", "removable", "spaceUsedKB",
                                       "spaceAvailableKB", "remembered"])
        self.assertEqual((found["path"], found["kind"], found["writable"], found["removable"], found["remembered"]),
                         (str(self.path), "dicomdir", True, True, False))
        size = sum(path.stat().st_size for path in self.files())
        self.assertAlmostEqual(found["spaceUsedKB"], size / 1024, delta=len(self.files()))
        self.assertIn(f"  {self.path}\n", self.done("dirs", env=environment).decode())
        away.mkdir()
        (away / "DICOMDIR").write_bytes(b"damaged")
        run = program.run("dirs", "--json", env=environment)
        self.assertEqual((run.returncode, program.read_json_lines(run.stdout)[0]["path"]), (1, found["path"]))
        self.assertEqual(program.lines(run.stderr), [f"vantor: Damaged DICOMDIR file found at {away}/DICOMDIR"])
        environment["VANTOR_DRIVES"] = f"{self.top / 'NOWHERE'}=cdrom"
        self.assertEqual(self.objects("dirs", env=environment), [])
        self.assertEqual(self.done("dirs", env=environment), b"no directories\n")

    # ---- Help and usage ----

    def test_help_and_wrong_usage(self):
        listed = [line.split()[0] for line in program.lines(self.done("--help")) if line.startswith("  ")]
        self.assertEqual([name for name in listed if name in COMMANDS], COMMANDS)
        for command in COMMANDS:
            self.assertIn(f"Example:\n  vantor {command}", self.done(command, "--help").decode())
        for arguments in (["tree"], ["create"], ["add", "a"], ["copy", "a", "b"], ["copy", "a", "--all"],
                          ["copy", "a", "b", "--all", "--series", "1.2"], ["delete", "a"], ["drives", "a"]):
            self.assertRegex(self.refusal(*arguments, status=2), r"^vantor: [^\n]+ --help tells more\)$")


if __name__ == "__main__":
    unittest.main()
