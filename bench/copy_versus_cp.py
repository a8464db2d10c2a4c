#!/usr/bin/python3
"""Times copying a series of large files into a directory against cp of the same files, as whole processes.

usage: bench/copy_versus_cp.py [MEGABYTES] [FILES]

The sources are read from memory. The library waits until the disk has the files before its DICOMDIR names them; cp
does not. The best of several runs counts, taken in turns. DIRECTORY_UPDATE names the program, build/release/bin/directory_update unless set. TMPDIR says where.
"""

import os
import shutil
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

from measuring import program, seconds_for
from small_file import CT_IMAGE, element, example_elements, start_of_file

MEGABYTE = 1 << 20
RUNS = 5


def write_image(path, number, size):
    elements = {**example_elements(), (8, 0x16): element((8, 0x16), "UI", CT_IMAGE),
                (8, 0x18): element((8, 0x18), "UI", f"1.2.3.4.{number}"),
                (0x7FE0, 0x10): struct.pack("<HH2sHI", 0x7FE0, 0x10, b"OW", 0, size) + os.urandom(size)}
    path.write_bytes(start_of_file() + b"".join(elements[tag] for tag in sorted(elements)))


def main():
    size, count = [int(given) for given in sys.argv[1:]] or [128, 8]
    update = program("DIRECTORY_UPDATE", "bin/directory_update")
    with tempfile.TemporaryDirectory() as name:
        source, target = Path(name, "SOURCE"), Path(name, "TARGET")
        source.mkdir()
        for number in range(count):
            write_image(source / f"I{number}", number, size * MEGABYTE)
        times = {"import": [], "cp": []}
        for _ in range(RUNS):
            for kind, own in times.items():
                shutil.rmtree(target, ignore_errors=True)
                target.mkdir()
                subprocess.run([update, "create", target, "BENCH"], check=True)
                os.sync()
                commands = {"import": [update, "import", target / "DICOMDIR", source],
                            "cp": ["cp", "--reflink=never", *source.iterdir(), target]}
                own.append(seconds_for(commands[kind]))
        best = {kind: min(own) for kind, own in times.items()}
        for kind, seconds in best.items():
            print(f"{count} files of {size} MB  {kind:6} {seconds * 1000:8.1f} ms  {seconds / best['cp']:5.2f} times  "
                  f"{size * count / seconds:7.0f} MB/s")


if __name__ == "__main__":
    main()
