#!/usr/bin/python3
"""Movies of loops and stills in many encodings: ffmpeg finds in them, frame by frame and pixel by pixel, what pydicom
finds in the images, and what goes wrong leaves no movie, and not a part of one.
"""

import os
import random
import signal
import struct
import subprocess
import time
import unittest

import numpy
from pydicom import dcmread
from pydicom.encaps import encapsulate
from pydicom.uid import (ExplicitVRBigEndian, ExplicitVRLittleEndian, ImplicitVRLittleEndian, JPEG2000Lossless,
                         JPEGBaseline8Bit, RLELossless)

import media_tree
import medium_test
import pictures
import program
import real_files
from saved_series import NOBODY, limited, save

LOSSLESS = 0
NEAR = 3  # what rounding makes of colours
LOSSY = 12  # on the average; what compression makes of noise that was blurred

# Files with one frame or two, of which every pixel must be right, and how far it may be off.
SHOWN = {
    "CT_small.dcm": LOSSLESS, "MR_small.dcm": LOSSLESS, "MR_small_RLE.dcm": LOSSLESS, "MR_small_expb.dcm": LOSSLESS,
    "MR_small_implicit.dcm": LOSSLESS, "MR_small_padded.dcm": LOSSLESS, "ExplVR_BigEnd.dcm": LOSSLESS,
    "liver_1frame.dcm": LOSSLESS, "liver_expb_1frame.dcm": LOSSLESS, "SC_rgb_rle.dcm": LOSSLESS,
    "SC_rgb_rle_2frame.dcm": LOSSLESS, "SC_rgb_rle_16bit.dcm": LOSSLESS, "SC_rgb_rle_16bit_2frame.dcm": LOSSLESS,
    "SC_rgb_small_odd.dcm": LOSSLESS, "SC_ybr_full_422_uncompressed.dcm": NEAR, "SC_rgb_dcmtk_+eb+cr.dcm": NEAR,
    "SC_rgb_dcmtk_+eb+cy+n1.dcm": NEAR, "SC_rgb_dcmtk_+eb+cy+n2.dcm": NEAR, "SC_rgb_dcmtk_+eb+cy+np.dcm": NEAR,
    "SC_rgb_dcmtk_+eb+cy+s2.dcm": NEAR, "SC_rgb_dcmtk_+eb+cy+s4.dcm": NEAR, "SC_rgb_jpeg_app14_dcmd.dcm": NEAR,
    "SC_jpeg_no_color_transform.dcm": NEAR, "SC_jpeg_no_color_transform_2.dcm": NEAR, "SC_rgb_jpeg_dcmtk.dcm": NEAR,
    "SC_rgb_jpeg_lossy_gdcm.dcm": NEAR, "SC_rgb_small_odd_jpeg.dcm": NEAR,
}

# Files that are black in a movie, and why.
BLACK = {
    "JPEG2000.dcm": "its compression cannot be shown (transfer syntax 1.2.840.10008.1.2.4.91)",
    "SC_rgb_jpeg_gdcm.dcm": "its compression cannot be shown (transfer syntax 1.2.840.10008.1.2.4.70)",
    "JPGExtended.dcm": "JPEG of more than 8 bits cannot be shown",
    "SC_rgb_rle_32bit.dcm": "samples in 32 bits cannot be shown",
    "MR_truncated.dcm": "frame 1 is damaged or missing",
}


class MoviesTest(medium_test.MediumTest):
    def setUp(self):
        super().setUp()
        self.folder.mkdir()
        self.out = self.folder / "OUT.avi"
        self.random = random.Random(7)

    def make_loop(self, name, frames, width, height, photometric="RGB", syntax=ExplicitVRLittleEndian, bits=8,
                  **others):
        """Of noise, blurred a little so that it can be compressed; gives its path."""
        data_set = media_tree.make_data_set(0, 0, 0, 0)
        samples = 3 if photometric[0] in "RY" else 1
        data_set.Rows, data_set.Columns, data_set.NumberOfFrames = height, width, frames
        data_set.SamplesPerPixel, data_set.PhotometricInterpretation = samples, photometric
        data_set.BitsAllocated, data_set.BitsStored, data_set.HighBit = (16 if bits > 8 else 8), bits, bits - 1
        data_set.PlanarConfiguration = 0
        noise = numpy.frombuffer(self.random.randbytes(2 * frames * height * width * samples), numpy.uint16)
        noise = noise.reshape(frames, height, width, samples).astype(float)
        for axis in (1, 2):
            noise = (noise + numpy.roll(noise, 1, axis) + numpy.roll(noise, 2, axis)) / 3
        pixels = (noise / 65536 * 2**bits).astype(numpy.uint16 if bits > 8 else numpy.uint8)
        for keyword, value in others.items():
            setattr(data_set, keyword, value)
        if data_set.PlanarConfiguration == 1:
            stored = pixels.transpose(0, 3, 1, 2)
        else:
            stored = pixels
        order = ">" if syntax == ExplicitVRBigEndian else "<"
        data = [frame.astype(frame.dtype.newbyteorder(order)).tobytes() for frame in stored]
        joined = b"".join(data)
        data_set.PixelData = joined + bytes(len(joined) % 2)
        data_set["PixelData"].VR = "OW" if bits > 8 else "OB"
        path = self.folder / name
        save(data_set, path, syntax)
        return path

    def movie(self, *files, codec="DIB ", **options):
        made, = self.objects("movie", self.out, *files, "--force", "--codec", codec, **options)
        stream = pictures.probe(self.out)
        self.assertEqual([stream[key] for key in ("width", "height", "nb_read_frames", "nb_frames", "r_frame_rate")],
                         [made["width"], made["height"], str(made["frames"]), str(made["frames"]), f"{made['rate']}/1"])
        self.assertEqual((made["path"], made["codec"]), (str(self.out), codec))
        self.assertEqual(stream["codec_name"], {"DIB ": "rawvideo", "MJPG": "mjpeg"}[codec])
        return made, pictures.decode(self.out, stream)

    def check_pixels(self, shown, expected, tolerance, what=None):
        self.assertEqual(shown.shape, expected.shape, what)
        self.assertLessEqual(numpy.abs(shown.astype(int) - expected).max(), tolerance, what)

    def check_nothing_is_left(self, before):
        self.assertEqual({path: path.read_bytes() for path in self.folder.iterdir()}, before)

    def content(self):
        return {path: path.read_bytes() for path in self.folder.iterdir()}

    # ---- What is shown ----

    def test_real_files(self):
        for name, tolerance in SHOWN.items():
            path = real_files.DATA / "test_files" / name
            made, shown = self.movie(path)
            data_set = dcmread(path)
            self.check_pixels(shown, pictures.render(data_set), tolerance, name)
            self.assertEqual(made["frames"], data_set.get("NumberOfFrames", 1), name)

    def test_black_cells(self):
        good = real_files.DATA / "test_files/CT_small.dcm"
        for name, why in BLACK.items():
            path = real_files.DATA / "test_files" / name
            run = program.run("movie", self.out, path, good, "--force")
            self.assertEqual(run.returncode, 0)
            self.assertEqual(program.lines(run.stderr), [f"vantor: warning: {path}: {why}; it is black there"])
            data_set = dcmread(path)
            black = numpy.zeros((1, data_set.Rows, data_set.Columns, 3), numpy.uint8)
            expected = pictures.compose([black, pictures.render(dcmread(good))])
            self.check_pixels(pictures.decode(self.out), expected, 0, name)

    def test_well_compressed_images(self):
        good = real_files.DATA / "test_files/CT_small.dcm"
        path = self.make_loop("A", 1, 4, 4, "MONOCHROME2")
        data_set = dcmread(path)
        data_set.PixelData = encapsulate([b"\xFF\x4F\xFF\x51" + bytes(100)])
        data_set["PixelData"].is_undefined_length = True
        for side, is_taken in [(2048, True), (65535, False)]:
            data_set.Rows = data_set.Columns = side
            save(data_set, path, JPEG2000Lossless)
            if not is_taken:
                self.assertEqual(self.refusal("movie", self.out, good, path, "--force"), f"vantor: {path}: the file "
                                 "is too small for an image of the size that it tells")
                continue
            run = program.run("movie", self.out, good, path, "--force")
            self.assertEqual((run.returncode, len(program.lines(run.stderr))), (0, 1), run.stderr)
            black = numpy.zeros((1, side, side, 3), numpy.uint8)
            self.check_pixels(pictures.decode(self.out), pictures.compose([pictures.render(dcmread(good)), black]), 0)

    def test_frames_that_end_anywhere(self):
        path = self.make_loop("A", 3, 5, 3, "MONOCHROME2")
        expected = pictures.render(dcmread(path))
        data_set = dcmread(path)
        data_set.PixelData += bytes(range(30))
        data_set.save_as(path)
        self.check_pixels(self.movie(path)[1], expected, LOSSLESS, "bytes behind the last frame")
        words = numpy.frombuffer(data_set.PixelData, "<u2").astype(">u2")
        data_set.PixelData = words.tobytes()
        data_set["PixelData"].VR = "OW"
        save(data_set, path, ExplicitVRBigEndian)
        self.check_pixels(self.movie(path)[1], expected, LOSSLESS, "in words")
        data_set = dcmread(self.make_loop("B", 3, 5, 3, "MONOCHROME2"))
        data_set.BitsAllocated, data_set.BitsStored, data_set.HighBit = 1, 1, 0
        data_set.PixelData = self.random.randbytes(6)
        save(data_set, self.folder / "B", ExplicitVRLittleEndian)
        bits = numpy.unpackbits(numpy.frombuffer(data_set.PixelData, numpy.uint8), bitorder="little")[:45]
        expected = numpy.repeat(bits.reshape(3, 3, 5, 1) * 255, 3, -1)
        self.check_pixels(self.movie(self.folder / "B")[1], expected, LOSSLESS, "single bits")

    def test_two_loops(self):
        files = [self.make_loop("A", 30, 40, 30, FrameTime="33.33"), self.make_loop("B", 15, 40, 30, FrameTime="50")]
        made, shown = self.movie(*files)
        self.assertEqual((made["width"], made["height"], made["frames"], made["rate"]), (80, 30, 30, 30))
        loops = [pictures.render(dcmread(path)) for path in files]
        self.check_pixels(shown, pictures.compose(loops), 0)
        for frame in range(30):  # the second one every other frame
            self.check_pixels(shown[frame, :, 40:], loops[1][frame // 2], 0)

    def test_grids_of_different_sizes(self):
        files = [self.make_loop("A", 10, 33, 17, FrameTime="40"), self.make_loop("B", 7, 20, 31, "MONOCHROME2"),
                 self.make_loop("C", 1, 5, 3, "MONOCHROME1"), self.make_loop("D", 10, 31, 9, PlanarConfiguration=1),
                 self.make_loop("E", 3, 1, 1), self.make_loop("F", 4, 33, 30, "MONOCHROME2", bits=12)]
        for count in range(1, 7):
            chosen = files[:count]
            made, shown = self.movie(*chosen)
            self.assertEqual((made["frames"], made["rate"]), (10, 25))
            self.check_pixels(shown, pictures.compose([pictures.render(dcmread(path)) for path in chosen]), 0, count)
            if count == 3:
                self.assertEqual(shown.shape[1:3], (62, 66))
                self.assertEqual(shown[:, 31:, 33:].max(), 0, "the fourth cell is black")

    def test_encodings(self):
        for syntax in (ExplicitVRLittleEndian, ImplicitVRLittleEndian, ExplicitVRBigEndian):
            for photometric, bits, others in [
                    ("RGB", 8, {}), ("RGB", 8, {"PlanarConfiguration": 1}), ("RGB", 16, {}), ("MONOCHROME1", 8, {}),
                    ("MONOCHROME2", 16, {}), ("MONOCHROME2", 10, {}), ("YBR_FULL", 8, {}),
                    ("MONOCHROME2", 16, {"PixelRepresentation": 1, "SmallestImagePixelValue": -9000,
                                         "LargestImagePixelValue": 9999, "RescaleSlope": "-2"}),
                    ("MONOCHROME1", 12, {"SmallestImagePixelValue": 600, "LargestImagePixelValue": 3000}),
                    ("MONOCHROME2", 12, {"SmallestImagePixelValue": 600, "LargestImagePixelValue": 600}),
                    ("MONOCHROME2", 12, {"WindowCenter": "1000", "WindowWidth": "700", "RescaleSlope": "0.5"}),
                    ("MONOCHROME1", 16, {"PixelRepresentation": 1, "WindowCenter": ["-1000", "0"],
                                         "WindowWidth": ["12345.6", "1"], "RescaleIntercept": "-3.5"})]:
                with self.subTest(syntax=syntax, photometric=photometric, bits=bits, **others):
                    path = self.make_loop("A", 3, 15, 10, photometric, syntax, bits, **others)
                    tolerance = NEAR if photometric[0] == "Y" else LOSSLESS
                    self.check_pixels(self.movie(path)[1], pictures.render(dcmread(path)), tolerance)

    def test_palettes(self):
        for entry_bits, layout in [(8, None), (16, "<xB"), (16, "<Bx"), (12, "<Bx")]:
            path = self.make_loop("A", 2, 15, 11, "PALETTE COLOR")
            data_set = dcmread(path)
            colors = numpy.frombuffer(self.random.randbytes(3 * 200), numpy.uint8).reshape(3, 200)
            for name, levels in zip(["Red", "Green", "Blue"], colors):
                descriptor = f"{name}PaletteColorLookupTableDescriptor"
                setattr(data_set, descriptor, [200, 20, entry_bits])
                data_set[descriptor].VR = "US"
                table = levels.tobytes()
                if layout is not None:
                    table = b"".join(struct.pack(layout, each) for each in levels)
                setattr(data_set, f"{name}PaletteColorLookupTableData", table)
            data_set.save_as(path)
            places = numpy.clip(data_set.pixel_array.astype(int) - 20, 0, 199)
            self.check_pixels(self.movie(path)[1], numpy.moveaxis(colors[:, places], 0, -1), LOSSLESS,
                              (entry_bits, layout))

    def test_compressed_loops(self):
        for photometric, bits in [("RGB", 8), ("MONOCHROME2", 12)]:
            path = self.make_loop("A", 5, 31, 17, photometric, bits=bits)
            expected = pictures.render(dcmread(path))
            data_set = dcmread(path)
            data_set.compress(RLELossless)
            data_set.save_as(path)
            self.check_pixels(self.movie(path)[1], expected, LOSSLESS)

    def test_motion_jpeg(self):
        files = [self.make_loop("A", 30, 41, 30), self.make_loop("B", 15, 40, 31, "MONOCHROME2")]
        expected = pictures.compose([pictures.render(dcmread(path)) for path in files])
        sizes = []
        for quality in (100, 50, 0):
            _, shown = self.movie(*files, "--quality", quality, codec="MJPG")
            sizes.append(self.out.stat().st_size)
            if quality == 100:
                self.assertEqual(shown.shape, expected.shape)
                self.assertLess(numpy.abs(shown.astype(int) - expected).mean(), LOSSY)
                gray = shown[:, :30, 44:78].astype(int)
                self.assertLess(numpy.abs(gray - expected[:, :30, 44:78]).mean(), NEAR)
        self.assertEqual(sizes, sorted(sizes, reverse=True))
        self.assertEqual(self.movie(*files, codec="MJPG")[0], {"path": str(self.out), "width": 82, "height": 31,
                                                              "frames": 30, "rate": 30, "codec": "MJPG"})
        # A movie of JPEG frames is one.
        jpeg = subprocess.run(["ffmpeg", "-v", "error", "-i", self.out, "-c", "copy", "-f", "mjpeg", "-"], check=True,
                              capture_output=True, stdin=subprocess.DEVNULL).stdout
        frames = [b"\xFF\xD8" + part for part in jpeg.split(b"\xFF\xD8")[1:]]
        self.assertEqual(len(frames), 30)
        self.assertTrue(all(b"\xFF\xC4" in frame for frame in frames), "tables are in each of them")
        data_set = dcmread(self.make_loop("C", 30, 82, 31, "YBR_FULL_422"))
        data_set.PixelData = encapsulate(frames)
        data_set["PixelData"].is_undefined_length = True
        save(data_set, self.folder / "C", JPEGBaseline8Bit)
        before = pictures.decode(self.out).astype(int)
        self.assertLess(numpy.abs(self.movie(self.folder / "C")[1] - before).mean(), NEAR)

    def test_rates(self):
        for frames, others, rate in [(20, {"FrameTime": "40"}, 25), (15, {"FrameTime": "66.67"}, 15), (1, {}, 1),
                                     (8, {"CineRate": 50}, 50), (12, {"RecommendedDisplayFrameRate": 6}, 6),
                                     (9, {}, 30), (3, {"FrameTime": "5000"}, 1),
                                     (4, {"FrameTimeVector": [0, 100, 100, 100]}, 10)]:
            self.assertEqual(self.movie(self.make_loop("A", frames, 4, 4, **others))[0]["rate"], rate, others)

    def test_text(self):
        path = self.make_loop("A", 20, 8, 6, FrameTime="40")
        text = self.done("movie", self.out, path).decode()
        self.assertEqual(text, f"made  {self.out}  8 x 6  20 frames  25 a second\n")
        names = [each["codec"] for each in self.objects("codecs")]
        self.assertEqual((names[0], len(set(names))), ("DIB ", len(names)))
        self.assertEqual([line[:4] for line in self.done("codecs").decode().splitlines()], names)
        for name, codec in [("DIB", "DIB "), ("dib", "DIB "), ("mjpg", "MJPG")]:
            made, = self.objects("movie", self.out, path, "--force", "--codec", name)
            self.assertEqual(made["codec"], codec)

    # ---- What goes wrong ----

    def test_files_that_are_no_images(self):
        good = self.make_loop("A", 2, 4, 4)
        text = self.folder / "TEXT"
        text.write_text("no DICOM file")
        cut = self.folder / "CUT"
        cut.write_bytes(good.read_bytes()[:200])
        huge = self.make_loop("HUGE", 1, 4, 4)
        data_set = dcmread(huge)
        data_set.Rows = data_set.Columns = 65535
        data_set.save_as(huge)
        before = self.content()
        report = real_files.DATA / "test_files/reportsi.dcm"
        for bad in (text, cut, huge, report, self.folder, self.folder / "NONE"):
            for files in ([bad], [good, bad], [bad, good]):
                line = self.refusal("movie", self.out, *files)
                self.assertTrue(line.startswith(f"vantor: {bad}: "), line)
                self.check_nothing_is_left(before)

    def test_places_that_cannot_be_written(self):
        good = self.make_loop("A", 2, 4, 4)
        (self.folder / "OLD").write_text("a movie")
        other = self.top / "SUB"
        other.mkdir()
        before = self.content()
        for out, options, why in [(self.folder / "OLD", [], "there is such a file already; --force replaces it"),
                                  (other, ["--force"], "this is a folder, not a file"),
                                  (other / "NO/OUT.avi", [], "the folder for it is not there"),
                                  (good, ["--force"], "this is one of the images")]:
            self.assertEqual(self.refusal("movie", out, good, *options), f"vantor: {out}: {why}")
            self.check_nothing_is_left(before)

    def test_places_that_are_links(self):
        good = self.make_loop("A", 2, 4, 4)
        other = self.folder / "OTHER.avi"
        other.write_text("a movie")
        self.out.symlink_to(other)
        self.assertIn("there is such a file already", self.refusal("movie", self.out, good))
        self.objects("movie", self.out, good, "--force")
        self.assertTrue(self.out.is_symlink() and other.read_bytes().startswith(b"RIFF"))
        other.unlink()
        self.assertIn("leads nowhere", self.refusal("movie", self.out, good, "--force"))
        self.out.unlink()
        os.mkfifo(self.out)
        self.assertIn("no file that can be replaced", self.refusal("movie", self.out, good, "--force"))

    def test_a_name_that_is_no_utf8(self):
        out = os.fsencode(self.folder / "c") + b"\xe9.avi"
        run = subprocess.run([program.PROGRAM, "movie", out, self.make_loop("A", 2, 4, 4)], capture_output=True,
                             check=True)
        self.assertTrue(run.stdout.startswith(b"made  "))
        with open(out, "rb") as movie:
            self.assertEqual(movie.read(4), b"RIFF")

    def test_an_interrupted_movie_leaves_nothing(self):
        good = self.make_loop("A", 400, 320, 240, "MONOCHROME2")
        before = self.content()
        for signal_number in (signal.SIGINT, signal.SIGTERM):
            with subprocess.Popen([program.PROGRAM, "movie", self.out, good], stdout=subprocess.DEVNULL,
                                  stderr=subprocess.PIPE) as process:
                while not list(self.out.parent.glob("VNT*/*")):
                    self.assertIsNone(process.poll())
                    time.sleep(0.001)
                process.send_signal(signal_number)
                self.assertEqual((process.wait(program.TIME_LIMIT), process.stderr.read()), (-signal_number, b""))
            self.check_nothing_is_left(before)

    @unittest.skipUnless(os.geteuid() == 0, "needs another user, who may not write")
    def test_a_folder_that_is_read_only(self):
        good = self.make_loop("A", 2, 4, 4)
        other, copy = self.top / "SUB", self.copy_program()
        other.mkdir()
        self.folder.chmod(0o755)
        run = subprocess.run([copy, "movie", other / "OUT.avi", good], capture_output=True, check=False, user=NOBODY,
                             cwd="/")
        self.assertEqual((run.returncode, run.stdout), (1, b""))
        self.assertEqual(run.stderr.decode(), f"vantor: {other / 'OUT.avi'}: Permission denied\n")
        self.assertEqual(list(other.iterdir()), [])

    def test_a_full_disk(self):
        good = self.make_loop("A", 20, 64, 64)
        self.out.write_text("the movie before")
        before = self.content()
        for size in (100, 4000, 64 * 64 * 3 * 10, 64 * 64 * 3 * 20):
            line = self.refusal("movie", self.out, good, "--force", **limited(size))
            self.assertRegex(line, f"^vantor: {self.out}: (no frame can be written|only \\d+ of 20 frames can be)")
            self.check_nothing_is_left(before)

    def test_more_than_two_gigabytes(self):
        good = self.make_loop("A", 400, 1000, 10, "MONOCHROME2")
        high = self.make_loop("B", 1, 10, 1000, "MONOCHROME2")
        before = self.content()
        line = self.refusal("movie", self.out, good, high)
        self.assertEqual(line, f"vantor: {self.out}: the movie would be larger than 2 GB; "
                               "vantor codecs lists compressors")
        self.check_nothing_is_left(before)

    def test_wrong_usage(self):
        good = self.make_loop("A", 2, 4, 4)
        for arguments in ([], [self.out], [self.out] + 7 * [good], [self.out, good, "--codec", "ABCDE"],
                          [self.out, good, "--quality", "101"], [self.out, good, "--quality", "x"]):
            self.refusal("movie", *arguments, status=2)
        line = self.refusal("movie", self.out, good, "--codec", "ZZZZ")
        self.assertEqual(line, "vantor: ZZZZ: no such compressor; vantor codecs lists those that there are")
        self.assertFalse(self.out.exists())


if __name__ == "__main__":
    unittest.main()
