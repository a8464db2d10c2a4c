#!/usr/bin/python3
"""Proves that layers.py finds what it is for, and lets good code pass, on small trees made for the purpose."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

LAYERS = pathlib.Path(__file__).resolve().parent / "layers.py"


def faults_of(files):
    """What layers.py prints about a tree of these files."""
    with tempfile.TemporaryDirectory() as folder:
        for path, text in files.items():
            file = pathlib.Path(folder, path)
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text, encoding="utf-8")
        run = subprocess.run([sys.executable, LAYERS, folder], capture_output=True, text=True, check=False)
        lines = run.stdout.splitlines()
        assert (run.returncode != 0) == bool(lines), run
        return lines


EMPTY = {"platform/File.h": "", "host/Trace.h": "", "dicom/TFile.h": "", "dicom/TException.h": "",
         "records/TDoc.h": "", "wrappers/Info.h": "", "cli/Print.h": "", "tests/support/Folder.h": "",
         "tests/dicom/Builder.h": "",
         "platform/posix/Handle.h": "", "platform/windows/Handle.h": ""}

GOOD = {
    "a lower folder": ("wrappers/A.cpp", '#include "dicom/TFile.h"'),
    "the own folder": ("dicom/A.cpp", '#include "dicom/TFile.h"'),
    "a system header in a port": ("platform/posix/A.cpp", "#include <unistd.h>"),
    "a question in a source of platform": ("platform/A.cpp", "#ifdef _WIN32"),
    "the outer classes in the program": ("cli/A.cpp", '#include "wrappers/Info.h"\n#include <CLI/CLI.hpp>'),
    "the exception in the program": ("cli/A.cpp", '#include "dicom/TException.h"'),
    "a test with its folder and support": (
        "tests/dicom/A.cpp", '#include <gtest/gtest.h>\n#include "dicom/TFile.h"\n#include "tests/support/Folder.h"'),
    "a test with test code of a lower folder": ("tests/wrappers/A.cpp", '#include "tests/dicom/Builder.h"'),
    "a test of the program with test code of the library": ("tests/cli/A.cpp", '#include "tests/dicom/Builder.h"'),
    "a fuzz target with test code": ("fuzz/A.cpp", '#include "tests/dicom/Builder.h"'),
    "words in comments and texts": (
        "dicom/A.cpp", '// _WIN32 "\nauto a = "__linux__ //"; /* <unistd.h>\n#include <unistd.h> */ int b = 1\'000;'),
}

BAD = {
    "a higher folder": ("dicom/A.cpp", '#include "wrappers/Info.h"', "dicom/A.cpp:1:"),
    "a folder that came later": ("records/A.cpp", '\n#include "wrappers/Info.h"', "records/A.cpp:2:"),
    "a test with test code of a higher folder": (
        "tests/host/A.cpp", '#include "tests/dicom/Builder.h"', "tests/host/A.cpp:1:"),
    "test code inside the program": ("cli/A.cpp", '#include "tests/dicom/Builder.h"', "cli/A.cpp:1:"),
    "a test above its folder": ("tests/dicom/A.cpp", '#include "wrappers/Info.h"', "tests/dicom/A.cpp:1:"),
    "the program inside the library": ("wrappers/A.cpp", '#include "cli/Print.h"', "wrappers/A.cpp:1:"),
    "test code inside the library": ("dicom/A.cpp", '#include "tests/support/Folder.h"', "dicom/A.cpp:1:"),
    "the program below the outer classes": ("cli/A.cpp", '#include "dicom/TFile.h"', "cli/A.cpp:1:"),
    "a port from outside": ("dicom/A.cpp", '#include "platform/posix/Handle.h"', "dicom/A.cpp:1:"),
    "a port from the other": (
        "platform/posix/A.cpp", '#include "platform/windows/Handle.h"', "platform/posix/A.cpp:1:"),
    "a system header": ("dicom/A.cpp", "#include <unistd.h>", "dicom/A.cpp:1:"),
    "a system header in a test": ("tests/dicom/A.cpp", "#include <windows.h>", "tests/dicom/A.cpp:1:"),
    "a system header in a header of platform": ("platform/A.h", "#  include <sys/stat.h>", "platform/A.h:1:"),
    "the test package in the library": ("dicom/A.cpp", "#include <gtest/gtest.h>", "dicom/A.cpp:1:"),
    "a question after the system": ("dicom/A.h", "#if defined(_WIN32)", "dicom/A.h:1:"),
    "a question after the compiler": ("host/A.h", "int a;\n#ifdef _MSC_VER", "host/A.h:2:"),
    "a question after a header": ("host/A.h", "#if __has_include(<unistd.h>)", "host/A.h:1:"),
    "an include made by a macro": ("dicom/A.cpp", "#include HEADER", "dicom/A.cpp:1:"),
    "a file that is not there": ("dicom/A.cpp", '#include "dicom/Gone.h"', "dicom/A.cpp:1:"),
    "code behind a comment": ("dicom/A.cpp", "/* a */ // b\n/* c */\n#include <unistd.h> // d", "dicom/A.cpp:3:"),
    "code behind a raw text": ("dicom/A.cpp", 'auto a = R"x(" // )x";\n#include <unistd.h>', "dicom/A.cpp:2:"),
}


class Layers(unittest.TestCase):
    def test_good_code_passes(self):
        for what, (path, text) in GOOD.items():
            with self.subTest(what):
                self.assertEqual([], faults_of({**EMPTY, path: text}))

    def test_each_fault_is_found_where_it_is(self):
        for what, (path, text, where) in BAD.items():
            with self.subTest(what):
                faults = faults_of({**EMPTY, path: text})
                self.assertEqual(1, len(faults), faults)
                self.assertTrue(faults[0].startswith(where), faults)

    def test_circle_is_found_once(self):
        faults = faults_of({"dicom/A.h": '#include "dicom/B.h"', "dicom/B.h": '#include "C.h"',
                            "dicom/C.h": '#include "dicom/A.h"', "dicom/A.cpp": '#include "dicom/A.h"'})
        self.assertEqual(1, len(faults), faults)
        self.assertIn("circle", faults[0])

    def test_file_that_includes_itself_is_a_circle(self):
        self.assertEqual(1, len(faults_of({"dicom/A.h": '#include "dicom/A.h"'})))

    def test_tree_without_sources_is_a_fault(self):
        self.assertEqual(1, len(faults_of({"README.md": ""})))


if __name__ == "__main__":
    unittest.main()
