"""What images and movies show, as pydicom, numpy and ffmpeg tell it: arrays of frames, rows, columns, and red, green
and blue.
"""

import json
import subprocess

import numpy
from pydicom.multival import MultiValue
from pydicom.pixel_data_handlers.util import convert_color_space

GRIDS = {1: (1, 1), 2: (2, 1), 3: (2, 2), 4: (2, 2), 5: (3, 2), 6: (3, 2)}  # columns, rows
FULL = 255


def render(data_set):
    """As a viewer shows it at first."""
    pixels = data_set.pixel_array
    if data_set.get("NumberOfFrames", 1) == 1:
        pixels = pixels[None]
    if data_set.SamplesPerPixel == 1:
        return numpy.array([_render_gray(data_set, frame) for frame in pixels])
    if data_set.BitsStored == 16:
        pixels = numpy.round(pixels / 257)
    pixels = pixels.astype(numpy.uint8)
    if data_set.PhotometricInterpretation.startswith("YBR"):
        pixels = convert_color_space(pixels, "YBR_FULL", "RGB")
    return pixels


def _first(value):
    return float(value[0] if isinstance(value, MultiValue) else value)


def _range(data_set):
    """The stored values that are black and white where there is no window: those that the file tells for all its frames,
    if it has more than 8 bits, and else all that there can be.
    """
    lowest = -2**(data_set.BitsStored - 1) if data_set.PixelRepresentation else 0
    highest = lowest + 2**data_set.BitsStored - 1
    smallest, largest = data_set.get("SmallestImagePixelValue"), data_set.get("LargestImagePixelValue")
    if data_set.BitsStored > 8 and None not in (smallest, largest) and lowest <= smallest < largest <= highest:
        return smallest, largest
    return lowest, highest


def _render_gray(data_set, frame):
    slope, intercept = float(data_set.get("RescaleSlope", 1)), float(data_set.get("RescaleIntercept", 0))
    values = frame * slope + intercept
    if "WindowWidth" in data_set:
        center, width = _first(data_set.WindowCenter), _first(data_set.WindowWidth)
        levels = ((values - (center - 0.5)) / (width - 1) + 0.5) * FULL
    else:
        first, last = [(each * slope + intercept) for each in _range(data_set)]
        levels = (values - min(first, last)) / abs(last - first) * FULL
    levels = numpy.clip(numpy.floor(levels + 0.5), 0, FULL).astype(numpy.uint8)
    if data_set.PhotometricInterpretation == "MONOCHROME1":
        levels = FULL - levels
    return numpy.repeat(levels[..., None], 3, -1)


def compose(loops):
    """The frames of a movie of several images."""
    columns, rows = GRIDS[len(loops)]
    height, width = [max(loop.shape[axis] for loop in loops) for axis in (1, 2)]
    count = max(len(loop) for loop in loops)
    movie = numpy.zeros((count, rows * height, columns * width, 3), numpy.uint8)
    for index, loop in enumerate(loops):
        own = loop.shape[1:3]
        top, left = index // columns * height + (height - own[0]) // 2, index % columns * width + (width - own[1]) // 2
        chosen = [frame * len(loop) // count for frame in range(count)]
        movie[:, top:top + own[0], left:left + own[1]] = loop[chosen]
    return movie


def probe(path):
    """The movie's stream as ffprobe tells it, the frames counted by decoding them."""
    run = subprocess.run(["ffprobe", "-v", "error", "-count_frames", "-show_streams", "-of", "json", path], check=True,
                         capture_output=True)
    assert not run.stderr, run.stderr
    stream, = json.loads(run.stdout)["streams"]
    return stream


def decode(path, stream=None):
    """The frames, by ffmpeg, which must have nothing to complain about."""
    stream = stream or probe(path)
    run = subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-fps_mode", "passthrough", "-f", "rawvideo", "-pix_fmt",
                          "rgb24", "-"], check=True, capture_output=True, stdin=subprocess.DEVNULL)
    assert not run.stderr, run.stderr
    return numpy.frombuffer(run.stdout, numpy.uint8).reshape(-1, stream["height"], stream["width"], 3)
