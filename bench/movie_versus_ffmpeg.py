#!/usr/bin/python3
"""Times exporting four loops as one uncompressed movie, against ffmpeg laying out and writing the same as rawvideo AVI.

usage: bench/movie_versus_ffmpeg.py [FRAMES] [RUNS]

Four loops of 640 x 480 pixels in a grid, as whole processes. The library gets its pictures over the clipboard, as from
controls that have them ready; ffmpeg reads them from one file of raw pixels that is in memory. cp of the movie tells
what the disk alone takes. The median of the runs counts, taken in turns, and the most memory that a process had; what
this script has itself is the least that is told. MOVIE_EXPORT names the program, build/release/bench/movie_export unless
set. TMPDIR says where.
"""

import os
import statistics
import sys
import tempfile
from pathlib import Path

from measuring import measure, program

VIEWS, WIDTH, HEIGHT = 4, 640, 480


def measure_making(product, command):
    product.unlink(missing_ok=True)
    os.sync()
    return measure(command)


def stack(source, frames, product):
    """ffmpeg's command: the same loop four times in a grid, kept at 24 bits a pixel."""
    loop = ["-f", "rawvideo", "-pixel_format", "bgr24", "-video_size", f"{WIDTH}x{HEIGHT}", "-framerate", str(frames),
            "-i", str(source)]
    grid = "xstack=inputs=4:layout=0_0|w0_0|0_h0|w0_h0,format=bgr24"
    return ["ffmpeg", "-v", "error", "-y", *loop * VIEWS, "-filter_complex", grid, "-c:v", "rawvideo", str(product)]


def main():
    given = [int(each) for each in sys.argv[1:]]
    frames, runs = [*given, *(200, 5)[len(given):]]
    export = program("MOVIE_EXPORT", "bench/movie_export")
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        source, movie, other, copy = (folder / each for each in ("loop.raw", "movie.avi", "other.avi", "copy.avi"))
        picture = os.urandom(WIDTH * HEIGHT * 3)
        with open(source, "wb") as file:
            for _ in range(frames):
                file.write(picture)
        size = [str(each) for each in (VIEWS, WIDTH, HEIGHT, frames)]
        commands = {"vantor": ([export, str(movie), *size], movie),
                    "ffmpeg": (stack(source, frames, other), other),
                    "cp": (["cp", "--reflink=never", str(movie), str(copy)], copy)}
        results = {kind: [] for kind in commands}
        for _ in range(runs):
            for kind, (command, product) in commands.items():
                results[kind].append(measure_making(product, command))
        megabytes = movie.stat().st_size / (1 << 20)
        medians = {kind: statistics.median(seconds for seconds, _ in own) for kind, own in results.items()}
        for kind, seconds in medians.items():
            memory = max(each for _, each in results[kind])
            print(f"{frames} frames, {megabytes:.0f} MB  {kind:7} {seconds * 1000:8.1f} ms  "
                  f"{medians['ffmpeg'] / seconds:5.2f} times as fast as ffmpeg  {seconds / medians['cp']:5.2f} times cp  "
                  f"{memory:6.1f} MB of memory")


if __name__ == "__main__":
    main()
