#!/usr/bin/python3
"""Files that are cut, changed, made of noise or built to exhaust a reader.

Whatever a file holds, the program ends by itself within the time limit, with 0 or 1, and says in one line what is
wrong. It never takes a damaged value for a good one.
"""

import os
import pathlib
import random
import struct
import tempfile
import unittest

import program
import small_file
from small_file import EXPLICIT, IMPLICIT

MEBIBYTE = 1 << 20
LONGEST_HEADER = 12  # an element whose header is cut is not seen
ODD_LENGTHS = [0, 1, 2, 3, 7, 0xFE, 0xFFFE, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFD, 0xFFFFFFFE,
               0xFFFFFFFF]

# JSON key: the tag of the element that it shows.
SHOWN = {"uid": (8, 0x18), "studyDate": (8, 0x20), "accessionNumber": (8, 0x50), "modality": (8, 0x60),
         "studyDescription": (8, 0x1030), "sourceImageInstanceUIDs": (8, 0x2112), "patientName": (0x10, 0x10),
         "patientId": (0x10, 0x20), "patientBirthDate": (0x10, 0x30), "studyUID": (0x20, 0xD),
         "seriesUID": (0x20, 0xE), "seriesNumber": (0x20, 0x11), "imageNumber": (0x20, 0x13),
         "numberOfFrames": (0x28, 8)}
ABSENT = ("", None, -1, [])


class BadInputTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def check_ends_well(self, run, name):
        """Done, or failed with one line about it."""
        self.assertIn(run.returncode, (0, 1), name)
        self.assertEqual(len(program.lines(run.stderr)), run.returncode, (name, run.stderr))

    def info(self, path):
        """What info --json says of a file; checks the text form and the status on the way."""
        run = program.run("info", "--json", path)
        text_run = program.run("info", path)
        self.check_ends_well(run, path.name)
        self.check_ends_well(text_run, path.name)
        self.assertEqual(run.returncode, text_run.returncode)
        self.assertEqual(run.stderr, text_run.stderr)
        info, = program.read_json_lines(run.stdout)
        self.assertEqual("error" in info, run.returncode == 1)
        return info

    def dump(self, path):
        run = program.run("dump", path)
        self.check_ends_well(run, path.name)
        return run

    def survive(self, contents):
        """Writes files, shows and dumps each; gives what info --json says of them, in their order."""
        paths = [self.write(f"file{number}", content) for number, content in enumerate(contents)]
        run = program.run("info", "--json", *paths)
        if run.returncode not in (0, 1):
            for path in paths:
                self.info(path)  # names the file that ended the program
        infos = program.read_json_lines(run.stdout)
        self.assertEqual([info["path"] for info in infos], [str(path) for path in paths])
        self.assertEqual(len(program.lines(run.stderr)), sum("error" in info for info in infos))
        for path in paths:
            self.dump(path)
        return infos

    def check_refused(self, path):
        self.assertIn("error", self.info(path), path.name)
        run = self.dump(path)
        self.assertEqual((run.returncode, run.stdout), (1, b""), path.name)

    def test_what_is_no_dicom_file_is_refused(self):
        noise = random.Random(1).randbytes
        contents = {"empty": b"", "one": b"D", "magic": b"DICM", "preamble": bytes(128), "short": bytes(128) + b"DIC",
                    "bare": bytes(128) + b"DICM", "text": b"hello\n" * 100, "noise": noise(MEBIBYTE),
                    "zeros": bytes(MEBIBYTE), "meta": small_file.start_of_file()}
        for name, content in contents.items():
            self.check_refused(self.write(name, content))

    def test_what_is_no_file_is_refused(self):
        for path in (self.folder, self.folder / "missing", self.folder / "missing" / "file", self.folder / ("x" * 300),
                     self.folder / ("long/" * 100)):
            self.check_refused(path)
        self.assertEqual(program.run("info", "").returncode, 1)

    def test_a_pipe_does_not_hold_the_program_up(self):
        path = self.folder / "pipe"
        os.mkfifo(path)
        self.check_refused(path)

    def check_cut(self, elements, length, data_start, info, whole):
        """A file cut at a length: an error, or nothing but true values."""
        if "error" in info:
            return
        start = data_start
        ranges = {}
        for tag, encoded in elements.items():
            ranges[tag] = (start, start + len(encoded))
            start += len(encoded)
        for key, tag in SHOWN.items():
            begin, end = ranges[tag]
            if length >= end:
                self.assertEqual(info[key], whole[key], (key, length))
            else:
                self.assertIn(info[key], ABSENT, (key, length))
                self.assertLess(length, begin + LONGEST_HEADER, (key, "taken for absent"))

    def test_a_file_cut_anywhere_shows_true_values_or_none(self):
        for transfer_syntax in (EXPLICIT, IMPLICIT):
            start = small_file.start_of_file(transfer_syntax)
            elements = small_file.example_elements(transfer_syntax)
            content = start + b"".join(elements.values())
            whole, = self.survive([content])
            self.assertFalse([key for key in SHOWN if whole[key] in ABSENT], whole)
            for length, info in enumerate(self.survive([content[:length] for length in range(len(content))])):
                self.check_cut(elements, length, len(start), info, whole)

    def test_changed_lengths_are_survived(self):
        start = small_file.start_of_file()
        elements = small_file.example_elements()
        content = start + b"".join(elements.values())
        position = len(start)
        contents = []
        for encoded in elements.values():
            is_long = encoded[4:6].decode() in small_file.LONG_HEADER_VRS
            field, form, limit = (8, "<I", 1 << 32) if is_long else (6, "<H", 1 << 16)
            for length in {length % limit for length in ODD_LENGTHS}:
                changed = bytearray(content)
                struct.pack_into(form, changed, position + field, length)
                contents.append(changed)
            position += len(encoded)
        self.survive(contents)

    def test_changed_bytes_are_survived(self):
        content = small_file.start_of_file() + b"".join(small_file.example_elements().values())
        generator = random.Random(2)
        contents = []
        for _ in range(400):
            changed = bytearray(content)
            for _ in range(generator.randint(1, 8)):
                changed[generator.randrange(128, len(changed))] = generator.choice([0, 0xFF, generator.randrange(256)])
            contents.append(changed)
        self.survive(contents)

    def test_noise_behind_good_meta_information_is_survived(self):
        for transfer_syntax in (EXPLICIT, IMPLICIT):
            start = small_file.start_of_file(transfer_syntax)
            sizes = [MEBIBYTE] * 2 + [4096] * 40
            self.survive([start + random.Random(seed).randbytes(size) for seed, size in enumerate(sizes)])

    def test_deep_nesting_is_survived(self):
        depth = 50_000
        tag = (8, 0x2112)
        for transfer_syntax in (EXPLICIT, IMPLICIT):
            opened = (small_file.header(tag, "SQ", small_file.UNDEFINED, transfer_syntax) +
                      small_file.undefined_item(b"")[:8])
            closed = small_file.undefined_item(b"")[8:] + small_file.undefined_sequence(tag, b"")[-8:]
            for name, nested in {"closed": opened * depth + closed * depth, "open": opened * depth}.items():
                path = self.write(name, small_file.start_of_file(transfer_syntax) + nested)
                self.info(path)
                self.dump(path)

    def test_many_items_take_no_longer_than_they_are_many(self):
        count = 300_000
        source = small_file.element((8, 0x1155), "UI", "1.2.3.9")
        for make_item in (small_file.item, small_file.undefined_item):
            items = small_file.undefined_sequence((8, 0x2112), make_item(source) * count)
            path = self.write("many", small_file.start_of_file() + items)
            run = program.run("info", "--json", path)
            info, = program.read_json_lines(run.stdout)
            self.assertEqual(len(info["sourceImageInstanceUIDs"]), count)
            self.dump(path)


if __name__ == "__main__":
    unittest.main()
