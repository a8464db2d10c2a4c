"""Runs the program under test: the one that the environment variable VANTOR names, or the optimised build."""

import json
import os
import pathlib
import subprocess

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = os.environ.get("VANTOR", str(REPOSITORY / "build/release/bin/vantor"))
TIME_LIMIT = 20  # seconds; far more than any of the calls in these tests needs


def run(*arguments, **options):
    """The finished process; fails with subprocess.TimeoutExpired when it does not end."""
    return subprocess.run([PROGRAM, *map(str, arguments)], stdin=subprocess.DEVNULL, capture_output=True,
                          timeout=TIME_LIMIT, check=False, **options)


def read_json_lines(output):
    return [json.loads(line) for line in output.decode("utf-8").splitlines()]


def lines(output):
    return output.decode("utf-8").splitlines()
