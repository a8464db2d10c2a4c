"""The output that directory_tree must have for a DICOMDIR, worked out from the records as pydicom reads them.

pydicom's own tree is not used. It takes records in any order and of any type; here a record has its place where
the offsets lead to it first, and types that a level does not take have none.
"""

from pydicom.filereader import read_dataset, read_file_meta_info

UNDEFINED = 0xFFFFFFFF
META_INFORMATION = 128 + 4 + 12  # where it starts, behind the element with its length
IN_USE, LINKS, TYPE, SOP_CLASS, FILE_ID = (4, 0x1410), [(4, 0x1420), (4, 0x1400)], (4, 0x1430), (4, 0x1510), (4, 0x1500)
FIRST_RECORD, RECORDS = (4, 0x1200), (4, 0x1220)

# A record's type is held against them in this order, as far as it goes; any other is private.
TYPES = {b"PATIENT ": "PATIENT", b"STUDY ": "STUDY", b"SERIES": "SERIES", b"IMAGE ": "IMAGE", b"RAW DATA": "RAW",
         b"SR DOCUMENT  ": "SR"}
PRIVATE_CLASS = b"1.3.12.2.1107.5.9.1".ljust(64, b"\0")  # of files that no reader can show
# What a document takes below it, in the order in which its children are shown.
CHILDREN = {"PATIENT": ["STUDY", "PRIVATE"], "STUDY": ["SERIES", "PRIVATE"],
            "SERIES": ["IMAGE", "SR", "RAW", "PRIVATE"], "IMAGE": ["PRIVATE"], "SR": ["PRIVATE"]}
LISTS = ["PATIENT", "STUDY", "SERIES", "IMAGE", "RAW", "SR"]
WITHOUT_FILE = LISTS[:3]
# Patient ID, name; study UID, date, ID; series UID, number, modality; SOP instance, file ID, instance number.
TEXTS = [(0x10, 0x20), (0x10, 0x10), (0x20, 0xD), (8, 0x20), (0x20, 0x10), (0x20, 0xE), (0x20, 0x11), (8, 0x60),
         (4, 0x1511), FILE_ID, (0x20, 0x13)]


def stored(record, tag):
    """The value as it is in the file; None when it is absent."""
    return (record.get_item(tag).value or b"") if tag in record else None


class Doc:
    def __init__(self, record):
        kind = next((TYPES[text] for text in TYPES if text.startswith(stored(record, TYPE))), "PRIVATE")
        sop_class = stored(record, SOP_CLASS)
        is_private = kind == "IMAGE" and (sop_class is None or PRIVATE_CLASS.startswith(sop_class))
        self.kind = "PRIVATE" if is_private else kind
        self.children = []
        # A record that lacks one of its links leads nowhere.
        self.links = [record[tag].value for tag in LINKS] if all(tag in record for tag in LINKS) else []
        texts = {tag: b"-" if stored(record, tag) is None else stored(record, tag).split(b"\0")[0] for tag in TEXTS}
        path = b"-" if self.kind in WITHOUT_FILE else texts[FILE_ID].rstrip().replace(b"\\", b"/")
        self.texts = [self.kind.encode(), path, *texts.values()]

    def lines(self, level=0):
        """Pairs of a document and its line, each in front of those below it."""
        yield self, b"\t".join([b"%d" % level, *self.texts])
        for kind in CHILDREN.get(self.kind, []):
            for child in self.children:
                if child.kind == kind:
                    yield from child.lines(level + 1)


def read_records(path):
    """The data set, and the records by their offsets, up to one that would go on behind the end of the file."""
    meta = read_file_meta_info(path)
    order = "little" if meta.TransferSyntaxUID.is_little_endian else "big"
    content = path.read_bytes()
    with open(path, "rb") as file:
        file.seek(META_INFORMATION + meta.FileMetaInformationGroupLength)
        data_set = read_dataset(file, meta.TransferSyntaxUID.is_implicit_VR, order == "little")

    def fits(record):
        length = int.from_bytes(content[record.file_tell + 4:record.file_tell + 8], order)
        return length == UNDEFINED or record.file_tell + 8 + length <= len(content)

    return data_set, {record.file_tell: record for record in data_set.get(RECORDS, []) if fits(record)}


def expected_lines(path):
    data_set, records = read_records(path)
    docs = {offset: Doc(record) for offset, record in records.items()
            if TYPE in record and IN_USE in record and record[IN_USE].value}
    roots = []
    places = [(data_set[FIRST_RECORD].value, None)]
    while places:
        offset, parent = places.pop()
        doc = docs.pop(offset, None)
        if doc is None:
            continue
        if parent is None:
            roots.append(doc)
        elif doc.kind in CHILDREN.get(parent.kind, []):
            parent.children.append(doc)
        if doc.links:
            lower, behind = doc.links
            places += [(behind, parent), (lower, doc)]
    # What else is on the top level is not listed.
    pairs = [pair for root in roots if root.kind == "PATIENT" for pair in root.lines()]
    lines = [line for _, line in pairs]
    for kind in LISTS:
        numbers = [b"%d" % number for number, (doc, _) in enumerate(pairs, 1) if doc.kind == kind]
        lines.append(b"\t".join([kind.encode(), b"%d" % len(numbers), *numbers]))
    return lines
