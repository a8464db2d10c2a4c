#!/usr/bin/python3
"""What goes wrong while a DICOMDIR is made, changed or filled: what was there before must not be lost. The
environment variables DIRECTORY_UPDATE and DIRECTORY_TREE name the programs that have the library do so.
"""

import os
import pathlib
import resource
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

import directory_records
import media_tree

LONGEST_PATH = 254
NOBODY = 65534
SMALL_DISK = 2048  # bytes that a file may have: less than the DICOMDIR will need
WRITERS, FILES_EACH = range(8), range(30)
KILLS = 60
BIG, CHUNK = 2 << 20, 65536  # bytes


def fill_disk():
    """From here on files cannot grow beyond a size; writing fails as on a full disk, without a signal."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (SMALL_DISK, SMALL_DISK))


class WrittenFaultsTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name, "MEDIUM")
        self.path = self.folder / "DICOMDIR"
        self.folder.mkdir()

    def save(self, name, *place, without=(), folder=None, size=None):
        data_set = media_tree.make_data_set(*place)
        for keyword in without:
            delattr(data_set, keyword)
        if size:
            data_set.PixelData = bytes(size)
        return media_tree.save(data_set, (folder or self.folder) / name)

    def create(self):
        """The complaints about files that are not entered."""
        run = media_tree.update("create", self.folder, "FAULTS")
        self.assertEqual(run.returncode, 0, run.stderr)
        return run.stderr.decode().splitlines()

    def add(self, *files):
        run = media_tree.update("add", self.path, *files)
        self.assertEqual(run.returncode, 0, run.stderr)
        return run.stderr.decode().splitlines()

    def instances(self):
        """The places of the instance records, and the names of their files; every reader can read them."""
        subprocess.run(["dcmdump", self.path], check=True, capture_output=True)
        shown = subprocess.run([media_tree.DIRECTORY_TREE, self.path], check=True, capture_output=True).stdout
        self.assertEqual(shown.splitlines(), directory_records.expected_lines(self.path))
        return {place: record[directory_records.FILE_ID][1].rstrip().decode()
                for place, record in media_tree.places(self.path).items() if directory_records.FILE_ID in record}

    def names(self):
        return sorted(self.instances().values())

    # ---- Files that cannot be entered, or only in part ----

    def test_what_the_records_must_have(self):
        self.save("WHOLE", 0, 0, 0, 0)
        missing = [self.save(f"NO{index}", 1, 0, 0, index, without=[keyword])
                   for index, keyword in enumerate(["PatientID", "SeriesInstanceUID"])]
        self.assertEqual(self.create(), [f"{missing[0]}: No Patient ID", f"{missing[1]}: No Series Instance UID"])
        self.assertEqual(self.names(), ["WHOLE"])

    def test_a_file_without_dates(self):
        self.save("I1", 0, 0, 0, 0, without=["StudyDate", "StudyTime", "ContentDate", "ContentTime"])
        self.assertEqual(self.create(), [])
        study = next(record for place, record in media_tree.places(self.path).items() if place[-1][0] == "STUDY")
        self.assertEqual((study[8, 0x20], study[8, 0x30]), (("DA", b""), ("TM", b"")))

    def test_a_DICOMDIR_among_the_files(self):
        self.save("I1", 0, 0, 0, 0)
        self.create()
        other = self.folder / "OTHER"
        shutil.copy(self.path, other)
        link = self.folder / "LINK"
        link.symlink_to("DICOMDIR")
        begin = time.monotonic()
        files = [other, self.path, link]
        self.assertEqual(self.add(*files), [f"{path}: not entered" for path in files])
        self.assertLess(time.monotonic() - begin, 20)  # it does not wait for itself to be free
        self.assertEqual(self.names(), ["I1"])

    def test_long_paths(self):
        self.create()
        paths = []
        for length in [LONGEST_PATH, LONGEST_PATH + 1]:
            name = "FOLDER/" * (length // 7)
            paths.append(self.save(name[:length - len(f"{self.folder}/") - 1] + "F", 0, 0, 0, length))
            self.assertEqual(len(str(paths[-1])), length)
        self.assertEqual(self.add(*paths), [f"{paths[1]}: not entered"])
        self.assertEqual([name.replace("\\", "/") for name in self.names()], [str(paths[0].relative_to(self.folder))])

    def test_names_that_differ_in_case(self):
        """Both would have the same name in their records, where names are in upper case."""
        self.save("A/I1", 0, 0, 0, 0)
        other = self.save("A/i1", 0, 0, 0, 1)
        self.assertEqual(self.create(), [f"{other}: not entered"])
        self.assertEqual(self.names(), ["A\\I1"])

    def test_text_files(self):
        texts = [self.folder / f"T{index}" for index in range(50)]
        for index, path in enumerate(texts):
            path.write_text("A line of text.\n" * index)
        self.assertEqual(sorted(self.create()), sorted(f"{path}: not entered" for path in texts))
        self.assertEqual(self.names(), [])

    def test_links_that_go_round(self):
        self.save("A/I1", 0, 0, 0, 0)
        for name, target in [("A/UP", ".."), ("A/SELF", "SELF"), ("A/THERE", "BACK"), ("A/BACK", "THERE")]:
            (self.folder / name).symlink_to(target)
        self.assertEqual(self.create(), [f"{self.folder}/A/{name}: not entered" for name in ("BACK", "SELF", "THERE")])
        self.assertEqual(self.names(), ["A\\I1"])

    # ---- Media that cannot be written ----

    def check_untouched(self, action, **options):
        """The action fails, and leaves the DICOMDIR and the folder as they were."""
        before, names = self.path.read_bytes(), sorted(os.listdir(self.folder))
        action = [shutil.copy(media_tree.DIRECTORY_UPDATE, self.folder.parent), *action]  # where all may run it
        run = subprocess.run(action, capture_output=True, timeout=media_tree.TIME_LIMIT, check=False, **options)
        self.assertEqual(run.returncode, 1, run.stderr)
        self.assertEqual((self.path.read_bytes(), sorted(os.listdir(self.folder))), (before, names))

    def test_a_read_only_folder(self):
        self.save("I1", 0, 0, 0, 0)
        self.create()
        new = self.save("I2", 0, 0, 0, 1)
        self.folder.parent.chmod(0o755)
        self.folder.chmod(0o555)
        self.addCleanup(self.folder.chmod, 0o755)
        other = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
        for action in [["add", self.path, new], ["rewrite", self.path]]:
            with self.subTest(action[0]):
                self.check_untouched(action, **other)
        self.assertEqual(self.names(), ["I1"])

    def test_a_full_disk(self):
        self.save("I1", 0, 0, 0, 0)
        self.create()
        new = [self.save(f"N{index}", 0, 0, index, 0) for index in range(20)]
        self.assertLess(self.path.stat().st_size, SMALL_DISK)
        self.check_untouched(["add", self.path, *new], preexec_fn=fill_disk)
        big = self.folder.parent / "BIG"
        self.save("I1", 5, 0, 0, 0, folder=big, size=BIG)
        before = self.instances()
        run = media_tree.update("import", self.path, big, preexec_fn=fill_disk)
        self.assertEqual(run.returncode, 1, run.stderr)
        self.assertEqual(self.instances(), before)

    # ---- Copying ----

    def start_import(self, source):
        return subprocess.Popen([media_tree.DIRECTORY_UPDATE, "import", self.path, source], stderr=subprocess.PIPE)

    def make_source(self, count):
        source = self.folder.parent / "SOURCE"
        return source, [self.save(f"I{index}", 7, 0, index % 2, index, folder=source, size=BIG)
                        for index in range(count)]

    def test_files_that_vanish_while_they_are_copied(self):
        self.save("OLD", 0, 0, 0, 0)
        self.create()
        before = self.instances()
        source, files = self.make_source(20)
        with self.start_import(source) as process:
            copied = self.folder / "IMAGESDC"
            while process.poll() is None and not any(copied.iterdir()):
                time.sleep(0.0001)
            for path in files[1::3]:
                path.unlink()
            _, errors = process.communicate(timeout=media_tree.TIME_LIMIT)
        self.assertEqual((process.returncode, errors), (0, b""))
        after = self.instances()
        self.assertEqual({place: after.get(place) for place in before}, before)
        self.assertEqual(len(after), len(before) + len(files))
        for place in set(after) - set(before):
            path = self.folder.joinpath(*after[place].split("\\"))
            if path.exists():
                self.assertEqual(media_tree.instance(path)[3], place[-1][1].decode())
        for index in set(range(len(files))) - set(range(1, len(files), 3)):
            uid = media_tree.instance(files[index])[3].encode()
            name = next(after[place] for place in after if place[-1][1] == uid)
            self.assertEqual(self.folder.joinpath(*name.split("\\")).read_bytes(), files[index].read_bytes())

    def test_killed_copies(self):
        self.save("OLD", 0, 0, 0, 0)
        self.create()
        before = self.instances()
        source, files = self.make_source(6)
        whole = len(before) + len(files)
        begin = time.monotonic()
        with self.start_import(source) as process:
            process.communicate()
        needed = time.monotonic() - begin
        self.assertEqual(len(self.instances()), whole)
        for round_number in range(KILLS):
            self.create()
            shutil.rmtree(self.folder / "IMAGESDC")
            self.create()
            with self.start_import(source) as process:
                # Most often near the end, where the DICOMDIR is written.
                time.sleep(1.1 * needed * (1 - (round_number / KILLS) ** 2))
                process.kill()
            with self.subTest(round_number):
                after = self.instances()
                self.assertEqual({place: after.get(place) for place in before}, before)
                # Written at once.
                self.assertIn(len(after), [len(before), whole])

    def test_many_writers_at_once(self):
        self.create()
        files = [[self.save(f"W{writer}/I{index:02}", writer % 3, 0, writer, index) for index in FILES_EACH]
                 for writer in WRITERS]
        processes = [subprocess.Popen([media_tree.DIRECTORY_UPDATE, "add", self.path, *own]) for own in files]
        self.assertEqual([process.wait(media_tree.TIME_LIMIT) for process in processes], [0] * len(files))
        self.assertEqual(self.names(), sorted(f"W{writer}\\I{index:02}" for writer in WRITERS for index in FILES_EACH))


if __name__ == "__main__":
    unittest.main()
