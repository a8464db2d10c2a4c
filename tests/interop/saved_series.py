"""What tests of saving share: a patient who is told of all over cine loops and stills of many encodings, and what must
be true of the files and the records that are left.
"""

import os
import re
import resource
import shutil
import signal
import subprocess

from pydicom import dcmread
from pydicom.dataset import Dataset
from pydicom.uid import ExplicitVRBigEndian, ExplicitVRLittleEndian, ImplicitVRLittleEndian

import media_tree
import medium_test
import program
import real_files

ROOT = "1.2.826.0.1.3680043.9.7777"
CINE, STILLS, OTHERS = [f"{ROOT}.{study}.1" for study in (1, 2, 3)]  # series
ULTRASOUND, ULTRASOUND_CINE = "1.2.840.10008.5.1.4.1.1.6.1", "1.2.840.10008.5.1.4.1.1.3.1"
NAMES = {CINE: "Müller-Lüdenscheid^Änne", STILLS: "Yamada^Tarou=山田^太郎=やまだ^たろう", OTHERS: "Other^Olga"}
CHARACTER_SETS = {CINE: "ISO_IR 192", STILLS: ["", "ISO 2022 IR 87"], OTHERS: "ISO_IR 100"}
SECRETS = ["Lüdenscheid", "Änne", "Yamada", "Tarou", "山田", "太郎", "やまだ", "たろう", "NR4711", "19490517", "Hidden",
           "Planted", ROOT]
PHYSICIAN = "Physicus"
UID = re.compile(r"(0|[1-9]\d*)(\.(0|[1-9]\d*))+")
FRAMES, BIG = 12, 1 << 20
LINKS, ROOT_LINKS = [(4, 0x1400), (4, 0x1420)], [(4, 0x1200), (4, 0x1202)]
NOBODY = 65534
CARETS = '[Software\\Norvik\\Lumina\\Deidentify]\n"RemoveTrailingCaretsFromPatientName"=dword:0000000{}\n'


def item(**elements):
    data_set = Dataset()
    for keyword, value in elements.items():
        setattr(data_set, keyword, value)
    return data_set


def image(series, number, data_set=None, frames=1):
    """Of a patient who is told of all over the file; each refers to the one before it, the first to the second."""
    data_set = data_set or media_tree.make_data_set(0, 0, 0, 0)
    own, other = [f"{series}.{each}" for each in (number, number - 1 or 2)]
    data_set.SpecificCharacterSet, data_set.PatientName = CHARACTER_SETS[series], NAMES[series]
    data_set.SOPClassUID = ULTRASOUND if frames == 1 else ULTRASOUND_CINE
    data_set.StudyInstanceUID, data_set.SeriesInstanceUID, data_set.SOPInstanceUID = series[:-2], series, own
    data_set.FrameOfReferenceUID, data_set.PatientID, data_set.PatientBirthDate = f"{ROOT}.9", "NR4711", "19490517"
    data_set.ReferringPhysicianName = data_set.OperatorsName = PHYSICIAN
    data_set.StudyDate, data_set.StudyTime, data_set.AccessionNumber = "20240315", "1015", "NR4711-A"
    data_set.Modality, data_set.StudyID, data_set.SeriesNumber, data_set.InstanceNumber = "US", "S1", 3, 10 * number
    data_set.StudyDescription, data_set.SeriesDescription = "Echo", "Rest"
    data_set.ImageComments = data_set.PatientComments = f"Hidden in words: {NAMES[series]}"
    reference = item(ReferencedSOPClassUID=data_set.SOPClassUID, ReferencedSOPInstanceUID=other)
    data_set.ReferencedImageSequence = [reference]
    data_set.RequestAttributesSequence = [item(RequestedProcedureID="NR4711", ReferencedStudySequence=[
        item(ReferencedSOPClassUID="1.2.840.10008.3.1.2.3.1", ReferencedSOPInstanceUID=series[:-2])])]
    data_set.OtherPatientIDsSequence = [item(PatientID="NR4711", TypeOfPatientID="TEXT")]
    for holder in (data_set, data_set.OtherPatientIDsSequence[0]):
        holder.private_block(0x11, "PLANTER 1.0", create=True).add_new(1, "LO", "Planted")
    if frames > 1:
        data_set.Rows = data_set.Columns = 16
        data_set.SamplesPerPixel, data_set.PhotometricInterpretation, data_set.PlanarConfiguration = 3, "RGB", 0
        data_set.NumberOfFrames, data_set.FrameTime = frames, 33
        data_set.FrameIncrementPointer = (0x18, 0x1063)
        data_set.PixelData = os.urandom(16 * 16 * 3 * frames)
    return data_set


def encoded(text):
    """As files may have it."""
    if text.isascii():
        return {text.encode()}
    if text > "ÿ":
        return {text.encode("utf-8"), text.encode("iso2022_jp")[3:-3]}  # without what leads there and back
    return {text.encode("utf-8"), text.encode("latin-1")}


def save(data_set, path, syntax=ExplicitVRLittleEndian):
    data_set.is_little_endian = syntax != ExplicitVRBigEndian
    data_set.is_implicit_VR = syntax == ImplicitVRLittleEndian
    data_set.ensure_file_meta()
    data_set.file_meta.TransferSyntaxUID = syntax
    for keyword, source in [("ClassUID", data_set.SOPClassUID), ("InstanceUID", data_set.SOPInstanceUID)]:
        setattr(data_set.file_meta, f"MediaStorageSOP{keyword}", source)
    path.parent.mkdir(parents=True, exist_ok=True)
    data_set.save_as(path, write_like_original=False)


def give_exam_layout(path):
    """Marks the first study as hosts of that layout do. What follows moves, and the links with it."""
    directory = dcmread(path)
    records = directory.DirectoryRecordSequence
    study = next(record for record in records if record.DirectoryRecordType == "STUDY")
    study.add_new((0x7FDF, 0x10), "LO", "ANY EXAM LAYOUT ")
    moved = 8 + len("ANY EXAM LAYOUT ")
    for holder, links in [(directory, ROOT_LINKS), *((record, LINKS) for record in records)]:
        for link in links:
            if holder[link].value > study.seq_item_tell:
                holder[link].value += moved
    directory.save_as(path)


def content(path, *without):
    data_set = dcmread(path)
    for keyword in without:
        if keyword in data_set:
            del data_set[keyword]
    return data_set.file_meta.TransferSyntaxUID, data_set


def errors(path):
    run = subprocess.run(["dciodvfy", path], capture_output=True, check=False)
    return {line for line in run.stderr.split(b"\n") if line.startswith(b"Error")}


def limited(size):
    """Files cannot grow beyond a size, as on a full disk."""
    def limit():
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
    return {"preexec_fn": limit}


class SavedSeriesTest(medium_test.MediumTest):
    def setUp(self):
        super().setUp()
        self.other = self.top / "OTHER"
        save(image(OTHERS, 1), self.other / "I1")
        self.done("create", self.other)

    def make_echo(self):
        """A series of two loops, and one of stills of many encodings; gives the files of each in their order."""
        for number in (1, 2):
            save(image(CINE, number, frames=FRAMES), self.folder / f"CINE/I{number}")
        for number, syntax in enumerate([ExplicitVRLittleEndian, ImplicitVRLittleEndian, ExplicitVRBigEndian], 1):
            save(image(STILLS, number), self.folder / f"STILLS/I{number}", syntax)
        for number, name in enumerate(["SC_rgb_rle.dcm", "SC_rgb_jpeg_dcmtk.dcm"], 4):
            source = dcmread(real_files.DATA / "test_files" / name)
            save(image(STILLS, number, source), self.folder / f"STILLS/I{number}", source.file_meta.TransferSyntaxUID)
        self.done("create", self.folder)
        return {series: self.images(self.folder, series) for series in (CINE, STILLS)}

    def make_series(self, count=5, size=BIG):
        """Large images; the third is the largest."""
        for number in range(1, count + 1):
            data_set = image(OTHERS, number)
            data_set.PixelData = os.urandom(2 * size if number == 3 else size)
            save(data_set, self.folder / f"IMAGES/I{number}")
        self.done("create", self.folder)
        return self.images(self.folder, OTHERS)

    def images(self, folder, uid):
        """The images' paths as tree lists them."""
        return [self.top / each["path"] for patient in self.tree(folder)["patients"] for study in patient["studies"]
                for series in study["series"] if series["uid"] == uid for each in series["instances"]]

    def save_as(self, series, *options, source=None, to=None, **others):
        """The files of the new series."""
        to = to or self.other
        saved, = self.objects("save-as", source or self.folder, "--series", series, "--to", to, *options, **others)
        self.assertEqual((list(saved), saved["result"]), (["series", "result"], "success"))
        self.check_whole(to)
        return self.images(to, saved["series"])

    def check_whole(self, folder):
        self.check_all_agree(folder)
        for path in self.files(folder):
            data_set = dcmread(path)
            self.assertEqual(data_set.file_meta.MediaStorageSOPInstanceUID, data_set.SOPInstanceUID)
            for uid in (data_set.SOPInstanceUID, data_set.SeriesInstanceUID, data_set.StudyInstanceUID):
                self.assertTrue(UID.fullmatch(uid) and len(uid) <= 64, uid)
            subprocess.run(["dcmdump", path], check=True, capture_output=True)

    def check_copies(self, sources, copies):
        """They are the same but for identification, numbered anew, and refer to each other alike."""
        self.assertEqual(len(copies), len(sources))
        old, new = [[dcmread(path) for path in paths] for paths in (sources, copies)]
        names = dict(zip([each.SOPInstanceUID for each in old], [each.SOPInstanceUID for each in new]))
        for number, (source, copy) in enumerate(zip(old, new), 1):
            self.assertEqual((copy.InstanceNumber, copy.PixelData), (number, source.PixelData))
            self.assertEqual(copy.file_meta.TransferSyntaxUID, source.file_meta.TransferSyntaxUID)
            self.assertEqual(copy.ReferencedImageSequence[0].ReferencedSOPInstanceUID,
                             names[source.ReferencedImageSequence[0].ReferencedSOPInstanceUID])
            self.assertNotIn(copy.SOPInstanceUID, names)
            self.assertLessEqual(errors(copies[number - 1]), errors(sources[number - 1]))
        return new

    def remake_other(self, is_exam):
        """With a patient of whom nothing is secret."""
        shutil.rmtree(self.other)
        media_tree.save(media_tree.make_data_set(8, 0, 0, 0), self.other / "I1")
        self.done("create", self.other)
        if is_exam:
            give_exam_layout(self.other / "DICOMDIR")
            self.check_all_agree(self.other)

    def check_failure(self, arguments, result, count=1, **options):
        """The UID that is told, and the lines on standard error."""
        run = program.run(*arguments, "--series", OTHERS, "--json", **options)
        told, = program.read_json_lines(run.stdout)
        lines = program.lines(run.stderr)
        self.assertEqual((run.returncode, told["result"], len(lines)), (1, result, count), run.stderr)
        return told["series"], lines

    def state(self):
        """Every file; none may be left over from what has failed."""
        return {path: path.read_bytes() for path in self.top.rglob("*") if path.is_file()}

    def check_numbers(self, numbers, folder=None, uid=OTHERS):
        """In the files, and in the records."""
        folder = folder or self.folder
        files = self.images(folder, uid)
        self.assertEqual([dcmread(path).InstanceNumber for path in files if path.exists()], list(numbers))
        records = {path.ReferencedFileID[-1]: path.InstanceNumber for path in dcmread(folder / "DICOMDIR")
                   .DirectoryRecordSequence if path.DirectoryRecordType == "IMAGE"}
        self.assertEqual([records[path.name.upper()] for path in files if path.exists()], list(numbers))
