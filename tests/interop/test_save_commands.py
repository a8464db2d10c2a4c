#!/usr/bin/python3
"""Saving series in place and as copies, on cine loops and stills of many encodings: the files and the DICOMDIR that
are left are what pydicom, dcmtk and dciodvfy expect, nothing of a patient stays in an anonymous copy, and what goes
wrong on the way damages neither originals nor directory.
"""

import os
import signal
import subprocess
import time
import unittest
import unittest.mock

from pydicom import DataElement, dcmread
from pydicom.uid import ImplicitVRLittleEndian

import media_tree
import program
from saved_series import (BIG, CARETS, CINE, NOBODY, OTHERS, PHYSICIAN, SECRETS, STILLS, SavedSeriesTest, content, encoded,
                          image, limited, save)

KILLS = 20


class SaveCommandsTest(SavedSeriesTest):
    # ---- Anonymous copies ----

    def test_nothing_of_the_patient_is_left(self):
        echo = self.make_echo()
        planted = b"".join(path.read_bytes() for paths in echo.values() for path in paths)
        for text in SECRETS:
            self.assertTrue(any(secret in planted for secret in encoded(text)), text)
        secrets = [secret for text in SECRETS for secret in encoded(text)]
        for is_exam in (False, True):
            for series, sources in echo.items():
                for options in ([], ["--erase-physicians"]):
                    with self.subTest(series=series, options=options, is_exam=is_exam):
                        self.remake_other(is_exam)
                        copies = self.save_as(series, "--anonymous", "--new-study", *options)
                        for copy in self.check_copies(sources, copies):
                            self.assertEqual((copy.PatientName, copy.PatientID), ("Anonymous", "ANONYMOUS"))
                        for path in [*copies, self.other / "DICOMDIR"]:
                            found = path.read_bytes()
                            self.assertEqual([secret for secret in secrets if secret in found], [], path)
                            self.assertEqual(PHYSICIAN.encode() in found, path in copies and not options)
                        layout = r"EXAMS/EXAM\d{4}/.+" if is_exam else r"IMAGESDC/I_\d{6}\.DCM"
                        self.assertRegex(str(copies[0].relative_to(self.other)), layout)

    # ---- In place ----

    def test_in_place(self):
        echo = self.make_echo()
        for options, changed in [([], ["InstanceNumber"]),
                                 (["--new-uids"], ["InstanceNumber", "SOPInstanceUID", "ReferencedImageSequence"])]:
            for series, paths in echo.items():
                before = [content(path, *changed) for path in paths]
                old = [dcmread(path) for path in paths]
                self.assertEqual(self.objects("save", self.folder, "--series", series, *options),
                                 [{"series": series, "result": "success"}])
                self.assertEqual([content(path, *changed) for path in paths], before)
                self.assertEqual(self.images(self.folder, series), paths)
                self.check_whole(self.folder)
                if options:
                    self.check_copies_in_place(old, [dcmread(path) for path in paths])
                self.assertEqual([dcmread(path).InstanceNumber for path in paths], list(range(1, len(paths) + 1)))
        self.assertRegex(self.done("save", self.folder, "--series", CINE).decode(), rf"^saved   {CINE}  2 images\n$")

    def check_copies_in_place(self, old, new):
        names = dict(zip([each.SOPInstanceUID for each in old], [each.SOPInstanceUID for each in new]))
        self.assertFalse(set(names) & set(names.values()))
        self.assertEqual([each.ReferencedImageSequence[0].ReferencedSOPInstanceUID for each in new],
                         [names[each.ReferencedImageSequence[0].ReferencedSOPInstanceUID] for each in old])

    # ---- Copies of the same patient ----

    def test_copies_join_the_study(self):
        for series, sources in self.make_echo().items():
            for to in (self.folder, self.other):
                for copy in self.check_copies(sources, self.save_as(series, to=to)):
                    source = dcmread(sources[0])
                    for keyword in ("StudyInstanceUID", "PatientName", "PatientID", "AccessionNumber", "StudyID",
                                    "StudyDescription", "SeriesNumber", "SeriesDescription", "PatientBirthDate"):
                        self.assertEqual(copy[keyword].value, source[keyword].value, keyword)
                    self.assertNotEqual(copy.SeriesInstanceUID, series)

    def test_attributes(self):
        self.make_echo()
        keywords = ["PatientName", "PatientID", "AccessionNumber", "StudyID", "StudyDescription", "SeriesNumber",
                    "SeriesDescription"]
        options = ["patient-name", "patient-id", "accession", "study-id", "study-description", "series-number",
                   "series-description"]
        given = ["Жук^Åse", "B1", "A 2", "", "Größe", "77", "心エコー"]
        texts = [part for option, text in zip(options, given) for part in (f"--{option}", text)]
        here, there = self.folder, self.other
        # Comments in ISO 2022 need their character set.
        before = {path for path in self.state() if path.name != "DICOMDIR"}
        run = program.run("save-as", here, "--series", STILLS, "--to", there, "--new-study", *texts)
        self.assertEqual(run.returncode, 1)
        for path, line in zip(self.images(here, STILLS), program.lines(run.stderr), strict=True):
            self.assertRegex(line, f"^vantor: {path}: a text .+ cannot be written in the character set")
        self.assertEqual({path for path in self.state() if path.name != "DICOMDIR"}, before)
        ascii_texts = ["--patient-name", "Plain", "--series-description", "Copy"]
        for source, to, series, options, stored in [
                (here, there, CINE, texts, given), (there, here, OTHERS, texts, given),
                (here, there, STILLS, ascii_texts, ["Plain", "NR4711", "NR4711-A", "", "Echo", "3", "Copy"])]:
            comments = dcmread(self.images(source, series)[0]).ImageComments
            for path in self.save_as(series, "--new-study", *options, source=source, to=to):
                copy = dcmread(path)
                self.assertEqual([str(value) if value is not None else "" for value in map(copy.get, keywords)], stored)
                self.assertEqual(copy.ImageComments, comments)

    def test_texts_keep_their_character_set(self):
        for number, (character_set, name) in enumerate([
                ("ISO_IR 144", "Жук^Анна".encode("iso8859-5")), ("ISO_IR 101", "Żuk^Łucja".encode("iso8859-2")),
                ("ISO 2022 IR 100", "Größe^Åse".encode("latin-1")), ("", "Größe^Åse".encode("latin-1")),
                ("GB18030", "Wang=王^小东".encode("gb18030"))], 1):
            series = f"{OTHERS}.{number}"
            data_set = image(OTHERS, 1)
            data_set.StudyInstanceUID, data_set.SeriesInstanceUID, data_set.PatientID = series, series, f"P{number}"
            data_set.SOPInstanceUID = f"{series}.1"
            data_set.SpecificCharacterSet, data_set.ImageComments = character_set, ""
            for tag in [(0x10, 0x10), (8, 0x1030), (8, 0x103E)]:  # as it is, in any encoding
                data_set[tag] = DataElement(tag, "OB", name)
            save(data_set, self.folder / f"I{number}", ImplicitVRLittleEndian)
            self.done("create", self.folder, "--force")
            for options in ([], ["--new-study", "--patient-id", "NEW"]):
                path, = self.save_as(series, *options)
                record_texts = [record for record in dcmread(self.other / "DICOMDIR").DirectoryRecordSequence
                                if record.DirectoryRecordType in ("PATIENT", "STUDY", "SERIES")][-3:]
                tags = [(0x10, 0x10), (8, 0x1030), (8, 0x103E)]
                for holder, tag in [*((dcmread(path), tag) for tag in tags), *zip(record_texts, tags)]:
                    self.assertEqual(holder.get_item(tag).value.rstrip(b" "), name, (character_set, tag))
                    self.assertEqual(holder.get("SpecificCharacterSet") or "", character_set)

    def test_carets_at_the_end_of_a_name(self):
        self.make_echo()
        (self.top / "vantor").mkdir()
        for number, name in enumerate([b"Doe^Jane^^^ ", b"Doe^Jane"]):
            (self.top / "vantor/registry").write_text(CARETS.format(number))
            path, _ = self.save_as(CINE, "--new-study", "--patient-name", "Doe^Jane^^^", "--patient-id", f"{number}",
                                   env={**os.environ, "XDG_CONFIG_HOME": str(self.top)})
            self.assertEqual(dcmread(path).get_item((0x10, 0x10)).value.rstrip(), name.rstrip())

    def test_only_images_are_saved(self):
        self.make_series(count=2, size=16)
        report = image(OTHERS, 3, media_tree.make_data_set(0, 0, 0, 0, media_tree.REPORT))
        report.SOPClassUID = media_tree.REPORT
        save(report, self.folder / "R")
        self.done("create", self.folder, "--force")
        for command, options, is_noted in [("save", [], False), ("save", ["--new-uids"], True),
                                           ("save-as", ["--to", self.other], True)]:
            run = program.run(command, self.folder, "--series", OTHERS, *options)
            self.assertEqual((run.returncode, len(program.lines(run.stderr))), (0, is_noted), run.stderr)
            self.assertRegex(run.stdout.decode(), r"^saved   \S+  2 images\n$")

    # ---- What cannot be done ----

    def test_errors_are_one_line(self):
        self.make_series(count=2, size=16)
        save(media_tree.make_data_set(1, 0, 0, 0, media_tree.REPORT), self.folder / "R")
        self.done("create", self.folder, "--force")
        plain, missing, report = self.top / "PLAIN", self.top / "MISSING", "1.2.3.1.0.0"
        plain.mkdir()
        for arguments, told in [
                (["save", missing, "--series", OTHERS], f"{missing}: no such file or folder"),
                (["save", self.folder, "--series", "1.2"], f"series 1.2 is not in {self.path}"),
                (["save", self.folder, "--series", report], f"series {report}: no images to be saved"),
                (["save-as", self.folder, "--series", OTHERS, "--to", missing], f"{missing}: no such file or folder"),
                (["save-as", self.folder, "--series", OTHERS, "--to", plain],
                 f"{plain}: no DICOMDIR is here; vantor create makes one")]:
            self.assertEqual(self.refusal(*arguments), f"vantor: {told}")
        for arguments in (["save"], ["save", "a"], ["save", "a", "--series", "1", "--series", "2"],
                          ["save-as", "a", "--series", "1"], ["save-as", "a", "--to", "b"],
                          *(["save-as", "a", "--series", "1", "--to", "b", *bad] for bad in (
                              ["--erase-physicians"], ["--series-number", "1a"], ["--study-id", "s" * 17],
                              ["--patient-name", "a^b^c^d^e^f"], ["--patient-id", "a\\b"]))):
            self.assertRegex(self.refusal(*arguments, status=2), r"^vantor: [^\n]+ --help tells more\)$")
        for command in ("save", "save-as"):
            self.assertIn(f"Example:\n  vantor {command}", self.done(command, "--help").decode())
        self.path.unlink()
        self.check_failure(["save", self.folder], "SaveOpenForUpdateFailure")

    def test_media_that_cannot_be_written(self):
        paths = self.make_series(size=16)
        user = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
        for path in (self.folder, self.folder / "IMAGES", self.other):
            path.chmod(0o555)
            self.addCleanup(path.chmod, 0o755)
        with unittest.mock.patch.object(program, "PROGRAM", self.copy_program()):
            before = self.state()
            self.check_failure(["save", self.folder], "SaveOpenForUpdateFailure", **user)
            self.check_failure(["save-as", self.folder, "--to", self.other], "SaveOpenForUpdateFailure", **user)
            self.assertEqual(self.state(), before)
            self.folder.chmod(0o777)
            self.path.chmod(0o666)
            _, lines = self.check_failure(["save", self.folder], "SaveGeneralFailure", len(paths), **user)
        self.assertEqual([line.split(": ")[1] for line in lines], [str(path) for path in paths])
        self.assertEqual({**self.state(), self.path: before[self.path]}, before)
        self.check_numbers(range(10, 60, 10))

    def test_full_disks(self):
        paths = self.make_series()
        before = self.state()
        for arguments, folder in [(["save", self.folder], self.folder),
                                  (["save-as", self.folder, "--to", self.other], self.other)]:
            uid, lines = self.check_failure(arguments, "SaveGeneralFailure", **limited(BIG + 65536))
            self.assertTrue(lines[0].startswith(f"vantor: {paths[2]}: "), lines)
            self.check_whole(folder)
            self.check_numbers([1, 2, 4, 5, 30] if folder == self.folder else [1, 2, 3, 4], folder, uid)
        self.assertEqual(paths[2].read_bytes(), before[paths[2]])
        after = self.state()
        self.assertEqual(len(after), len(before) + 4)
        text = program.run("save", self.folder, "--series", OTHERS, **limited(BIG + 65536)).stdout.decode()
        self.assertEqual(text, f"failed  {OTHERS}  4 of 5 images written\n")

    def test_a_disk_that_is_full_for_the_DICOMDIR(self):
        self.make_series(count=9, size=16)
        before = self.path.read_bytes()
        self.check_failure(["save-as", self.folder, "--to", self.folder], "DirectoryWriteError", **limited(len(before)))
        self.assertEqual(self.path.read_bytes(), before)
        self.assertEqual(len(self.file_set()), 9)

    def test_files_that_are_gone_or_damaged(self):
        paths = self.make_series(size=16)
        paths[1].unlink()
        paths[3].write_bytes(paths[3].read_bytes()[:400])
        damaged = paths[3].read_bytes()
        for arguments in (["save-as", self.folder, "--to", self.other], ["save", self.folder]):
            uid, lines = self.check_failure(arguments, "SaveGeneralFailure", 2)
            self.assertEqual([line.split(": ")[1] for line in lines], [str(paths[1]), str(paths[3])])
            if arguments[0] == "save-as":
                self.check_whole(self.other)
                self.check_numbers([1, 3, 5], self.other, uid)
        self.assertEqual(paths[3].read_bytes(), damaged)
        self.assertEqual([dcmread(paths[index]).InstanceNumber for index in (0, 2, 4)], [1, 3, 5])

    def test_interrupted(self):
        paths = self.make_series(count=40, size=BIG // 4)
        pixels = [dcmread(path).PixelData for path in paths]
        begin = time.monotonic()
        self.done("save", self.folder, "--series", OTHERS)
        needed = time.monotonic() - begin
        seen = set()
        for round_number in range(KILLS):
            arguments = [["save", self.folder], ["save-as", self.folder, "--to", self.other]][round_number // 2 % 2]
            with subprocess.Popen([program.PROGRAM, *arguments, "--series", OTHERS], stdout=subprocess.PIPE) as process:
                time.sleep(needed * (round_number + 1) / (KILLS + 1))
                process.send_signal([signal.SIGINT, signal.SIGKILL][round_number % 2])
                process.communicate(timeout=program.TIME_LIMIT)
            seen.add(process.returncode)
            self.assertEqual([dcmread(path).PixelData for path in paths], pixels)
            self.assertEqual(set(self.file_set()), set(paths))
            for path, found in self.file_set(self.other).items():
                self.assertEqual(media_tree.instance(path), found)
                self.assertIn(dcmread(path).get("PixelData"), [bytes(16), *pixels])
            self.assertEqual(self.images(self.folder, OTHERS), paths)
        self.assertLessEqual({-signal.SIGINT, -signal.SIGKILL}, seen, "none was interrupted in time")
        self.done("save", self.folder, "--series", OTHERS)
        self.check_numbers(range(1, 41))


if __name__ == "__main__":
    unittest.main()
