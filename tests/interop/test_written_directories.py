#!/usr/bin/python3
"""DICOMDIRs that the library writes: other programs must read, accept and extend them; and what other programs
wrote must still be there after the library has changed it. The environment variables DIRECTORY_UPDATE and
DIRECTORY_TREE name the programs that have the library do so.
"""

import collections
import itertools
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest
import warnings

from pydicom import dcmread
from pydicom.filereader import read_file_meta_info
from pydicom.fileset import FileSet

import directory_records
import media_tree
import real_files

# Patients, their studies, their series, their images; behind the images comes one file of each other kind.
PATIENTS, STUDIES, SERIES, IMAGES = range(4), range(2), range(3), range(10)
OTHERS = [media_tree.REPORT, media_tree.RAW_DATA, media_tree.STATE, media_tree.PRIVATE_CLASS]

# What dciodvfy finds wrong with the tree's DICOMDIR. Hosts look into a report itself for these; its record has no
# more than what leads there.
FOUND_WRONG = {f"Error - Missing attribute Type 1 Required Element=<{name}> Module=<SRDocumentDirectoryRecord>"
               for name in ("InstanceNumber", "ContentDate", "ContentTime", "CompletionFlag", "VerificationFlag",
                            "ConceptNameCodeSequence")}

# The library tells raw data by these, which it also puts into the records that it finds.
ADDED = {"RAW DATA": [(8, 0x16), (8, 0x18)]}
EXPLICIT = "1.2.840.10008.1.2.1"
# What the generated study identification looks like: the local time down to milliseconds.
STUDY_ID = re.compile(rb"\d{6}\.\d{9}")


class WrittenDirectoriesTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.path = self.folder / "DICOMDIR"
        warnings.simplefilter("ignore")  # of pydicom, about itself

    def succeed(self, *command):
        """What a program says that finds no fault."""
        run = subprocess.run([*map(str, command)], capture_output=True, timeout=media_tree.TIME_LIMIT, check=False)
        self.assertEqual((run.returncode, run.stderr), (0, b""), command)
        return run.stdout

    def update(self, *arguments):
        self.succeed(media_tree.DIRECTORY_UPDATE, *arguments)

    def make_tree(self):
        """A few hundred files; the first study has no Study ID."""
        for place in itertools.product(PATIENTS, STUDIES, SERIES, range(len(IMAGES) + len(OTHERS))):
            kind = place[-1] - len(IMAGES)
            data_set = media_tree.make_data_set(*place, media_tree.IMAGE if kind < 0 else OTHERS[kind])
            if place[:2] == (0, 0):
                del data_set.StudyID
            media_tree.save(data_set, self.folder / "PAT{}/ST{}/SE{}/I{:03}".format(*place))
        media_tree.copy_real_files(self.folder)
        return self.list_files()

    def list_files(self):
        """What is in each, by its path."""
        files = [path for path in self.folder.rglob("*") if path.is_file() and "DICOMDIR" not in path.name]
        return {path: media_tree.instance(path) for path in files}

    def load_file_set(self):
        """The same as list_files, as pydicom finds it."""
        return {pathlib.Path(found.path): media_tree.instance(found.path) for found in FileSet(self.path)
                if (found.PatientID, found.StudyInstanceUID, found.SeriesInstanceUID, found.SOPInstanceUID) ==
                media_tree.instance(found.path)}

    def check_own_view(self, files):
        """The library finds every file, and has the tree that the records make."""
        lines = self.succeed(media_tree.DIRECTORY_TREE, self.path).splitlines()
        self.assertEqual(lines, directory_records.expected_lines(self.path))
        found = {self.folder / line.split(b"\t")[2].decode() for line in lines if line[:2] == b"3\t"}
        self.assertEqual(found, set(files))

    def test_other_programs_take_ours(self):
        files = self.make_tree()
        self.update("create", self.folder, "WRITTEN")
        self.assertIn(b"[WRITTEN]", self.succeed("dcmdump", self.path))
        self.assertEqual(self.succeed("dcmftest", self.path), b"yes: %s\n" % bytes(self.path))
        self.check_own_view(files)
        kinds = collections.Counter(place[-1][0] for place in media_tree.places(self.path))
        series = len(PATIENTS) * len(STUDIES) * len(SERIES)
        self.assertEqual([kinds[kind] for kind in ("SR DOCUMENT", "RAW DATA", "PRIVATE")], [series, series, 2 * series])
        self.assertEqual(self.load_file_set(), files)

    def test_dciodvfy_finds_nothing_else_wrong(self):
        self.make_tree()
        self.update("create", self.folder, "WRITTEN")
        run = subprocess.run(["dciodvfy", self.path], capture_output=True, text=True, check=False)
        errors = {line for line in run.stderr.splitlines() if line.startswith("Error")}
        self.assertEqual(errors, FOUND_WRONG)

    def test_names_and_generated_identification(self):
        self.make_tree()
        self.update("create", self.folder, "WRITTEN")
        records = {place[-1]: record for place, record in media_tree.places(self.path).items()}
        self.assertEqual(records["PATIENT", b"P0"][0x10, 0x10], ("PN", "Müller^0".encode("latin-1")))
        self.assertEqual(records["PATIENT", b"P0"][8, 5], ("CS", b"ISO_IR 100"))
        self.assertRegex(records["STUDY", b"1.2.3.0.0"][0x20, 0x10][1].strip(), STUDY_ID)
        self.assertEqual(records["STUDY", b"1.2.3.0.1"][0x20, 0x10], ("SH", b"S1"))

    def test_dcmmkdir_extends_ours_in_place(self):
        files = self.make_tree()
        self.update("create", self.folder, "WRITTEN")
        before = media_tree.places(self.path)
        added = media_tree.save(media_tree.make_data_set(0, 0, 0, 50), self.folder / "NEW/I1")
        self.succeed("dcmmkdir", "--quiet", "+A", "+id", self.folder, "+D", self.path, "NEW/I1")
        after = media_tree.places(self.path)
        self.assertEqual({place: after.get(place) for place in before}, before)
        self.assertEqual(len(after), len(before) + 1)
        self.check_own_view([*files, added])
        last = media_tree.save(media_tree.make_data_set(0, 0, 0, 51), self.folder / "NEW/I2")
        self.update("add", self.path, last)
        self.check_own_view([*files, added, last])
        self.assertEqual(self.load_file_set(), self.list_files())

    # ---- What others wrote ----

    def check_kept(self, before, places, root):
        """Every record is there with every element, and so is what is beside the records."""
        after = media_tree.places(self.path)
        for place, record in places.items():
            kept = dict(after.get(place, {}))
            for tag in ADDED.get(place[-1][0], []):
                if tag not in record:
                    kept.pop(tag, None)
            self.assertEqual(kept, record, place)
        self.assertEqual(media_tree.root_elements(self.path), root)
        meta = read_file_meta_info(self.path)
        self.assertEqual((meta.MediaStorageSOPInstanceUID, meta.TransferSyntaxUID),
                         (before.MediaStorageSOPInstanceUID, EXPLICIT))
        return after

    def check_updates(self):
        """Writes the DICOMDIR again, and then enters a file of a known series and one of a new patient."""
        before = read_file_meta_info(self.path)
        places, root = media_tree.places(self.path), media_tree.root_elements(self.path)
        self.update("rewrite", self.path)
        self.assertEqual(set(self.check_kept(before, places, root)), set(places))
        image = dcmread(next(self.folder.glob("77654033/CR1/*")))
        image.SOPInstanceUID = image.file_meta.MediaStorageSOPInstanceUID = "1.2.3.99"
        files = [media_tree.save(image, self.folder / "NEW/I1"),
                 media_tree.save(media_tree.make_data_set(99, 0, 0, 0), self.folder / "NEW/I2")]
        self.update("add", self.path, *files)
        self.assertEqual(len(self.check_kept(before, places, root)), len(places) + 1 + 4)
        self.assertEqual(self.succeed("dcmftest", self.path), b"yes: %s\n" % bytes(self.path))

    def make_dozen(self):
        media_tree.copy_real_files(self.folder)
        for number, sop_class in enumerate([media_tree.IMAGE, *OTHERS[:-1]]):
            media_tree.save(media_tree.make_data_set(0, 0, 0, number, sop_class), self.folder / f"PAT0/I{number}")

    def test_dcmmkdir(self):
        self.make_dozen()
        for options in [[], ["--length-undefined"], ["--group-length-create"]]:
            with self.subTest(options):
                self.succeed("dcmmkdir", "--quiet", "+r", "+X", "+id", self.folder, "+D", self.path, *options)
                self.assertIn(b"IconImageSequence", self.succeed("dcmdump", self.path))
                self.check_updates()
                shutil.rmtree(self.folder / "NEW")

    def test_gdcmgendir(self):
        self.make_dozen()
        self.succeed("gdcmgendir", "--recursive", "--root-uid", "1.2.3", "-i", self.folder, "-o", self.path)
        self.check_updates()

    def test_other_encodings(self):
        media_tree.copy_real_files(self.folder)
        for name in ["DICOMDIR-implicit", "DICOMDIR-bigEnd"]:
            with self.subTest(name):
                shutil.copy(real_files.DATA / "test_files/dicomdirtests" / name, self.path)
                self.check_updates()
                shutil.rmtree(self.folder / "NEW")

    def test_what_is_not_in_use_is_left_out(self):
        self.make_dozen()
        self.succeed("dcmmkdir", "--quiet", "+r", "+id", self.folder, "+D", self.path)
        _, records = directory_records.read_records(self.path)
        unused = max(records)  # nothing comes behind it
        content = bytearray(self.path.read_bytes())
        self.assertEqual(content[unused + 28:unused + 30], b"\xff\xff")
        content[unused + 28:unused + 30] = bytes(2)
        self.path.write_bytes(content)
        self.check_updates()
        self.assertEqual(len(directory_records.read_records(self.path)[1]), len(records) - 1 + 5)


if __name__ == "__main__":
    unittest.main()
