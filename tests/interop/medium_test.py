"""What tests of the program's commands share: a medium of real files, and what is on it as the program, pydicom and
the files themselves tell it.
"""

import pathlib
import shutil
import subprocess
import tempfile
import unittest
import warnings

from pydicom.fileset import FileSet

import media_tree
import program

# Their records are not asked for their UIDs.
PRIVATE = "private"
KINDS = {media_tree.REPORT: "sr", media_tree.RAW_DATA: "raw", media_tree.STATE: PRIVATE,
         media_tree.PRIVATE_CLASS: PRIVATE}


class MediumTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.top = pathlib.Path(holder.name)
        self.folder = self.top / "MEDIUM"
        self.path = self.folder / "DICOMDIR"
        warnings.simplefilter("ignore")  # of pydicom, about itself

    def done(self, *arguments, **options):
        """What a command prints that does what it is asked for, and has nothing to complain about."""
        run = program.run(*arguments, **options)
        self.assertEqual((run.returncode, run.stderr), (0, b""), arguments)
        return run.stdout

    def objects(self, *arguments, **options):
        return program.read_json_lines(self.done(*arguments, "--json", **options))

    def refusal(self, *arguments, status=1, **options):
        """The one line of a command that fails before it has done anything."""
        for form in [[], ["--json"]]:
            run = program.run(*arguments, *form, **options)
            self.assertEqual((run.returncode, run.stdout), (status, b""), arguments)
            line, = program.lines(run.stderr)
        return line

    def make_files(self):
        """Real files, some of each other kind, and a file that is none; gives the DICOM files."""
        self.folder.mkdir()
        media_tree.copy_real_files(self.folder)
        for number, sop_class in enumerate([media_tree.IMAGE, *KINDS]):
            media_tree.save(media_tree.make_data_set(0, 0, number, number, sop_class), self.folder / f"OTHERS/I{number}")
        files = self.files()
        (self.folder / "README.TXT").write_text("no DICOM file")
        return files

    def make_medium(self):
        files = self.make_files()
        created, = self.objects("create", self.folder)
        self.assertEqual((created["dicomdir"], created["entered"]), (str(self.path), len(files)))
        skipped, = created["skipped"]
        self.assertEqual(skipped["path"], str(self.folder / "README.TXT"))
        self.assertTrue(skipped["why"])
        return files

    def files(self, folder=None):
        """What is in each, by its path."""
        found = [path for path in (folder or self.folder).rglob("*") if path.is_file() and path.suffix != ".TXT"]
        return {path: media_tree.instance(path) for path in found if path.name != "DICOMDIR"}

    def file_set(self, folder=None):
        """The same as files, as pydicom finds it; dcmtk takes the DICOMDIR as well."""
        path = (folder or self.folder) / "DICOMDIR"
        subprocess.run(["dcmdump", path], check=True, capture_output=True)
        return {pathlib.Path(found.path): (found.PatientID, found.StudyInstanceUID, found.SeriesInstanceUID,
                                           found.SOPInstanceUID) for found in FileSet(path)}

    def tree(self, path):
        tree, = self.objects("tree", path)
        return tree

    def shown(self, path):
        """The same as files, as the program shows it; that has no UIDs for private objects, and theirs are read."""
        shown = {}
        for patient in self.tree(path)["patients"]:
            for study in patient["studies"]:
                for series in study["series"]:
                    for instance in series["instances"]:
                        file = pathlib.Path(instance["path"])
                        uid = instance["uid"] or (instance["kind"] == PRIVATE and media_tree.instance(file)[3])
                        shown[file] = patient["id"], study["uid"], series["uid"], uid
        return shown

    def check_all_agree(self, folder=None):
        files = self.files(folder)
        self.assertEqual(self.shown(folder or self.folder), files)
        self.assertEqual(self.file_set(folder), files)

    def copy_program(self):
        """To where every user may run it, with the library."""
        self.top.chmod(0o755)
        source = pathlib.Path(program.PROGRAM).parents[1]
        for path in ["bin/vantor", *source.glob("lib/libvantor.so*")]:
            copy = self.top / (source / path).relative_to(source)
            copy.parent.mkdir(exist_ok=True)
            shutil.copy(source / path, copy)
        return self.top / "bin/vantor"
