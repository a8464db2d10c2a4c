#!/usr/bin/python3
"""DICOMDIRs of other programs, as found and damaged: the library must make the tree and the lists of them that
directory_records.py works out. The environment variable DIRECTORY_TREE names the program that shows them.

Opening a DICOMDIR makes a folder beside it: all of them are copies.
"""

import itertools
import pathlib
import random
import shutil
import subprocess
import tempfile
import unittest

import directory_records
import media_tree
import real_files

# Each DICOMDIR of python3-pydicom, and how many patients, studies, series, images, raw data and reports it has.
FOLDER = "test_files/dicomdirtests"
COUNTS = {
    "DICOMDIR": [2, 6, 13, 31, 0, 0],
    "DICOMDIR-bigEnd": [2, 6, 13, 31, 0, 0],
    "DICOMDIR-empty.dcm": [0, 0, 0, 0, 0, 0],
    "DICOMDIR-implicit": [2, 6, 13, 31, 0, 0],
    # The last record says that it is 24 bytes longer than the file: it is left out, though pydicom takes it.
    "DICOMDIR-nooffset": [2, 6, 13, 30, 0, 0],
    # The first record is no patient and leads nowhere; pydicom refuses to make a file set of it.
    "DICOMDIR-nopatient": [0, 0, 0, 0, 0, 0],
    "DICOMDIR-reordered": [2, 6, 13, 31, 0, 0],
    "TINY_ALPHA/DICOMDIR": [1, 1, 1, 50, 0, 0],
}

# An image, a report, raw data, and a presentation state, which the library has no documents for.
CLASSES = [media_tree.IMAGE, media_tree.REPORT, media_tree.RAW_DATA, media_tree.STATE]
IMAGES, OTHERS = 9, len(CLASSES) - 1  # in each series
# How the records of dcmmkdir start: where these values are, behind the start of the item.
NEXT_VALUE, IN_USE_VALUE, LOWER_VALUE, TYPE_VALUE = 16, 28, 38, 50
# Record types of six bytes, and those that dcmmkdir writes. One that breaks off early is what it starts like.
TYPES = [b"PATIEN", b"STUDY ", b"SERIES", b"IMAGE ", b"RAW DA", b"SR DOC", b"PRIVAT", b"image "]
SIX = ["STUDY", "SERIES", "IMAGE"]


def write_file(path, patient, study, series, number):
    sop_class = CLASSES[max(0, number - IMAGES + 1)]
    media_tree.save(media_tree.make_data_set(patient, study, series, number, sop_class), path)


class DirectoriesTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def show(self, path):
        """The lines of the tree and the counts, as the program has them and as they must be."""
        run = subprocess.run([media_tree.DIRECTORY_TREE, path], capture_output=True, timeout=60, check=False)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        lines = run.stdout.splitlines()
        self.assertEqual(lines, directory_records.expected_lines(path))
        tree, lists = lines[:-len(directory_records.LISTS)], lines[-len(directory_records.LISTS):]
        return tree, [int(line.split(b"\t")[1]) for line in lists]

    def make_medium(self, *options):
        for place in itertools.product(range(3), range(3), range(3), range(IMAGES + OTHERS)):
            write_file(self.folder / "PAT{}/ST{}/SE{}/I{:03}".format(*place), *place)
        path = self.folder / "DICOMDIR"
        subprocess.run(["dcmmkdir", "--quiet", "+r", "+id", self.folder, "+D", path, *options], check=True)
        return path

    def test_real_ones(self):
        found = [path.relative_to(real_files.DATA / FOLDER) for path in real_files.DATA.rglob("DICOMDIR*")]
        self.assertEqual({path.as_posix() for path in found}, set(COUNTS))
        for name, counts in COUNTS.items():
            with self.subTest(name):
                path = self.folder / pathlib.Path(name).name
                shutil.copy(real_files.DATA / FOLDER / name, path)
                self.assertEqual(self.show(path)[1], counts)

    def test_those_of_dcmmkdir_with_their_files(self):
        for options in [[], ["--length-undefined"], ["--group-length-create"]]:
            with self.subTest(options):
                tree, counts = self.show(self.make_medium(*options))
                self.assertEqual(counts, [3, 9, 27, 27 * IMAGES, 27, 27])
                found = {self.folder / line.split(b"\t")[2].decode() for line in tree if line.startswith(b"3")}
                self.assertEqual(found, set(self.folder.glob("*/*/*/*")))

    def test_what_is_none(self):
        for name in ["README.txt", "no_such_file"]:
            path = real_files.DATA / "test_files" / name
            run = subprocess.run([media_tree.DIRECTORY_TREE, path], capture_output=True, timeout=60, check=False)
            self.assertEqual((run.returncode, run.stdout, run.stderr.count(b"\n")), (1, b"", 1))

    def test_damaged_ones(self):
        """Records that point anywhere, are of another type, or are not in use."""
        path = self.make_medium()
        original = path.read_bytes()
        _, records = directory_records.read_records(path)
        offsets = list(records)
        has_six = {offset for offset, record in records.items() if record[directory_records.TYPE].value in SIX}
        choice = random.Random(4)
        for round_number in range(100):
            content = bytearray(original)
            for offset in choice.choices(offsets, k=choice.randrange(1, 20)):
                target = choice.choice([*offsets, 0, 1]).to_bytes(4, "little")
                patches = [(NEXT_VALUE, target), (LOWER_VALUE, target), (IN_USE_VALUE, bytes(2))]
                if offset in has_six:
                    patches += [(TYPE_VALUE, choice.choice(TYPES))] * 2
                start, value = choice.choice(patches)
                content[offset + start:offset + start + len(value)] = value
            path.write_bytes(content)
            with self.subTest(round_number):
                self.show(path)


if __name__ == "__main__":
    unittest.main()
