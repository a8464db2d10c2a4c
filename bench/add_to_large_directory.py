#!/usr/bin/python3
"""Times entering files into a DICOMDIR of 111,110 records: it should cost little more than reading and writing it.

usage: bench/add_to_large_directory.py

Beside whole processes that load it, write it again, and enter one file or a hundred, it times reading the file and
writing its bytes into a new one that takes its place once the disk has it, as the library does. The best of several
runs counts. DIRECTORY_UPDATE and DIRECTORY_TREE name the programs, those in build/release/bin unless set.
"""

import os
import subprocess
import tempfile
import time
from pathlib import Path

import load_versus_dcmdump as large
from measuring import program
from small_file import element, example_elements, start_of_file

PATIENTS, STUDIES = range(10), range(10)  # of a thousand images and ten series more
FILES = 100
RUNS = 5


def directory():
    studies = {patient: [large.patient(patient * len(STUDIES) + study)[1][0] for study in STUDIES]
               for patient in PATIENTS}
    return large.directory([(large.patient(patient)[0], studies[patient]) for patient in PATIENTS])


def write_image(folder, number):
    elements = {**example_elements(), (8, 0x18): element((8, 0x18), "UI", f"1.2.3.4.{number}"),
                (8, 0x16): element((8, 0x16), "UI", "1.2.840.10008.5.1.4.1.1.2")}
    path = folder / f"I{number:03}"
    path.write_bytes(start_of_file() + b"".join(elements[tag] for tag in sorted(elements)))
    return path


def copy_in_place(path):
    copy = path.with_name("COPY")
    with open(copy, "wb") as file:
        file.write(path.read_bytes())
        file.flush()
        os.fsync(file.fileno())
    os.replace(copy, path)


def main():
    def run(*command):
        subprocess.run([*map(str, command)], check=True, stdout=subprocess.DEVNULL)

    tree, update = program("DIRECTORY_TREE", "bin/directory_tree"), program("DIRECTORY_UPDATE", "bin/directory_update")
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        path, content = folder / "DICOMDIR", directory()
        files = [write_image(folder, number) for number in range(FILES)]
        actions = {"plain copy": lambda: copy_in_place(path), "load": lambda: run(tree, "--quiet", path),
                   "rewrite": lambda: run(update, "rewrite", path), "add 1": lambda: run(update, "add", path, files[0]),
                   f"add {FILES}": lambda: run(update, "add", path, *files)}
        print(f"{len(content)} bytes")
        for kind, action in actions.items():
            times = []
            for _ in range(RUNS):
                path.write_bytes(content)
                os.sync()
                begin = time.perf_counter()
                action()
                times.append(time.perf_counter() - begin)
            print(f"  {kind:10} {min(times) * 1000:8.1f} ms  grown by {path.stat().st_size - len(content)} bytes")


if __name__ == "__main__":
    main()
