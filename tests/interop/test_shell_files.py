#!/usr/bin/python3
"""What a shell knows of the program: what bash and zsh offer for a command line that is not complete yet, and the
manual.
"""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

import program

SHELL_FILES = program.REPOSITORY / "cli/shell"
MANUAL = program.REPOSITORY / "cli/vantor.1"
BASH = """
source "$1"
COMP_WORDS=("${@:2}")
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
_vantor
printf '%s\\n' "${COMPREPLY[@]}"
"""
# The functions of zsh that offer something say what it is; compadd and the like work in its line editor only.
ZSH = """
compadd() { print -l -- $@ }
_files() { print -l -- *(N) }
_describe() { [[ $1 == -o ]] && shift; print -l -- ${${(P)2}%%:*} }
words=("${@:2}")
CURRENT=$#words
source "$1"
"""


def names_in_help(part, *words):
    """Of commands or options."""
    lines = program.run(*words, "--help").stdout.decode().splitlines()
    if part + ":" not in lines:
        return []
    start = lines.index(part + ":") + 1
    names = (re.match("  (?:-h,)?([a-z-]+)", line) for line in lines[start:lines.index("", start)])
    return [name[1] for name in names if name]


class CompletionTest(unittest.TestCase):
    def setUp(self):
        made = tempfile.TemporaryDirectory()
        self.addCleanup(made.cleanup)
        self.folder = pathlib.Path(made.name)
        (self.folder / "EXAM 1").mkdir()
        (self.folder / "FILE.dcm").touch()

    def offered(self, shell, *words):
        """Of the last word's completions; in zsh, which leaves that to its line editor, all that could come there."""
        script, own = {"bash": (BASH, "vantor.bash"), "zsh": (ZSH, "_vantor")}[shell]
        run = subprocess.run([shell, *(["-f"] if shell == "zsh" else []), "-c", script, shell, SHELL_FILES / own,
                              program.PROGRAM, *words], cwd=self.folder, env={**os.environ, "LC_ALL": "C.UTF-8"},
                             capture_output=True, text=True, timeout=60)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        return [line for line in run.stdout.splitlines() if line]

    def test_commands_options_and_files(self):
        cases = ((["sa"], {"save", "save-as"}, {"--json", "FILE.dcm"}),
                 (["disc", ""], {"status", "stage", "viewer", "burn", "clear"}, {"info", "FILE.dcm"}),
                 (["--"], {"--version", "--trace", "--help"}, {"--json", "info"}),
                 (["save-as", "--"], {"--patient-name", "--erase-physicians", "--json", "--help"}, {"--all", "save"}),
                 (["disc", "stage", "EXAM 1", "--"], {"--all", "--series"}, {"--name"}),
                 (["tree", ""], {"EXAM 1", "FILE.dcm"}, {"save", "--json"}),
                 (["--trace", "v"], {"verbose"}, {"FILE.dcm"}))
        for words, wanted, unwanted in cases:
            for shell in ("bash", "zsh"):
                with self.subTest(shell=shell, words=words):
                    offered = set(self.offered(shell, *words))
                    self.assertLessEqual(wanted, offered)
                    self.assertFalse(unwanted & offered)

    def test_bash_narrows_down_to_what_is_begun(self):
        self.assertEqual(self.offered("bash", "tree", "EX"), ["EXAM 1"])
        self.assertEqual(self.offered("bash", "save", "--new"), ["--new-uids"])
        self.assertEqual(self.offered("bash", "nothing-like-it"), [])


class ManualTest(unittest.TestCase):
    def test_it_tells_of_each_command_and_option(self):
        formatted = subprocess.run(["groff", "-ww", "-man", "-Tascii", "-P-cbou", "-rLL=1000n", MANUAL],
                                   capture_output=True, text=True, timeout=60)
        self.assertEqual((formatted.returncode, formatted.stderr), (0, ""))
        told = set(re.findall("[a-z-]*[a-z]", formatted.stdout))
        commands = [[name] for name in names_in_help("Commands")]
        commands += [["disc", name] for name in names_in_help("Commands", "disc")]
        self.assertGreater(len(commands), 15)
        for words in [[], *commands]:
            for name in [*words, *names_in_help("Options", *words)]:
                self.assertIn(name, told, words)


if __name__ == "__main__":
    unittest.main()
