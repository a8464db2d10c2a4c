#!/usr/bin/python3
"""Times `vantor info` against dcmdump over the same small files, as whole processes.

usage: bench/info_versus_dcmdump.py [NUMBER_OF_FILES]

The files are copies of one small image that Debian's python3-pydicom brings, each with a name of its own;
dcmdump is dcmtk's. Both read every file and print to nowhere, in turn, several times; the best run of each
counts. VANTOR names the program, build/release/bin/vantor unless set.
"""

import shutil
import sys
import tempfile
from pathlib import Path

import pydicom.data

from measuring import program, seconds_for

DEFAULT_NUMBER_OF_FILES = 5000
RUNS = 5
SMALL_FILE = "MR_small.dcm"


def main():
    number = int(sys.argv[1]) if len(sys.argv) > 1 else DEFAULT_NUMBER_OF_FILES
    vantor = program("VANTOR", "bin/vantor")
    sample = pydicom.data.get_testdata_file(SMALL_FILE)
    with tempfile.TemporaryDirectory() as folder:
        files = [str(Path(folder) / f"{index:06}.dcm") for index in range(number)]
        for file in files:
            shutil.copyfile(sample, file)
        commands = {"vantor info": [vantor, "info", *files], "dcmdump": ["dcmdump", *files]}
        best = {name: float("inf") for name in commands}
        for _ in range(RUNS):
            for name, command in commands.items():
                best[name] = min(best[name], seconds_for(command))
    for name, seconds in best.items():
        print(f"{name:12} {seconds * 1000:8.1f} ms  {seconds / number * 1e6:6.1f} us a file")
    print(f"ratio        {best['dcmdump'] / best['vantor info']:8.1f}")


if __name__ == "__main__":
    main()
