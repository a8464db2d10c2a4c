"""Makes small files, each of its own kind, and reads the DICOMDIRs over them record by record."""

import os
import pathlib
import shutil
import subprocess

from pydicom import dcmread
from pydicom.dataset import Dataset
from pydicom.uid import ExplicitVRLittleEndian

import directory_records
import program
import real_files

DIRECTORY_TREE = os.environ.get("DIRECTORY_TREE", str(program.REPOSITORY / "build/release/bin/directory_tree"))
DIRECTORY_UPDATE = os.environ.get("DIRECTORY_UPDATE", str(program.REPOSITORY / "build/release/bin/directory_update"))
TIME_LIMIT = 60  # seconds; far more than any of the calls in these tests needs

IMAGE, REPORT, RAW_DATA, STATE = ["1.2.840.10008.5.1.4.1.1." + last for last in ("7", "88.11", "66", "11.1")]
PRIVATE_CLASS = "1.2.840.99999.1.1"
# They have their places in the tree; where they point is compared by way of these places.
LINKS = {(4, 0x1400), (4, 0x1410), (4, 0x1420)}
NUMBERS = {"US", "SS", "UL", "SL", "FL", "FD", "OW", "AT", "SQ", "US or SS", "OB or OW"}
KEYS = {"PATIENT": (0x10, 0x20), "STUDY": (0x20, 0xD), "SERIES": (0x20, 0xE)}
INSTANCE_UID = (4, 0x1511)


def make_data_set(patient, study, series, number, sop_class=IMAGE):
    """With what dcmmkdir asks of each class."""
    data_set = Dataset()
    data_set.SpecificCharacterSet = "ISO_IR 100"
    data_set.SOPClassUID = sop_class
    data_set.PatientID, data_set.PatientName = f"P{patient}", f"Müller^{patient}"
    data_set.StudyInstanceUID = f"1.2.3.{patient}.{study}"
    data_set.SeriesInstanceUID = f"{data_set.StudyInstanceUID}.{series}"
    data_set.SOPInstanceUID = f"{data_set.SeriesInstanceUID}.{number}"
    data_set.StudyID, data_set.SeriesNumber, data_set.InstanceNumber = f"S{study}", series, number
    data_set.StudyDate = data_set.ContentDate = data_set.PresentationCreationDate = "20240315"
    data_set.StudyTime = data_set.ContentTime = data_set.PresentationCreationTime = "1015"
    data_set.Modality, data_set.ContentLabel = "SR" if sop_class == REPORT else "US", "STATE"
    data_set.CompletionFlag, data_set.VerificationFlag = "COMPLETE", "UNVERIFIED"
    title = Dataset()
    title.CodeValue, title.CodingSchemeDesignator, title.CodeMeaning = "11528-7", "LN", "Report"
    data_set.ConceptNameCodeSequence = [title]
    if sop_class == IMAGE:
        data_set.Rows = data_set.Columns = 4
        data_set.SamplesPerPixel, data_set.PixelRepresentation = 1, 0
        data_set.PhotometricInterpretation = "MONOCHROME2"
        data_set.BitsAllocated, data_set.BitsStored, data_set.HighBit = 8, 8, 7
        data_set.add_new((0x7FE0, 0x10), "OW", bytes(16))
    return data_set


def save(data_set, path):
    data_set.is_little_endian, data_set.is_implicit_VR = True, False
    data_set.ensure_file_meta()
    data_set.file_meta.TransferSyntaxUID = ExplicitVRLittleEndian
    path.parent.mkdir(parents=True, exist_ok=True)
    data_set.save_as(path, write_like_original=False)
    return path


def copy_real_files(folder):
    """Those whose folders and names a DICOMDIR may hold."""
    source = real_files.DATA / "test_files/dicomdirtests"
    names = [f"{name}/{below}" for name in ("77654033", "98892001") for below in os.listdir(source / name)]
    return [shutil.copytree(source / name, folder / name) for name in sorted(names)]


def update(*arguments, **options):
    """The finished process."""
    return subprocess.run([DIRECTORY_UPDATE, *map(str, arguments)], stdin=subprocess.DEVNULL, capture_output=True,
                          timeout=TIME_LIMIT, check=False, **options)


def instance(path):
    """Patient, study, series and instance of a file."""
    file = dcmread(path, stop_before_pixels=True)
    return file.get("PatientID", ""), file.StudyInstanceUID, file.SeriesInstanceUID, file.SOPInstanceUID


def _content(data_set, is_record):
    elements = {}
    for tag in list(data_set.keys()):
        if tag.element == 0 or (is_record and (tag.group, tag.element) in LINKS):
            continue
        stored = data_set.get_item(tag).value
        element = data_set[tag]
        value = element.value if element.VR in NUMBERS else stored or b""
        if element.VR == "SQ":
            value = [_content(item, False) for item in element.value]
        elif element.VR == "CS" and isinstance(value, bytes):
            value = value.upper()
        elements[tag.group, tag.element] = element.VR, value
    return elements


def places(path):
    """The elements of each record by its place: by what tells each of those above it, and itself, from others.

    Left out is what a DICOMDIR that is written anew may have otherwise: links, group lengths, lower case in code
    strings, records that are not in use.
    """
    data_set, records = directory_records.read_records(path)
    found = {}
    waiting = [(data_set[directory_records.FIRST_RECORD].value, ())]
    while waiting:
        offset, above = waiting.pop()
        if offset not in records:
            continue
        record = records[offset]
        kind = record.get_item(directory_records.TYPE).value.strip().decode().upper()
        key = record.get_item(KEYS.get(kind, INSTANCE_UID)).value.rstrip(b" \0")
        place = (*above, (kind, key))
        below, behind = [record[tag].value for tag in directory_records.LINKS]
        waiting += [(behind, above), (below, place)]
        if record[directory_records.IN_USE].value:
            assert place not in found, f"{place} is there twice"
            found[place] = _content(record, True)
    return found


def root_elements(path):
    """Those beside the records."""
    data_set, _ = directory_records.read_records(path)
    del data_set[directory_records.RECORDS]
    offsets = {directory_records.FIRST_RECORD, (4, 0x1202)}
    return {tag: value for tag, value in _content(data_set, False).items() if tag not in offsets}
