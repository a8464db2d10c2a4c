#!/usr/bin/python3
"""Times saving a series of one long cine loop, in place and as a copy, against cp of its file, as whole processes.

usage: bench/save_versus_cp.py [MEGABYTES] [RUNS]

The source is read from memory. What is saved is on the disk when the program ends, what cp has copied need not be;
so cp is timed with sync of its file as well. The median of the runs counts, taken in turns, and the most memory that
a process had; what this script has itself is the least that is told. VANTOR names the program,
build/release/bin/vantor unless set. TMPDIR says where.
"""

import os
import shutil
import statistics
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

from measuring import measure, program
from small_file import CT_IMAGE, element, example_elements, start_of_file

MEGABYTE = 1 << 20
FRAMES = 100


def write_loop(path, megabytes):
    elements = {**example_elements(), (8, 0x16): element((8, 0x16), "UI", CT_IMAGE),
                (0x28, 8): element((0x28, 8), "IS", str(FRAMES)),
                (0x7FE0, 0x10): struct.pack("<HH2sHI", 0x7FE0, 0x10, b"OW", 0, megabytes * MEGABYTE)}
    with open(path, "wb") as file:
        file.write(start_of_file() + b"".join(elements[tag] for tag in sorted(elements)))
        for _ in range(megabytes):
            file.write(os.urandom(MEGABYTE))


def main():
    given = [int(each) for each in sys.argv[1:]]
    size, runs = [*given, *(1024, 5)[len(given):]]
    vantor = program("VANTOR", "bin/vantor")
    with tempfile.TemporaryDirectory() as name:
        source, target, copy = Path(name, "SOURCE"), Path(name, "TARGET"), Path(name, "COPY")
        source.mkdir()
        write_loop(source / "I1", size)
        subprocess.run([vantor, "create", source], check=True)
        series = ["--series", "1.2.3.6"]
        commands = {"cp": ["cp", "--reflink=never", source / "I1", copy],
                    "cp, sync": ["sh", "-c", 'cp --reflink=never "$1" "$2" && sync "$2"', "sh", source / "I1", copy],
                    "save": [vantor, "save", source, *series],
                    "save-as": [vantor, "save-as", source, *series, "--to", target, "--anonymous", "--new-study"]}
        results = {kind: [] for kind in commands}
        for _ in range(runs):
            for kind, command in commands.items():
                copy.unlink(missing_ok=True)
                shutil.rmtree(target, ignore_errors=True)
                target.mkdir()
                subprocess.run([vantor, "create", target], check=True, stdout=subprocess.DEVNULL)
                os.sync()
                results[kind].append(measure(command))
        medians = {kind: statistics.median(seconds for seconds, _ in own) for kind, own in results.items()}
        for kind, seconds in medians.items():
            memory = max(each for _, each in results[kind])
            print(f"{size} MB  {kind:9} {seconds * 1000:8.1f} ms  {seconds / medians['cp']:5.2f} times cp  "
                  f"{seconds / medians['cp, sync']:5.2f} times cp, sync  {size / seconds:6.0f} MB/s  "
                  f"{memory:6.1f} MB of memory")


if __name__ == "__main__":
    main()
