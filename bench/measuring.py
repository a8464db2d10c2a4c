"""What the benchmarks share: where the programs are, and how long one runs. Their test data are those of the interop
tests, which importing this makes importable."""

import os
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "interop"))


def program(variable, place):
    """The program that an environment variable names, or the one that is built in this place."""
    return os.environ.get(variable, str(ROOT / "build" / "release" / place))


def seconds_for(command):
    return measure(command)[0]


def measure(command):
    """Seconds, and megabytes of memory, for a command that succeeds and whose output goes nowhere."""
    begin = time.perf_counter()
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    seconds = time.perf_counter() - begin
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{command}: failed")
    return seconds, usage.ru_maxrss / 1024
