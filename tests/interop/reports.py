"""Makes structured reports, and tells what is in one as dcmtk's dsrdump finds it."""

import re
import subprocess

from pydicom.dataset import Dataset
from pydicom.uid import ExplicitVRBigEndian, ExplicitVRLittleEndian, ImplicitVRLittleEndian

BASIC_TEXT, ENHANCED, COMPREHENSIVE = ["1.2.840.10008.5.1.4.1.1.88." + last for last in ("11", "22", "33")]

# Transfer syntax, and whether sequences and items are of undefined length.
ENCODINGS = [(syntax, is_undefined) for syntax in (ExplicitVRLittleEndian, ImplicitVRLittleEndian, ExplicitVRBigEndian)
             for is_undefined in (False, True)]

SHOWN_TYPES = {"CONTAINER", "NUM", "CODE", "TEXT", "DATE", "TIME", "DATETIME", "PNAME"}
RELATIONSHIPS = {"CONTAINS": "Contains", "HAS PROPERTIES": "HasProperties", "HAS OBS CONTEXT": "HasObsContext",
                 "HAS ACQ CONTEXT": "HasAcqContext", "INFERRED FROM": "InferredFrom",
                 "SELECTED FROM": "SelectedFrom", "HAS CONCEPT MOD": "HasConceptMod"}
UNITS = {"a": "Y", "1": ""}  # how years and numbers without unit are shown
MOD, PROPERTY, CONTEXT, ACQUISITION, INFERRED, SELECTED = [
    name for name in ("HAS CONCEPT MOD", "HAS PROPERTIES", "HAS OBS CONTEXT", "HAS ACQ CONTEXT", "INFERRED FROM",
                      "SELECTED FROM")]


# ---- Making ----

def code(value, scheme, meaning):
    entry = Dataset()
    entry.CodeValue, entry.CodingSchemeDesignator, entry.CodeMeaning = value, scheme, meaning
    return entry


def item(value_type, name, *below, rel="CONTAINS", **attributes):
    """A content item; `name` is the value, scheme and meaning of its code."""
    made = Dataset()
    made.RelationshipType, made.ValueType = rel, value_type
    if name:
        made.ConceptNameCodeSequence = [code(*name)]
    for key, value in attributes.items():
        setattr(made, key, value)
    if below:
        made.ContentSequence = list(below)
    return made


def section(name, *below, **options):
    return item("CONTAINER", name, *below, ContinuityOfContent="SEPARATE", **options)


def number(name, value, unit, *below, **options):
    measured = Dataset()
    measured.MeasurementUnitsCodeSequence = [code(*unit)]
    measured.NumericValue = value
    return item("NUM", name, *below, MeasuredValueSequence=[measured], **options)


def coded(name, value, *below, rel=MOD, **options):
    return item("CODE", name, *below, rel=rel, ConceptCodeSequence=[code(*value)], **options)


def text(name, value, *below, **options):
    return item("TEXT", name, *below, TextValue=value, **options)


def report(title, *content, sop_class=COMPREHENSIVE, patient="Doe^John", charset="ISO_IR 100"):
    made = Dataset()
    made.SpecificCharacterSet = charset
    made.SOPClassUID, made.Modality = sop_class, "SR"
    made.PatientName, made.PatientID, made.PatientBirthDate, made.PatientSex = patient, "P4711", "19541231", "M"
    made.StudyInstanceUID, made.SeriesInstanceUID, made.SOPInstanceUID = "1.2.3", "1.2.3.1", "1.2.3.1.7"
    made.StudyDate = made.ContentDate = "20240315"
    made.StudyTime = made.ContentTime = "101530"
    made.StudyID, made.AccessionNumber, made.ReferringPhysicianName, made.Manufacturer = "S1", "A1", "", "Vantor"
    made.SeriesNumber, made.InstanceNumber = 1, 7
    made.ReferencedPerformedProcedureStepSequence = made.PerformedProcedureCodeSequence = []
    made.CompletionFlag, made.VerificationFlag = "COMPLETE", "UNVERIFIED"
    made.ValueType, made.ContinuityOfContent = "CONTAINER", "SEPARATE"
    if title:
        made.ConceptNameCodeSequence = [code(*title)]
    if content:
        made.ContentSequence = list(content)
    return made


def _set_lengths(data_set, is_undefined):
    for element in data_set:
        if element.VR == "SQ":
            element.is_undefined_length = is_undefined
            for below in element.value:
                below.is_undefined_length_sequence_item = is_undefined
                _set_lengths(below, is_undefined)


def save(data_set, path, transfer_syntax=ExplicitVRLittleEndian, is_undefined=False):
    data_set.is_little_endian = transfer_syntax != ExplicitVRBigEndian
    data_set.is_implicit_VR = transfer_syntax == ImplicitVRLittleEndian
    data_set.ensure_file_meta()
    data_set.file_meta.TransferSyntaxUID = transfer_syntax
    _set_lengths(data_set, is_undefined)
    data_set.save_as(path, write_like_original=False)
    return path


# ---- Reading ----

def _date(digits):
    return f"{digits[:4]}-{digits[4:6]}-{digits[6:8]}"


def _time(digits):
    return f"{digits[:2]}:{digits[2:4]}:{digits[4:6]}"


def _moment(digits):
    return f"{_date(digits)}T{_time(digits[8:])}"


def displayable(name):
    """Of names that have no more than family and given name."""
    return ", ".join(part for part in str(name).split("^")[:2] if part)


# Codes as dsrdump prints them: (value,scheme,"meaning") or (value,scheme [version],"meaning").
_CODE = r'\(([^,]*),([^,\[]*?)(?: ?\[[^]]*\])?,"(.*?)"\)'
_LINE = re.compile(rf'^([\d.]+)  <(?:([a-z ]+) )?([A-Z]+):(?:{_CODE})?=(.*)>(?: \{{([^}}]*)\}})?$')


def read_with_dsrdump(path):
    """Node, relationship, type, concept, value and units of the items that the program shows, in their order."""
    options = ["-q", "-Er", "-Ev", "-Ec", "-Ee", "+Pn", "+Pc", "+Pl", "-Ph", "+U8"]
    printed = subprocess.run(["dsrdump", *options, path], capture_output=True, check=True).stdout.decode()
    found = []
    hidden = []  # the nodes of what is not shown: what is below is not shown either
    for line in printed.splitlines():
        if not line or re.match(r"^[\d.]+  <[a-z ]+ [\d.]+>$", line):  # a reference to another item
            continue
        node, relationship, value_type, value, scheme, meaning, rest, observed = _LINE.match(line).groups()
        is_own = scheme == "99QUANTIX" and meaning.startswith("measurement context")  # of the reporting product
        if is_own or value_type not in SHOWN_TYPES or any(node.startswith(above + ".") for above in hidden):
            hidden.append(node)
            continue
        found.append((node, RELATIONSHIPS.get((relationship or "").upper(), "Unknown") + "Relationship", value_type,
                      meaning or "", value or "", scheme or "", *_dumped_value(value_type, rest),
                      observed if relationship else None))
    return found


def _dumped_value(value_type, printed):
    """Value and units."""
    if value_type == "CONTAINER":
        return "", ""
    if value_type == "CODE":
        return re.match(_CODE, printed)[3], ""
    value, unit = re.match(r'^"(.*)"(?: \(([^,]*),.*\))?$', printed).groups()
    if value_type == "TEXT":
        value = value.replace("\\r", "\r").replace("\\n", "\n").strip()
    shown = {"DATE": _date, "TIME": _time, "DATETIME": _moment, "PNAME": displayable}.get(value_type, str)
    return shown(value), UNITS.get(unit, unit or "")


def as_dumped(root):
    """The same of what the program shows."""
    found = []
    waiting = [root]
    while waiting:
        each = waiting.pop()
        observed = each["observationDateTime"]
        found.append((each["node"], each["relationship"], each["valueType"], each["concept"], each["code"]["value"],
                      each["code"]["scheme"], each["value"], each.get("units", ""),
                      observed and observed.replace("T", " ")))
        waiting += reversed(each["items"])
    return found
