#!/usr/bin/python3
"""Times making a DICOMDIR over a tree of small files against dcmmkdir over the same tree, as whole processes.

usage: bench/index_versus_dcmmkdir.py [COUNT...]

The files, an image of 4 by 4 pixels each, lie in folders of a hundred: a series each, ten to a study. They are read
from memory, but are on the disk already: only the library waits until what it wrote is there. The best of several
runs counts. DIRECTORY_UPDATE names the program, build/release/bin/directory_update unless set.
"""

import os
import sys
import tempfile
from pathlib import Path

from measuring import program, seconds_for
from small_file import CT_IMAGE, element, example_elements, start_of_file

COUNTS = [5000, 20000]
IMAGES, SERIES, STUDIES = 100, 10, 5  # in each series, study and patient
RUNS = 5


def write_image(folder, number):
    series = number // IMAGES
    study = series // SERIES
    patient = study // STUDIES
    elements = example_elements()
    del elements[8, 0x2112]
    values = [((8, 0x16), "UI", CT_IMAGE), ((8, 0x18), "UI", f"1.2.3.{series}.{number}"),
              ((0x10, 0x20), "LO", f"P{patient}"), ((0x20, 0xD), "UI", f"1.2.3.{study}"),
              ((0x20, 0xE), "UI", f"1.2.3.{study}.{series}"), ((0x20, 0x10), "SH", f"S{study}"),
              ((0x20, 0x11), "IS", str(series)), ((0x20, 0x13), "IS", str(number))]
    elements.update({value[0]: element(*value) for value in values})
    path = folder / f"P{patient}" / f"S{study}" / f"E{series}" / f"I{number:06}"
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(start_of_file() + b"".join(elements[tag] for tag in sorted(elements)))


def seconds_to_make(path, command):
    path.unlink(missing_ok=True)
    return seconds_for(command)


def main():
    update = program("DIRECTORY_UPDATE", "bin/directory_update")
    for count in map(int, sys.argv[1:] or COUNTS):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            for number in range(count):
                write_image(folder, number)
            os.sync()
            path = folder / "DICOMDIR"
            commands = {"create": [update, "create", folder, "BENCH"],
                        "dcmmkdir": ["dcmmkdir", "--quiet", "--no-backup", "+r", "+id", folder, "+D", path]}
            best = {}
            for kind, command in commands.items():
                best[kind] = min(seconds_to_make(path, command) for _ in range(RUNS))
                print(f"{count} files  {kind:8} {best[kind] * 1000:8.1f} ms  {best[kind] / count * 1e6:6.1f} us "
                      f"a file  {best[kind] / best['create']:5.1f} times  {path.stat().st_size} bytes")


if __name__ == "__main__":
    main()
