#!/usr/bin/python3
"""The program as users and scripts meet it: help, exit status, the forms of its output, and what ends it early."""

import os
import pathlib
import pty
import resource
import signal
import subprocess
import tempfile
import time
import unittest

import program
import small_file

FILE_COMMANDS = ["info", "dump"]
COMMANDS = [*FILE_COMMANDS, "tree", "create", "add", "copy", "delete", "save", "save-as",
            "drives", "dirs", "sr"]
INFO_KEYS = ["path", "kind", "uid", "seriesUID", "seriesDescription", "seriesNumber", "studyID", "studyUID",
             "studyDescription", "studyDate", "studyTime", "patientBirthDate", "accessionNumber", "referringPhysician",
             "modality", "imageNumber", "numberOfFrames", "patientName", "patientId", "contentDate", "contentTime",
             "sourceImageClassUIDs", "sourceImageInstanceUIDs"]
MANY_FILES = 5000
ITEMS_OF_LONG_REPORT = 20_000
LONG_WORK = 3  # seconds; a bar is due after half a second
READ_SIZE = 4096
MANY_FILES_TIME = 10  # seconds; it takes one at most when the machine has nothing else to do


class CommandLineTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, changes=None):
        """The example file with some elements in place of others or added; gives its path."""
        elements = {**small_file.example_elements(), **(changes or {})}
        path = self.folder / name
        path.write_bytes(small_file.start_of_file() + b"".join(elements[tag] for tag in sorted(elements)))
        return path

    def write_long_report(self):
        """A file that takes a while to read."""
        items = small_file.item(small_file.element((8, 0x1155), "UI", "1.2.3.9")) * ITEMS_OF_LONG_REPORT
        return self.write("long", {(8, 0x2112): small_file.undefined_sequence((8, 0x2112), items)})

    def write_named(self, name, patient_name):
        return self.write(name, {(0x10, 0x10): small_file.element((0x10, 0x10), "PN", patient_name)})

    # ---- Help and usage ----

    def test_help_is_everywhere_with_an_example(self):
        for arguments in (["--help"], *([command, "--help"] for command in COMMANDS)):
            run = program.run(*arguments)
            self.assertEqual((run.returncode, run.stderr), (0, b""))
            self.assertIn("Example:\n  vantor " + arguments[0].replace("--help", "info"), run.stdout.decode())
        for command in COMMANDS:
            self.assertIn(f"\n  {command} ", program.run("--help").stdout.decode())
        self.assertRegex(program.run("--version").stdout.decode(), r"^vantor \d+\.\d+\.\d+\n$")

    def test_wrong_usage_is_told_in_one_line(self):
        for arguments in ([], ["--nothing"], ["nothing"], ["info"], ["info", "--nothing", "file"],
                          ["--json", "info", "a"], ["dump"], ["dump", "one", "two"], ["dump", "--dictionary"],
                          ["--trace", "loud", "info", "a"], ["info", "\x1b[31m\n", "--\x1b"]):
            run = program.run(*arguments)
            self.assertEqual((run.returncode, run.stdout), (2, b""), arguments)
            self.assertRegex(run.stderr.decode(), r"^vantor: [^\n\x1b]+ --help tells more\)\n$", arguments)

    def test_trace_levels_are_taken_before_and_behind_the_command(self):
        path = self.write("file")
        plain = program.run("info", path)
        for level in ("error", "warning", "info", "verbose"):
            for arguments in (["--trace", level, "info", path], ["info", "--trace", level, path],
                              ["info", path, f"--trace={level}"]):
                run = program.run(*arguments)
                self.assertEqual((run.returncode, run.stdout), (0, plain.stdout), arguments)

    # ---- info ----

    def test_info_as_json(self):
        path = self.write("file")
        run = program.run("info", "--json", path)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        info, = program.read_json_lines(run.stdout)
        self.assertEqual(list(info), INFO_KEYS)
        self.assertEqual(info, {
            "path": str(path), "kind": "image", "uid": "1.2.3.4", "seriesUID": "1.2.3.6", "seriesDescription": "",
            "seriesNumber": 7, "studyID": "", "studyUID": "1.2.3.5", "studyDescription": "Chest ",
            "studyDate": "2024-03-15", "studyTime": "2024-03-15T14:35:12", "patientBirthDate": "1954-12-31",
            "accessionNumber": "A1", "referringPhysician": "", "modality": "CT", "imageNumber": 12,
            "numberOfFrames": 2, "patientName": "Doe^John", "patientId": "P1", "contentDate": "2024-03-15",
            "contentTime": "2024-03-15T14:35:12", "sourceImageClassUIDs": [small_file.CT_IMAGE] * 2,
            "sourceImageInstanceUIDs": ["1.2.3.9"] * 2})

    def test_info_as_text_has_a_block_for_each_file(self):
        first, second = self.write("first"), self.write("second")
        run = program.run("info", first, second)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        blocks = run.stdout.decode().split("\n\n")
        self.assertEqual([block.splitlines()[0] for block in blocks], [str(first), str(second)])
        rows = blocks[0].splitlines()[1:]
        for label, value in (("Kind", "image"), ("Patient name", "Doe^John"), ("Study description", "Chest"),
                             ("Study date", "15 Mar 2024, 14:35:12"), ("Date of birth", "31 Dec 1954"),
                             ("Frames", "2"), ("Source image", "1.2.3.9")):
            self.assertTrue([row for row in rows if row.split("  ")[1] == label and row.endswith(f"  {value}")], rows)
        self.assertNotIn("Series description", blocks[0])
        starts = {len(row) - len(row[2:].partition("  ")[2].lstrip()) for row in rows}
        self.assertEqual(len(starts), 1, "the values do not stand in one column")

    def test_dates_that_are_none_are_null_or_shown_as_what_they_are(self):
        path = self.write("file", {(8, 0x20): small_file.element((8, 0x20), "DA", "2024.03.15"),
                                   (0x10, 0x30): small_file.element((0x10, 0x30), "DA", "19541301")})
        info, = program.read_json_lines(program.run("info", "--json", path).stdout)
        for key in ("studyDate", "studyTime", "contentDate", "contentTime", "patientBirthDate"):
            self.assertIsNone(info[key], key)
        text = program.run("info", path).stdout.decode()
        self.assertIn("(not a date: 2024.03.15)\n", text)
        self.assertIn("(not a date: 19541301)\n", text)

        path = self.write("file", {(8, 0x30): small_file.element((8, 0x30), "TM", "14:35:12")})
        info, = program.read_json_lines(program.run("info", "--json", path).stdout)
        self.assertEqual((info["studyDate"], info["studyTime"]), ("2024-03-15", None))
        self.assertIn("  15 Mar 2024 (not a time: 14:35:12)\n", program.run("info", path).stdout.decode())

    def test_files_that_cannot_be_read_do_not_hide_the_others(self):
        good = self.write("good")
        bad = self.folder / "bad"
        bad.write_bytes(b"no DICOM file")
        missing = self.folder / "missing"
        told = [f"vantor: {bad}: Invalid Dicom File", f"vantor: {missing}: file not found"]
        for command in FILE_COMMANDS:
            run = program.run(command, self.folder)
            self.assertEqual(program.lines(run.stderr), [f"vantor: {self.folder}: this is a folder, not a file"])
        run = program.run("info", bad, good, missing, good)
        self.assertEqual(run.returncode, 1)
        self.assertEqual(program.lines(run.stderr), told)
        self.assertEqual(run.stdout.decode().count(f"{good}\n"), 2)
        run = program.run("info", "--json", bad, good, missing)
        self.assertEqual(run.returncode, 1)
        self.assertEqual(program.lines(run.stderr), told)
        infos = program.read_json_lines(run.stdout)
        self.assertEqual(infos[0], {"path": str(bad), "error": "Invalid Dicom File"})
        self.assertEqual((infos[1]["path"], infos[1]["kind"]), (str(good), "image"))
        self.assertEqual(infos[2], {"path": str(missing), "error": "file not found"})

    # ---- Text ----

    def test_text_is_utf8_whatever_the_locale_and_the_file(self):
        names = {"utf8": ("Дмитрий^山田".encode(), "Дмитрий^山田"),
                 "western": (b"M\xfcller^J\xf6rg ", "Müller^Jörg"),
                 "broken": (b"\xff\xfe\x80^\xc3\x28", "ÿþ€^Ã("), "beyond": ("\U0001f600".encode(), "\U0001f600")}
        for name, (stored, shown) in names.items():
            path = self.write_named(name + "-é", stored)
            for locale in ("C", "C.UTF-8"):
                environment = {**os.environ, "LC_ALL": locale}
                text = program.run("info", path, env=environment).stdout.decode("utf-8")
                self.assertIn(f"  {shown}\n", text)
                self.assertTrue(text.startswith(f"{path}\n"))
                info, = program.read_json_lines(program.run("info", "--json", path, env=environment).stdout)
                self.assertEqual(info["patientName"].rstrip(), shown)
                self.assertEqual(info["path"], str(path))
                self.assertIn(shown, program.run("dump", path, env=environment).stdout.decode("utf-8"))

    def test_control_characters_do_not_reach_the_terminal(self):
        name = "A\x1b[2J\x07\r\nB\x7fC\u009b\u0085D"
        path = self.write_named("file\x1b", name)
        outputs = [program.run(*arguments, path) for arguments in (["info"], ["info", "--json"], ["dump"])]
        outputs.append(program.run("info", self.folder / "\x1b[31mmissing"))
        for run in outputs:
            for text in (run.stdout.decode(), run.stderr.decode()):
                controls = [character for character in text
                            if character != "\n" and (character < " " or "\x7f" <= character <= "\x9f")]
                self.assertEqual(controls, [], text)
        self.assertIn("A\\x1B[2J\\x07\\x0D\\x0AB\\x7FC\\x9B\\x85D", outputs[0].stdout.decode())
        info, = program.read_json_lines(outputs[1].stdout)
        self.assertEqual(info["patientName"].rstrip(), name)

    # ---- dump ----

    def test_dump_shows_names_from_a_dictionary(self):
        dictionary = self.folder / "dictionary.txt"
        dictionary.write_text('(0008,0060) VR="CS" Name="Modality"\n(0010,0020) VR="LO" Name="Patient ID"\n')
        path = self.write("file")
        run = program.run("dump", "--dictionary", dictionary, path)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        self.assertIn("        0060  CS  00000002  Modality  CT\n", run.stdout.decode())
        self.assertIn("        0020  LO  00000002  Patient ID  P1\n", run.stdout.decode())
        self.assertTrue(run.stdout.startswith(b"  0002  0000  UL  "))
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        for bad in (self.folder / "missing", self.folder, pipe):
            run = program.run("dump", "--dictionary", bad, path)
            self.assertEqual((run.returncode, run.stdout), (1, b""))
            self.assertEqual(program.lines(run.stderr), [f"vantor: {bad}: cannot be read"])

    def test_line_ends_in_values_do_not_look_like_elements(self):
        comment = "first line\r\nsecond line\r\n\r\nlast"
        path = self.write("file", {(0x20, 0x4000): small_file.element((0x20, 0x4000), "LT", comment)})
        lines = program.lines(program.run("dump", path).stdout)
        start = next(number for number, line in enumerate(lines) if line.endswith("  first line"))
        self.assertRegex(lines[start + 1], r"^ {20,}second line$")
        self.assertRegex(lines[start + 3], r"^ {20,}last *$")

    def test_dump_shows_binary_data_as_dots(self):
        data = b"\x01\xfe\0AB\x1b\n\x80CD\xff\x02"
        path = self.write("file", {(0x29, 0x1010): small_file.element((0x29, 0x1010), "UN", data)})
        run = program.run("dump", path)
        self.assertIn("  0029  1010  UN  0000000C  .. AB...CD..\n", run.stdout.decode())

    def test_dump_of_a_large_file_costs_what_it_shows(self):
        size = 1 << 30
        path = self.write("file", {(0x7FE0, 0x10): small_file.header((0x7FE0, 0x10), "OW", size)})
        os.truncate(path, path.stat().st_size + size)  # zeros that take no room on the disk
        run = program.run("dump", path)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        most = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss  # of any run so far, in KiB
        self.assertLess(most << 10, size // 2)
        self.assertTrue(run.stdout.endswith(b"  7FE0  0010  OW  40000000  00000000000000000000...\n"))

    # ---- Progress ----

    def run_at_a_terminal(self, *arguments):
        """What the program writes on a terminal that is its standard error; it must succeed."""
        reader, terminal = pty.openpty()
        with subprocess.Popen([program.PROGRAM, *map(str, arguments)], stdout=subprocess.DEVNULL,
                              stderr=terminal) as process:
            os.close(terminal)
            shown = b""
            with open(reader, "rb", buffering=0) as screen:
                try:
                    while part := screen.read(READ_SIZE):
                        shown += part
                except OSError:  # how the system tells that the other side has gone
                    pass
            self.assertEqual(process.wait(program.TIME_LIMIT), 0)
        return shown.decode("ascii")

    def time_of(self, *arguments):
        start = time.monotonic()
        program.run(*arguments)
        return time.monotonic() - start

    def test_long_work_shows_how_far_it_is_at_a_terminal_only(self):
        report = self.write_long_report()
        count = int(LONG_WORK / min(self.time_of("info", report) for _ in range(5))) + 2
        shown = self.run_at_a_terminal("info", *[report] * count)
        # Each is drawn over the one before, so a carriage return stands between them.
        bars = [bar for bar in shown.split("\r") if bar.strip()]
        self.assertGreater(len(bars), 0)
        for bar in bars:
            self.assertRegex(bar, rf"^\[#*\.*\] +\d+%  \d+ of {count} files *$")
        self.assertTrue(shown.endswith("\r" + " " * len(bars[-1]) + "\r"), "the last bar stays")
        run = program.run("info", *[report] * count)
        self.assertEqual((run.returncode, run.stderr), (0, b""))

    def test_short_work_shows_nothing_at_a_terminal(self):
        self.assertEqual(self.run_at_a_terminal("info", self.write("file")), "")

    # ---- What ends it early, and how long it takes ----

    def write_many(self):
        path = self.write("file")
        return [path] * MANY_FILES

    def test_many_files_take_one_process_a_moment(self):
        start = time.monotonic()
        run = program.run("info", "--json", *self.write_many())
        self.assertLess(time.monotonic() - start, MANY_FILES_TIME)
        self.assertEqual((run.returncode, run.stdout.count(b"\n")), (0, MANY_FILES))

    def test_a_reader_that_goes_away_is_no_error(self):
        for is_signal_ignored in (False, True):
            with subprocess.Popen([program.PROGRAM, "info", *map(str, self.write_many())], stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE, restore_signals=not is_signal_ignored) as process:
                process.stdout.readline()
                process.stdout.close()
                self.assertEqual(process.stderr.read(), b"")
                status = process.wait(program.TIME_LIMIT)
                self.assertEqual(status, 1 if is_signal_ignored else -signal.SIGPIPE)

    def test_output_that_cannot_be_written_is_an_error(self):
        good, missing = str(self.write("file")), str(self.folder / "missing")
        no_output = r"vantor: standard output: [^\n]+\n"
        for files, pattern in (([good], f"^{no_output}$"),
                               ([good, missing], f"^vantor: {missing}: [^\n]+\n{no_output}$")):
            with open("/dev/full", "wb") as full:
                run = subprocess.run([program.PROGRAM, "info", *files], stdout=full, stderr=subprocess.PIPE,
                                     timeout=program.TIME_LIMIT, check=False)
            self.assertEqual(run.returncode, 1)
            self.assertRegex(run.stderr.decode(), pattern)


if __name__ == "__main__":
    unittest.main()
