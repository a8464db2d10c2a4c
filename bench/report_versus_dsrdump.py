#!/usr/bin/python3
"""Times the opening of structured reports within a process against dsrdump, dcmtk's, as a whole process.

usage: bench/report_versus_dsrdump.py [ITEMS...]

Reports of 1,000, 10,000 and 100,000 items unless others are given: measurements with a method, a derivation and a
comment each, under headings; with lengths, with delimiters instead, and with the headings below each other down to
twenty levels. The best of several runs of each counts. VANTOR_BENCH names the program that has our part,
build/release/bench/vantor_bench unless set.
"""

import json
import os
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from measuring import program
from small_file import element, item, start_of_file, undefined_item, undefined_sequence

COMPREHENSIVE = "1.2.840.10008.5.1.4.1.1.88.33"
MEASUREMENTS_IN_HEADING = 50
ITEMS_IN_MEASUREMENT = 4
DEEPEST = 20
RUNS = 5


def sequence(tag, contents, is_delimited):
    if is_delimited:
        return undefined_sequence(tag, b"".join(undefined_item(content) for content in contents))
    return element(tag, "SQ", b"".join(item(content) for content in contents))


class Report:
    def __init__(self, is_delimited, is_deep):
        self.is_delimited, self.is_deep = is_delimited, is_deep

    def code(self, tag, value, scheme, meaning):
        content = element((8, 0x100), "SH", value) + element((8, 0x102), "SH", scheme) + element(
            (8, 0x104), "LO", meaning)
        return sequence(tag, [content], self.is_delimited)

    def item(self, relationship, value_type, name, value):
        return (element((0x40, 0xA010), "CS", relationship) + element((0x40, 0xA040), "CS", value_type) +
                self.code((0x40, 0xA043), *name) + value)

    def below(self, items):
        return sequence((0x40, 0xA730), items, self.is_delimited)

    def measurement(self, number):
        value = self.code((0x40, 0x8EA), "cm", "UCUM", "centimeter") + element((0x40, 0xA30A), "DS", str(number))
        method = self.code((0x40, 0xA168), "125220", "DCM", "Cubed")
        derivation = self.code((0x40, 0xA168), "R-00317", "SRT", "Mean")
        comment = element((0x40, 0xA160), "UT", f"as seen in beat {number}")
        return self.item("CONTAINS", "NUM", ("29436-3", "LN", "Left Ventricle Internal End Diastolic Dimension"),
                         sequence((0x40, 0xA300), [value], self.is_delimited) + self.below([
                             self.item("HAS CONCEPT MOD", "CODE", ("G-C036", "SRT", "Method"), method),
                             self.item("INFERRED FROM", "CODE", ("121401", "DCM", "Derivation"), derivation),
                             self.item("HAS OBS CONTEXT", "TEXT", ("121106", "DCM", "Comment"), comment)]))

    def heading(self, items):
        return self.item("CONTAINS", "CONTAINER", ("121070", "DCM", "Findings"),
                         element((0x40, 0xA050), "CS", "SEPARATE") + self.below(items))

    def headings(self, count):
        """As many headings as hold so many items, those of a deep report below each other."""
        headings, depth = [], 0
        for first in range(0, count, MEASUREMENTS_IN_HEADING * ITEMS_IN_MEASUREMENT):
            items = [self.measurement(first + each) for each in range(MEASUREMENTS_IN_HEADING)]
            depth = depth + 1 if self.is_deep and 0 < depth < DEEPEST else 1
            headings.append(self.heading(items + ([headings.pop()] if depth > 1 else [])))
        return headings

    def write(self, path, count):
        header = b"".join(element(*each) for each in [
            ((8, 0x16), "UI", COMPREHENSIVE), ((8, 0x18), "UI", "1.2.3.4"), ((8, 0x23), "DA", "20240315"),
            ((8, 0x33), "TM", "101500"), ((8, 0x60), "CS", "SR"), ((0x10, 0x10), "PN", "Doe^John"),
            ((0x20, 0xD), "UI", "1.2.3.5"), ((0x20, 0xE), "UI", "1.2.3.6"), ((0x40, 0xA040), "CS", "CONTAINER")])
        title = self.code((0x40, 0xA043), "125200", "DCM", "Adult Echocardiography Procedure Report")
        flags = element((0x40, 0xA491), "CS", "COMPLETE") + element((0x40, 0xA493), "CS", "UNVERIFIED")
        path.write_bytes(start_of_file(sop_class=COMPREHENSIVE) + header + title +
                         element((0x40, 0xA050), "CS", "SEPARATE") + flags + self.below(self.headings(count)))


def milliseconds_of_dsrdump(path):
    times = []
    for _ in range(RUNS):
        start = time.perf_counter()
        subprocess.run(["dsrdump", "--unknown-relationship", path], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        times.append((time.perf_counter() - start) * 1000)
    return min(times)


def milliseconds_of_ours(bench, path):
    run = subprocess.run([bench, "--benchmark_filter=OpenReport", "--benchmark_format=json",
                          f"--benchmark_repetitions={RUNS}"], env={**os.environ, "VANTOR_REPORT": str(path)},
                         check=True, capture_output=True)
    return min(each["real_time"] for each in json.loads(run.stdout)["benchmarks"] if each["run_type"] == "iteration")


def main():
    counts = [int(each) for each in sys.argv[1:]] or [1000, 10000, 100000]
    bench = program("VANTOR_BENCH", "bench/vantor_bench")
    kinds = {"lengths": Report(False, False), "delimiters": Report(True, False), "deep": Report(False, True),
             "deep, delimiters": Report(True, True)}
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder, "report.dcm")
        for count in counts:
            for kind, report in kinds.items():
                report.write(path, count)
                ours, theirs = milliseconds_of_ours(bench, path), milliseconds_of_dsrdump(path)
                print(f"{count:7} items  {kind:16} {ours:8.2f} ms  dsrdump {theirs:8.1f} ms  "
                      f"ratio {theirs / ours:6.1f}")


if __name__ == "__main__":
    main()
