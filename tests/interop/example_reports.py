"""Structured reports to show: one with all that templates have, and those that are built byte by byte."""

import reports
import small_file
from reports import ACQUISITION, CONTEXT, INFERRED, PROPERTY, SELECTED, coded, item, number, section, text
from small_file import element, undefined_item, undefined_sequence

ENGLISH = ("en", "RFC5646", "English")
LANGUAGE = coded(("121049", "DCM", "Language of Content Item and Descendants"), ENGLISH)
LV = ("87878005", "SCT", "Left Ventricle")
CM, MPS, NO_UNIT, YEARS = (("cm", "UCUM", "centimeter"), ("m/s", "UCUM", "meter per second"),
                           ("1", "UCUM", "no units"), ("a", "UCUM", "year"))
OBSERVED = {"ObservationDateTime": "20240315101200"}
SITE = ("363698007", "SCT", "Finding Site")
MODE = coded(("G-0373", "SRT", "Image Mode"), ("G-03A2", "SRT", "2D mode"))
FINDINGS = ("121070", "DCM", "Findings")
NOTE = ("121106", "DCM", "Comment")
LONG_NOTE = "Mild concentric hypertrophy. " * 6 + "\r\nNo effusion.\tNo thrombus."


def derivation(value):
    return coded(("121401", "DCM", "Derivation"), ("R-00317", "SRT", value))


ECHO_CONTENT = [
    LANGUAGE,
    item("PNAME", ("121008", "DCM", "Person Observer Name"), rel=CONTEXT, PersonName="Smith^Anna"),
    section(("121118", "DCM", "Patient Characteristics"),
            number(("121033", "DCM", "Subject Age"), "69", YEARS, rel=CONTEXT),
            item("DATE", ("121031", "DCM", "Subject Birth Date"), rel=CONTEXT, Date="19541231")),
    section(FINDINGS, coded(SITE, LV),
            section(("125007", "DCM", "Measurement Group"), MODE,
                    number(("29436-3", "LN", "Left Ventricle Internal End Diastolic Dimension"), "4.72", CM,
                           derivation("Mean"),
                           coded(("121404", "DCM", "Selection Status"), ("121410", "DCM", "User chosen value"),
                                 rel=PROPERTY),
                           number(("29436-3", "LN", "Measured Value"), "4.7", CM, rel=INFERRED, **OBSERVED),
                           number(("29436-3", "LN", "Measured Value"), "4.74", CM, rel=INFERRED),
                           item("IMAGE", None, rel=SELECTED), **OBSERVED),
                    number(("18043-0", "LN", "Left Ventricular Ejection Fraction by US"), "0.61", NO_UNIT)),
            text(NOTE, LONG_NOTE),
            section(("99001", "99QUANTIX", "measurement contexts of the maker"))),
    section(FINDINGS, coded(SITE, ("34202007", "SCT", "Aortic Valve")),
            number(("11726-7", "LN", "Peak Velocity"), "1.31", MPS, item("TCOORD", NOTE, rel=SELECTED),
                   item("TIME", ("121126", "DCM", "Time"), rel=ACQUISITION, Time="101530"),
                   item("DATETIME", ("121125", "DCM", "Moment"), rel=ACQUISITION, DateTime="20240315101530"))),
]
GROUP = section(FINDINGS, coded(SITE, LV), number(("11726-7", "LN", "Peak Velocity"), "0.8", MPS, MODE))
# The code of the title, SOP class, type. That of a cath lab's log needs a title that does not say so.
TYPES = [("125100", reports.ENHANCED, "USVascularSR"), ("125000", reports.COMPREHENSIVE, "USOBGynSR"),
         ("125300", reports.COMPREHENSIVE, "USPediatricCardiacSR"), ("121058", reports.COMPREHENSIVE, "CardiacCathSR"),
         ("4711", reports.ENHANCED, "NoTemplateSR"), ("125200", reports.BASIC_TEXT, "BasicTextSR")]


def echo(title="Adult Echocardiography Procedure Report", **options):
    return reports.report(("125200", "DCM", title), *ECHO_CONTENT, **options)


# What people are shown of it.
ECHO_TEXT = """\
Adult Echocardiography Procedure Report
  Patient          Müller, Jörg
  Patient ID       P4711
  Date             15 Mar 2024, 10:15:30
  Completion       complete
  Verification     unverified
  Template         adult echocardiography
  Instance number  7

- Language of Content Item and Descendants  English
- Person Observer Name                      Smith, Anna

Patient Characteristics
  - Subject Age         69 Y
  - Subject Birth Date  31 Dec 1954

Findings
  - Finding Site  Left Ventricle
  Measurement Group
    - Image Mode                                     2D mode
    Left Ventricle Internal End Diastolic Dimension  4.72 cm
        (observed 15 Mar 2024, 10:12:00)
      - Derivation         Mean
      - Selection Status   User chosen value
      from Measured Value  4.7 cm
      from Measured Value  4.74 cm
    Left Ventricular Ejection Fraction by US         0.61
  Comment         Mild concentric hypertrophy. Mild concentric hypertrophy. Mild
                  concentric hypertrophy. Mild concentric hypertrophy. Mild
                  concentric hypertrophy. Mild concentric hypertrophy.
                  No effusion. No thrombus.

Findings
  - Finding Site  Aortic Valve
  Peak Velocity   1.31 m/s
    - Time    10:15:30
    - Moment  15 Mar 2024, 10:15:30

Identifiers
  Study UID     1.2.3
  Series UID    1.2.3.1
  Instance UID  1.2.3.1.7
"""


# ---- Byte by byte ----

CONTENT = (0x40, 0xA730)


def small_report(content):
    """A file of these bytes behind the value type."""
    return small_file.start_of_file(sop_class=reports.COMPREHENSIVE) + b"".join(
        [element((8, 0x16), "UI", reports.COMPREHENSIVE), element((8, 0x18), "UI", "1.2.3.4"),
         element((0x10, 0x20), "LO", "P1"), element((0x40, 0xA040), "CS", "CONTAINER"), content])


def encoded_item(value_type, content=b""):
    return (element((0x40, 0xA010), "CS", "CONTAINS") + element((0x40, 0xA040), "CS", value_type) + content)


def sequence(tag, items):
    return small_file.header(tag, "SQ", len(items)) + items


def nested(levels, is_undefined):
    content = b""
    for _ in range(levels):
        below = encoded_item("CONTAINER", content)
        content = (undefined_sequence(CONTENT, undefined_item(below)) if is_undefined
                   else sequence(CONTENT, small_file.item(below)))
    return small_report(content)


def only_item(value_type, content=b""):
    return small_report(sequence(CONTENT, small_file.item(encoded_item(value_type, content))))
