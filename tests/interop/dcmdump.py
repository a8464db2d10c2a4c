"""What another program, dcmdump of dcmtk, finds in a DICOM file."""

import re
import subprocess

# A line of its output: indentation, tag, VR, and the value before its length and multiplicity.
ELEMENT = re.compile(rb"^( *)\(([0-9a-f]{4}),([0-9a-f]{4})\) (..) (.*)$")
QUOTED = re.compile(rb"^\[(.*)\] *# +\d+, *\d+ .*$")
HEXADECIMAL = re.compile(rb"^([0-9a-f]{2}(?:\\[0-9a-f]{2})*) *# +\d+, *\d+ .*$")  # how it shows VR UN

# Values as they are stored: bytes outside ASCII as they come, padding kept, UIDs as numbers.
OPTIONS = ["--quiet", "--print-all", "--load-short", "--no-uid-names", "--print-nonascii", "--disable-correction",
           "--ignore-errors"]

DELIMITERS = {"fffe,e0dd", "fffe,e00d"}
ITEM = "fffe,e000"


def read_text(shown):
    """The bytes of a text as dcmdump shows it; empty for numbers and sequences."""
    quoted = QUOTED.match(shown)
    if quoted:
        return quoted[1]
    hexadecimal = HEXADECIMAL.match(shown)
    return bytes.fromhex(hexadecimal[1].decode().replace("\\", "")) if hexadecimal else b""


class Dump:
    """The top level of a file: its tags in order, meta information included, and its texts by tag."""

    def __init__(self, path):
        output = subprocess.run(["dcmdump", *OPTIONS, str(path)], capture_output=True, timeout=60, check=False).stdout
        self.tags = []
        self.texts = {}
        self.items = {}  # by the sequence's tag: the texts of each item by tag
        for line in output.split(b"\n"):
            self._take(ELEMENT.match(line))

    def _take(self, element):
        if not element:
            return
        tag = f"{element[2].decode()},{element[3].decode()}"
        depth = len(element[1]) // 2
        text = read_text(element[5])
        if depth == 0 and tag not in DELIMITERS:
            self.tags.append(tag)
            self.texts[tag] = text
        elif depth == 1 and tag == ITEM:
            self.items.setdefault(self.tags[-1], []).append({})
        elif depth == 2 and tag not in DELIMITERS and self.items.get(self.tags[-1]):
            self.items[self.tags[-1]][-1][tag] = text
