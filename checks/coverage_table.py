#!/usr/bin/python3
"""Prints how much of each folder ran, from a summary that llvm-cov has exported.

usage: checks/coverage_table.py SUMMARY
"""

import collections
import json
import os
import sys

KINDS = ["lines", "branches"]


def sums(files):
    """Covered and all, of each kind, for each folder below this one and for all of them."""
    found = collections.defaultdict(lambda: dict.fromkeys(KINDS, (0, 0)))
    for file in files:
        folder = os.path.dirname(os.path.relpath(os.path.normpath(file["filename"])))
        for name in (folder, "all"):
            for kind in KINDS:
                covered, count = found[name][kind]
                summary = file["summary"][kind]
                found[name][kind] = (covered + summary["covered"], count + summary["count"])
    return found


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        found = sums(json.load(file)["data"][0]["files"])
    print(f"{'folder':16}" + "".join(f"{kind:>26}" for kind in KINDS))
    for name in sorted(found, key=lambda name: (name == "all", name)):
        cells = [f"{covered} of {count}  {100 * covered / max(count, 1):5.1f} %"
                 for covered, count in (found[name][kind] for kind in KINDS)]
        print(f"{name:16}" + "".join(f"{cell:>26}" for cell in cells))


if __name__ == "__main__":
    main()
