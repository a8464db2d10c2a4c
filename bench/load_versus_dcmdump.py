#!/usr/bin/python3
"""Times loading and showing a DICOMDIR against dcmdump over it, as whole processes, and measures the memory.

usage: bench/load_versus_dcmdump.py

Each patient has one study of ten series of 110 images. dcmdump, of dcmtk, prints every element to nowhere; or it
looks for one that is not there, which leaves little but the reading. The best of several runs counts. The memory
is the process's peak beyond that for an empty DICOMDIR; Debian's package time tells it. PROGRAMS names the folder
of directory_tree and vantor, build/release/bin unless set.
"""

import os
import struct
import subprocess
import tempfile
from pathlib import Path

from measuring import ROOT, seconds_for
from small_file import EXPLICIT, element, header, item, start_of_file

PATIENTS = [0, 1, 10, 100]
SERIES, IMAGES = range(10), range(110)
RUNS = 5
RECORD_HEAD = 8 + 12 + 10 + 12  # the item's tag and length, the next record's offset, the flag, the lower one's
SEQUENCE_HEAD = 12
ABSENT = "0004,1141"


def record(kind, below, *values):
    return b"".join(element(*value) for value in [((4, 0x1430), "CS", kind), *values]), below


def patient(number):
    def image(uid, index):
        return record("IMAGE", [], ((4, 0x1500), "CS", f"IMAGESDC\\I_{index:06}.DCM"),
                      ((4, 0x1510), "UI", "1.2.840.10008.5.1.4.1.1.6.1"), ((4, 0x1511), "UI", f"{uid}.{index}"),
                      ((4, 0x1512), "UI", EXPLICIT), ((0x20, 0x13), "IS", str(index)))

    uid = f"1.2.840.99999.{number}"
    series = [record("SERIES", [image(f"{uid}.{index}", image_index) for image_index in IMAGES],
                     ((8, 0x60), "CS", "US"), ((0x20, 0xE), "UI", f"{uid}.{index}"), ((0x20, 0x11), "IS", str(index)))
              for index in SERIES]
    study = record("STUDY", series, ((8, 0x20), "DA", "20240315"), ((8, 0x30), "TM", "101500"),
                   ((0x20, 0xD), "UI", uid), ((0x20, 0x10), "SH", str(number)))
    return record("PATIENT", [study], ((0x10, 0x10), "PN", f"Doe^{number}"), ((0x10, 0x20), "LO", f"P{number}"))


def offset(tag, value):
    return element(tag, "UL", struct.pack("<I", value))


def encode(records, start):
    """The items of records, each with those below it, from this offset in the file on."""
    items = []
    for index, (keys, below) in enumerate(records, 1):
        lower = start + RECORD_HEAD + len(keys)
        below_items = encode(below, lower)
        start = lower + len(below_items)
        head = (offset((4, 0x1400), start if index < len(records) else 0) + element((4, 0x1410), "US", b"\xff\xff") +
                offset((4, 0x1420), lower if below else 0))
        items.append(item(head + keys) + below_items)
    return b"".join(items)


def directory(patients):
    """The file with these records and those below them."""
    head = start_of_file(EXPLICIT, "1.2.840.10008.1.3.10") + element((4, 0x1130), "CS", "BENCH")
    first = len(head) + len(offset((4, 0x1200), 0)) + SEQUENCE_HEAD
    items = encode(patients, first)
    return head + offset((4, 0x1200), first if items else 0) + header((4, 0x1220), "SQ", len(items)) + items


def peak_of(command):
    """In bytes. A process starts with the peak of the one that starts it: that has to be a small one."""
    run = subprocess.run(["/usr/bin/time", "-f", "%M", *command], check=True, stdout=subprocess.DEVNULL,
                         stderr=subprocess.PIPE)
    return int(run.stderr) * 1024


def main():
    programs = Path(os.environ.get("PROGRAMS", ROOT / "build" / "release" / "bin"))
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "DICOMDIR"
        commands = {"load": [programs / "directory_tree", "--quiet", path], "dcmdump": ["dcmdump", path],
                    "search": ["dcmdump", "--search", ABSENT, path], "tree": [programs / "vantor", "tree", path],
                    "json": [programs / "vantor", "tree", "--json", path]}
        for patients in PATIENTS:
            content = directory([patient(number) for number in range(patients)])
            path.write_bytes(content)
            peak = peak_of(commands["load"])
            if patients == 0:
                empty = peak
                continue
            records = patients * (2 + len(SERIES) * (1 + len(IMAGES)))
            best = {name: min(seconds_for(command) for _ in range(RUNS)) for name, command in commands.items()}
            print(f"{records} records of {len(content) // records} bytes on average, in memory "
                  f"{(peak - empty) // records} each")
            for name, seconds in best.items():
                print(f"  {name:8} {seconds * 1000:8.1f} ms  {seconds / records * 1e6:6.2f} ms a thousand  "
                      f"dcmdump takes {best['dcmdump'] / seconds:5.1f} times as long")


if __name__ == "__main__":
    main()
