#!/usr/bin/python3
"""Files made by many other programs, read by this one and by dcmdump.

Each file of the package python3-pydicom is on exactly one list of real_files.py. `vantor info` must read it with
the values that dcmdump finds, or refuse it, as its list says; `vantor dump` must show the same elements in the same
order. A file that moves from one list to another, or that is on none, is a failure.
"""

import re
import unittest

import dcmdump
import program
import real_files

UNDEFINED_IN_WINDOWS_1252 = {0x81, 0x8D, 0x8F, 0x90, 0x9D}

# JSON key: tag and the number of bytes that count.
TEXTS = {"uid": ("0008,0018", 64), "seriesUID": ("0020,000e", 64), "seriesDescription": ("0008,103e", 64),
         "studyID": ("0020,0010", 16), "studyUID": ("0020,000d", 64), "studyDescription": ("0008,1030", 64),
         "accessionNumber": ("0008,0050", 16), "referringPhysician": ("0008,0090", 64), "modality": ("0008,0060", 16),
         "patientName": ("0010,0010", 64), "patientId": ("0010,0020", 64)}
NUMBERS = {"seriesNumber": "0020,0011", "imageNumber": "0020,0013", "numberOfFrames": "0028,0008"}
STUDY_DATE, STUDY_TIME = "0008,0020", "0008,0030"
CONTENT_DATE, CONTENT_TIME = "0008,0023", "0008,0033"
BIRTH_DATE = "0010,0030"
SOURCE_IMAGES = "0008,2112"
SOURCE_UIDS = {"sourceImageClassUIDs": "0008,1150", "sourceImageInstanceUIDs": "0008,1155"}
PIXEL_DATA = "7fe0,0010"
SOP_CLASS = "0002,0002"
REPORT_CLASSES = {b"1.2.840.10008.5.1.4.1.1.88." + last for last in (b"11", b"22", b"33", b"1", b"2", b"3")}

# An element's line at the top level; the group is left blank when it is that of the line before.
DUMP_LINE = re.compile(r"^  (?:([0-9A-F]{4})|    )  ([0-9A-F]{4})  .{2}  [0-9A-F]{8}  ")


def decode(value):
    """8-bit text as a host sees it: UTF-8 when it is valid, else Windows-1252."""
    try:
        return value.decode("utf-8")
    except UnicodeDecodeError:
        return "".join(chr(byte) if byte in UNDEFINED_IN_WINDOWS_1252 else bytes([byte]).decode("cp1252")
                       for byte in value)


def cut(value, limit):
    """The first bytes of a value, up to a NUL, without half a character of UTF-8."""
    value = value.split(b"\0")[0]
    try:
        value.decode("utf-8")
        return value[:limit].decode("utf-8", "ignore").encode("utf-8")
    except UnicodeDecodeError:
        return value[:limit]


def date_of(texts, tag):
    match = re.match(rb"(\d{4})(\d\d)(\d\d)", texts.get(tag, b""))
    return "-".join(part.decode() for part in match.groups()) if match else None


def moment_of(texts, date_tag, time_tag):
    date = date_of(texts, date_tag)
    match = re.match(rb"(\d\d)(\d\d)?(\d\d)?", texts.get(time_tag, b""))
    if not date or not match:
        return None
    return date + "T" + ":".join((part or b"00").decode() for part in match.groups())


def number_of(text):
    match = re.match(rb"\s*([+-]?\d+)", text)
    return int(match[1]) if match else -1


def kind_of(dump):
    if dump.texts.get(SOP_CLASS, b"").rstrip(b"\0") in REPORT_CLASSES:
        return "sr"
    return "image" if PIXEL_DATA in dump.tags else "other"


def expected_info(path, dump):
    """What `vantor info` has to say about a file that dcmdump has read."""
    info = {"path": str(path), "kind": kind_of(dump)}
    for key, (tag, limit) in TEXTS.items():
        info[key] = decode(cut(dump.texts.get(tag, b""), limit))
    for key, tag in NUMBERS.items():
        info[key] = number_of(dump.texts.get(tag, b""))
    for key, tag in SOURCE_UIDS.items():
        items = dump.items.get(SOURCE_IMAGES, [])
        info[key] = [decode(cut(item[tag], 64)) for item in items if tag in item]
    info["studyDate"] = date_of(dump.texts, STUDY_DATE)
    info["studyTime"] = moment_of(dump.texts, STUDY_DATE, STUDY_TIME)
    info["patientBirthDate"] = date_of(dump.texts, BIRTH_DATE)
    info["contentDate"] = date_of(dump.texts, CONTENT_DATE) or info["studyDate"]
    info["contentTime"] = moment_of(dump.texts, CONTENT_DATE, CONTENT_TIME) or info["studyTime"]
    return info


def top_level_tags(dump_lines):
    """The tags in the output of `vantor dump`, without those inside items."""
    tags = []
    group = None
    for line in dump_lines:
        match = DUMP_LINE.match(line)
        if match:
            group = match[1] or group
            tags.append(f"{group},{match[2]}".lower())
    return tags


class RealFilesTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.read = {"image": real_files.IMAGES, "sr": real_files.REPORTS, "other": real_files.OTHERS}
        cls.all_read = set().union(*cls.read.values())
        files = [path for folder in real_files.FOLDERS for path in (real_files.DATA / folder).rglob("*")
                 if path.is_file()]
        cls.files = sorted(path.relative_to(real_files.DATA).as_posix() for path in files)
        cls.dumps = {name: dcmdump.Dump(real_files.DATA / name) for name in cls.all_read}
        run = program.run("info", "--json", *(real_files.DATA / name for name in cls.files))
        cls.info_run = run
        cls.infos = dict(zip(cls.files, program.read_json_lines(run.stdout)))

    def test_each_file_is_on_one_list(self):
        lists = [*self.read.values(), set(real_files.REFUSED)]
        self.assertEqual(sum(len(names) for names in lists), len(set().union(*lists)), "a file is on two lists")
        self.assertEqual(set(self.files), set().union(*lists))

    def test_info_tells_what_is_in_the_file(self):
        for kind, names in self.read.items():
            for name in sorted(names):
                with self.subTest(name):
                    expected = expected_info(real_files.DATA / name, self.dumps[name])
                    self.assertEqual(self.infos[name], expected)
                    self.assertEqual(self.infos[name]["kind"], kind)

    def test_info_refuses_what_it_cannot_read(self):
        for name, reason in real_files.REFUSED.items():
            with self.subTest(name, reason=reason):
                self.assertEqual(set(self.infos[name]), {"path", "error"})
        self.assertEqual(self.info_run.returncode, 1)
        self.assertEqual(len(program.lines(self.info_run.stderr)), len(real_files.REFUSED))

    def test_dump_shows_the_same_elements_in_the_same_order(self):
        for name in sorted(self.all_read - set(real_files.DUMP_STOPS)):
            with self.subTest(name):
                run = program.run("dump", real_files.DATA / name)
                self.assertEqual((run.returncode, run.stderr), (0, b""))
                self.assertEqual(top_level_tags(program.lines(run.stdout)), self.dumps[name].tags)

    def test_dump_ends_where_a_file_is_damaged(self):
        for name, reason in real_files.DUMP_STOPS.items():
            with self.subTest(name, reason=reason):
                run = program.run("dump", real_files.DATA / name)
                self.assertEqual((run.returncode, len(program.lines(run.stderr))), (1, 1))
                tags = top_level_tags(program.lines(run.stdout))
                self.assertEqual(tags[:len(self.dumps[name].tags)], self.dumps[name].tags)

    def test_dump_refuses_what_it_cannot_read(self):
        for name, reason in real_files.REFUSED.items():
            with self.subTest(name, reason=reason):
                run = program.run("dump", real_files.DATA / name)
                self.assertEqual((run.returncode, len(program.lines(run.stderr))), (1, 1))


if __name__ == "__main__":
    unittest.main()
