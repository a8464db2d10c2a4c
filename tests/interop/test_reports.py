#!/usr/bin/python3
"""Structured reports as `vantor sr` shows them: what dcmtk finds in real reports and in made ones, in every encoding;
the text that people read; reports that are damaged or built to exhaust a reader.
"""

import fcntl
import os
import pathlib
import pty
import resource
import struct
import subprocess
import sys
import tempfile
import termios
import unittest
import warnings

import program
import real_files
import reports
from example_reports import (CONTENT, ECHO_CONTENT, ECHO_TEXT, GROUP, NOTE, TYPES, echo, encoded_item, nested,
                             only_item, sequence, small_report)
from reports import coded, text
from small_file import element, item

KEYS = ["path", "valid", "title", "type", "completion", "verification", "dateTime", "instanceNumber", "studyUID",
        "seriesUID", "uid", "patientName", "patientNumber", "root"]
NOT_VALID = {"valid": False, "title": "", "type": "Unknown", "completion": "", "verification": "", "dateTime": None,
             "root": None}
DEEPEST = 512
MANY_ITEMS = 100_000
LONG_TEXT = 10_000_000
MOST_MEMORY = 1 << 30  # several times what is used, for the sanitizers use some themselves
NARROW, STANDARD_WIDTH = 50, 80
sys.setrecursionlimit(10 * DEEPEST)  # what reads JSON calls itself for each level, twice


class ReportTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.path = self.folder / "report"
        warnings.simplefilter("ignore")  # of pydicom, about itself

    def write(self, content):
        self.path.write_bytes(content)
        return self.path

    def shown(self, path):
        run = program.run("sr", "--json", path)
        self.assertEqual((run.returncode, run.stderr), (0, b""), path)
        found, = program.read_json_lines(run.stdout)
        self.assertEqual(list(found), KEYS)
        self.assertEqual((found["path"], found["valid"]), (str(path), True))
        return found

    def text(self, *arguments):
        run = program.run("sr", *arguments)
        self.assertEqual((run.returncode, run.stderr), (0, b""), arguments)
        return run.stdout.decode()

    # ---- What others find ----

    def check_as_dumped(self, path, root):
        dumped = reports.read_with_dsrdump(path)
        self.assertGreater(len(dumped), 5)
        self.assertEqual(reports.as_dumped(root), dumped, path)

    def test_real_reports(self):
        for name in sorted(real_files.REPORTS):
            path = real_files.DATA / name
            self.check_as_dumped(path, self.shown(path)["root"])

    def test_made_reports_in_every_encoding(self):
        for patient, charset in (("Дмитрий^山田", "ISO_IR 192"), ("Müller^Jörg", "ISO_IR 100")):
            made = echo("Echo", patient=patient, charset=charset)
            for encoding in reports.ENCODINGS:
                with self.subTest(charset=charset, encoding=encoding):
                    found = self.shown(reports.save(made, self.path, *encoding))
                    self.check_as_dumped(self.path, found.pop("root"))
                    self.assertEqual(found, {
                        "path": str(self.path), "valid": True, "title": "Echo", "type": "USAdultCardiacSR",
                        "completion": "COMPLETE", "verification": "UNVERIFIED", "dateTime": "2024-03-15T10:15:30",
                        "instanceNumber": "7", "studyUID": "1.2.3", "seriesUID": "1.2.3.1", "uid": "1.2.3.1.7",
                        "patientName": reports.displayable(patient), "patientNumber": "P4711"})

    def test_types(self):
        for title, sop_class, kind in TYPES:
            made = reports.report((title, "DCM", "Title"), GROUP, sop_class=sop_class)
            self.assertEqual(self.shown(reports.save(made, self.path))["type"], kind)

    def test_reports_written_by_dcmtk(self):
        xml, copy, dump = [self.folder / name for name in ("xml", "copy", "dump")]
        reports.save(reports.report(("121058", "DCM", "Procedure Log"), ECHO_CONTENT[0], ECHO_CONTENT[2], GROUP),
                     self.path)
        for path in (real_files.DATA / "test_files/test-SR.dcm", self.path):
            whole = self.shown(path)["root"]
            xml.write_bytes(subprocess.run(["dsr2xml", "-q", path], capture_output=True, check=True).stdout)
            dump.write_bytes(subprocess.run(["dcmdump", "-q", "+L", path], capture_output=True, check=True).stdout)
            for syntax in ("+te", "+tb", "+ti"):
                for lengths in ("+e", "-e"):
                    for command in ("xml2dsr", "dump2dcm"):
                        source = xml if command == "xml2dsr" else dump
                        subprocess.run([command, "-q", syntax, lengths, source, copy], check=True)
                        self.assertEqual(self.shown(copy)["root"], whole, (command, syntax, lengths))

    # ---- Text ----

    def test_text_for_people(self):
        self.assertEqual(self.text(reports.save(echo(patient="Müller^Jörg"), self.path)), ECHO_TEXT)
        with_codes = self.text("--codes", self.path)
        for line in ("Adult Echocardiography Procedure Report (125200, DCM)", "1.4  Findings (121070, DCM)",
                     "  1.4.1  - Finding Site (363698007, SCT)  Left Ventricle (87878005, SCT)"):
            self.assertIn(f"\n{line}\n", "\n" + with_codes)

    def test_lines_fit_the_terminal(self):
        reports.save(echo(), self.path)
        reader, terminal = pty.openpty()
        self.addCleanup(os.close, reader)
        fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 25, NARROW, 0, 0))
        with subprocess.Popen([program.PROGRAM, "sr", self.path], stdout=terminal) as process:
            os.close(terminal)
            shown = b""
            while part := self.read_terminal(reader):
                shown += part
            self.assertEqual(process.wait(program.TIME_LIMIT), 0)
        widest = max(len(line) for line in shown.decode().splitlines())
        self.assertTrue(NARROW - 10 < widest <= NARROW, widest)

    @staticmethod
    def read_terminal(reader):
        try:
            return os.read(reader, 1 << 16)
        except OSError:  # how a terminal tells that the other side has gone
            return b""

    def test_control_characters_do_not_reach_the_terminal(self):
        bad = "A\x1b[2J\x07\x7f\u009bB"
        reports.save(reports.report(("1", "X\x1b", bad), text(("2", "Y\x1b", bad), bad + "\n" + bad),
                                    coded(("3", "X", bad), ("4\x07", "X", bad)), patient=bad,
                                    charset="ISO_IR 192"), self.path)
        for arguments in ([], ["--codes"], ["--json"]):
            shown = self.text(*arguments, self.path)
            self.assertEqual([c for c in shown if c != "\n" and (c < " " or "\x7f" <= c <= "\x9f")], [], arguments)
        root = self.shown(self.path)["root"]
        self.assertEqual((root["concept"], root["items"][0]["value"]), (bad, bad + "\n" + bad))

    # ---- What is no report, or a bad one ----

    def survive(self, content):
        """What is shown of a file, which may be refused with one line; both forms of output agree about that."""
        path = self.write(content)
        run, text_run = program.run("sr", "--json", path), program.run("sr", "--codes", path)
        self.assertIn(run.returncode, (0, 1), run.stderr)
        self.assertEqual((run.returncode, run.stderr), (text_run.returncode, text_run.stderr))
        self.assertEqual(len(program.lines(run.stderr)), run.returncode)
        found, = program.read_json_lines(run.stdout)
        self.assertEqual(found.get("valid", False), run.returncode == 0)
        self.assertEqual(text_run.stdout == b"", run.returncode == 1)
        self.assertLessEqual(max(map(len, text_run.stdout.decode().splitlines()), default=0), STANDARD_WIDTH)
        return found

    def test_what_is_no_report(self):
        cases = [("test_files/CT_small.dcm", "this is an image, not a structured report"),
                 ("test_files/rtplan.dcm", "this is not a structured report"),
                 ("test_files/README.txt", "Invalid Dicom File"), ("missing", "file not found"),
                 ("test_files", "this is a folder, not a file")]
        for name, problem in cases:
            path = real_files.DATA / name
            run, text_run = program.run("sr", "--json", path), program.run("sr", path)
            self.assertEqual((text_run.returncode, text_run.stdout), (1, b""), name)
            self.assertEqual(program.lines(text_run.stderr), [f"vantor: {path}: {problem}"])
            self.assertEqual((run.returncode, run.stderr), (1, text_run.stderr))
            found, = program.read_json_lines(run.stdout)
            if path.suffix != ".dcm":
                self.assertEqual(found, {"path": str(path), "error": problem})
                continue
            info, = program.read_json_lines(program.run("info", "--json", path).stdout)
            self.assertEqual(list(found), KEYS)
            self.assertEqual({key: found[key] for key in NOT_VALID}, NOT_VALID)
            for key in ("uid", "studyUID", "seriesUID"):
                self.assertEqual(found[key], info[key])
            self.assertEqual(found["patientNumber"], info["patientId"].strip())

    def test_a_report_without_value_type_is_damaged(self):
        found = self.survive(small_report(b"").replace(b"\x40\0\x40\xa0CS", b"\x40\0\x41\xa0CS"))
        self.assertEqual({key: found[key] for key in NOT_VALID}, NOT_VALID)
        self.assertEqual((found["uid"], found["patientNumber"]), ("1.2.3.4", "P1"))
        self.assertIn(b"structured report, but its content is damaged", program.run("sr", self.path).stderr)

    def test_what_is_missing_is_empty(self):
        root = self.survive(small_report(sequence(CONTENT, b"")))["root"]
        nothing = {"value": "", "scheme": "", "version": "", "meaning": ""}
        self.assertEqual((root["concept"], root["code"], root["items"]), ("", nothing, []))
        for value_type, value in (("NUM", ""), ("DATETIME", None)):
            shown, = self.survive(only_item(value_type))["root"]["items"]
            self.assertEqual((shown["value"], shown["observationDateTime"]), (value, None))

    def test_a_file_that_is_cut_anywhere(self):
        content = reports.save(reports.report(("121058", "DCM", "Log"), GROUP, text(NOTE, "end")),
                               self.path).read_bytes()
        for tenths in range(10):
            found = self.survive(content[:len(content) * tenths // 10])
            if found.get("valid"):  # as far as anyone can tell: there is nothing behind the header
                self.assertEqual(found["root"]["items"], [])

    def test_deep_content(self):
        for levels, is_undefined in ((500, False), (5000, True)):
            root = self.survive(nested(levels, is_undefined)).get("root")
            depth = 0
            while root and root["items"]:
                root, = root["items"]
                depth += 1
            self.assertEqual(depth, min(levels, DEEPEST - 1))

    def test_long_content(self):
        items = item(encoded_item("TEXT", element((0x40, 0xA160), "UT", "x"))) * MANY_ITEMS
        self.assertEqual(len(self.survive(small_report(sequence(CONTENT, items)))["root"]["items"]), MANY_ITEMS)
        for long in ("word " * (LONG_TEXT // 5) + "end", "x" * LONG_TEXT, "a\r\n\r\n" * MANY_ITEMS + "end"):
            shown, = self.survive(only_item("TEXT", element((0x40, 0xA160), "UT", long)))["root"]["items"]
            self.assertEqual(shown["value"], long)
        most = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss  # of any run so far, in KiB
        self.assertLess(most << 10, MOST_MEMORY)


if __name__ == "__main__":
    unittest.main()
