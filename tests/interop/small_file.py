"""Builds small DICOM files, good and bad, byte by byte."""

import struct

IMPLICIT = "1.2.840.10008.1.2"
EXPLICIT = "1.2.840.10008.1.2.1"
CT_IMAGE = "1.2.840.10008.5.1.4.1.1.2"
UNDEFINED = 0xFFFFFFFF
LONG_HEADER_VRS = {"OB", "OW", "SQ", "UT", "UN"}
ITEM = (0xFFFE, 0xE000)
ITEM_END = (0xFFFE, 0xE00D)
SEQUENCE_END = (0xFFFE, 0xE0DD)


def header(tag, vr, length, transfer_syntax=EXPLICIT):
    start = struct.pack("<HH", *tag)
    if transfer_syntax == IMPLICIT:
        return start + struct.pack("<I", length)
    if vr in LONG_HEADER_VRS:
        return start + vr.encode() + struct.pack("<HI", 0, length)
    return start + vr.encode() + struct.pack("<H", length)


def element(tag, vr, value, transfer_syntax=EXPLICIT):
    if isinstance(value, str):
        value = value.encode("utf-8")
    if len(value) % 2:
        value += b"\0" if vr in ("UI", "OB") else b" "
    return header(tag, vr, len(value), transfer_syntax) + value


def item(content):
    return struct.pack("<HHI", *ITEM, len(content)) + content


def undefined_item(content):
    return struct.pack("<HHI", *ITEM, UNDEFINED) + content + struct.pack("<HHI", *ITEM_END, 0)


def undefined_sequence(tag, items, transfer_syntax=EXPLICIT):
    return header(tag, "SQ", UNDEFINED, transfer_syntax) + items + struct.pack("<HHI", *SEQUENCE_END, 0)


def start_of_file(transfer_syntax=EXPLICIT, sop_class=CT_IMAGE):
    """Preamble and meta information."""
    meta = (element((2, 2), "UI", sop_class) + element((2, 3), "UI", "1.2.3.4") +
            element((2, 0x10), "UI", transfer_syntax))
    return bytes(128) + b"DICM" + element((2, 0), "UL", struct.pack("<I", len(meta))) + meta


def example_elements(transfer_syntax=EXPLICIT):
    """The encoded elements of a small image by their tags, in order."""
    source = (element((8, 0x1150), "UI", CT_IMAGE, transfer_syntax) +
              element((8, 0x1155), "UI", "1.2.3.9", transfer_syntax))
    values = [((8, 0x18), "UI", "1.2.3.4"), ((8, 0x20), "DA", "20240315"), ((8, 0x30), "TM", "143512"),
              ((8, 0x50), "SH", "A1"), ((8, 0x60), "CS", "CT"), ((8, 0x1030), "LO", "Chest"),
              ((8, 0x2112), "SQ", item(source) + item(source)), ((0x10, 0x10), "PN", "Doe^John"),
              ((0x10, 0x20), "LO", "P1"), ((0x10, 0x30), "DA", "19541231"), ((0x20, 0xD), "UI", "1.2.3.5"),
              ((0x20, 0xE), "UI", "1.2.3.6"), ((0x20, 0x11), "IS", "7"), ((0x20, 0x13), "IS", "12"),
              ((0x28, 8), "IS", "2"), ((0x28, 0x10), "US", b"\x04\0"), ((0x7FE0, 0x10), "OW", bytes(32))]
    return {tag: element(tag, vr, value, transfer_syntax) for tag, vr, value in values}
