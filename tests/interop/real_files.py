"""The files of python3-pydicom that tests/interop reads, and what becomes of each."""

import importlib.util
import pathlib


def _data_folder():
    """Where the package keeps its files; it is not run."""
    return pathlib.Path(importlib.util.find_spec("pydicom").origin).parent / "data"


def _listed(names_by_folder):
    return {f"{folder}/{name}" for folder, names in names_by_folder.items() for name in names.split()}


DATA = _data_folder()
FOLDERS = ["test_files", "charset_files"]

IMAGES = _listed({
    "charset_files": """
        chrArab.dcm chrFren.dcm chrFrenMulti.dcm chrGerm.dcm chrGreek.dcm chrH31.dcm chrH32.dcm chrHbrw.dcm
        chrI2.dcm chrRuss.dcm chrX1.dcm chrX2.dcm""",
    "test_files": """
        693_J2KI.dcm CT_small.dcm ExplVR_BigEnd.dcm GDCMJ2K_TextGBR.dcm J2K_pixelrep_mismatch.dcm
        JPEG-lossy.dcm JPEG2000-embedded-sequence-delimiter.dcm JPEG2000.dcm JPGExtended.dcm MR_small.dcm
        MR_small_RLE.dcm MR_small_bigendian.dcm MR_small_expb.dcm MR_small_implicit.dcm
        MR_small_jp2klossless.dcm MR_small_jpeg_ls_lossless.dcm MR_small_padded.dcm MR_truncated.dcm
        SC_jpeg_no_color_transform.dcm SC_jpeg_no_color_transform_2.dcm SC_rgb_dcmtk_+eb+cr.dcm
        SC_rgb_dcmtk_+eb+cy+n1.dcm SC_rgb_dcmtk_+eb+cy+n2.dcm SC_rgb_dcmtk_+eb+cy+np.dcm
        SC_rgb_dcmtk_+eb+cy+s2.dcm SC_rgb_dcmtk_+eb+cy+s4.dcm SC_rgb_gdcm_KY.dcm SC_rgb_jpeg_app14_dcmd.dcm
        SC_rgb_jpeg_dcmd.dcm SC_rgb_jpeg_dcmtk.dcm SC_rgb_jpeg_gdcm.dcm SC_rgb_jpeg_lossy_gdcm.dcm
        SC_rgb_rle.dcm SC_rgb_rle_16bit.dcm SC_rgb_rle_16bit_2frame.dcm SC_rgb_rle_2frame.dcm
        SC_rgb_rle_32bit.dcm SC_rgb_rle_32bit_2frame.dcm SC_rgb_small_odd.dcm SC_rgb_small_odd_jpeg.dcm
        SC_ybr_full_422_uncompressed.dcm badVR.dcm liver_1frame.dcm liver_expb_1frame.dcm rtdose.dcm
        rtdose_1frame.dcm rtdose_expb.dcm rtdose_expb_1frame.dcm rtdose_rle.dcm rtdose_rle_1frame.dcm""",
    "test_files/dicomdirtests/77654033/CR1": "6154",
    "test_files/dicomdirtests/77654033/CR2": "6247",
    "test_files/dicomdirtests/77654033/CR3": "6278",
    "test_files/dicomdirtests/77654033/CT2": "17106 17136 17166 17196",
    "test_files/dicomdirtests/98892001/CT2N": "6293 6924",
    "test_files/dicomdirtests/98892001/CT5N": "2062 2392 2693 3023 3353",
    "test_files/dicomdirtests/98892003/MR1": "15820 4919 5641",
    "test_files/dicomdirtests/98892003/MR2": "15970 4950 4981 5011 6273 6605 6935",
    "test_files/dicomdirtests/98892003/MR700": "4467 4528 4558 4588 4618 4648 4678",
})

REPORTS = _listed({
    "test_files": "reportsi.dcm reportsi_with_empty_number_tags.dcm test-SR.dcm",
})

OTHERS = _listed({
    "charset_files": """
        chrJapMulti.dcm chrJapMultiExplicitIR6.dcm chrKoreanMulti.dcm chrSQEncoding.dcm chrSQEncoding1.dcm""",
    "test_files/dicomdirtests": """
        DICOMDIR DICOMDIR-bigEnd DICOMDIR-empty.dcm DICOMDIR-implicit DICOMDIR-nooffset DICOMDIR-nopatient
        DICOMDIR-reordered""",
    "test_files/dicomdirtests/TINY_ALPHA": "DICOMDIR",
    "test_files": """
        no_meta_group_length.dcm priv_SQ.dcm rtplan.dcm rtplan_truncated.dcm waveform_ecg.dcm""",
    "test_files/dicomdirtests/TINY_ALPHA/PT000000/ST000000/SE000000": " ".join(
        [f"IM00000{last}" for last in "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"] +
        [f"IM00001{last}" for last in "0123456789ABCD"]),
})

_NO_DICOM_FILE = "is no DICOM file"
_NO_PREAMBLE = "starts with its data set: there is no preamble and no meta information to tell the encoding"
_GROUP_1 = ("its data set starts with group 0001, which is below that of the meta information, and so is taken for a "
            "part of it; read as such, in explicit VR, it does not end inside the file")

# Files that are not read, each with the true reason.
REFUSED = {
    "charset_files/FileInfo.txt": _NO_DICOM_FILE,
    "test_files/ExplVR_BigEndNoMeta.dcm": _NO_PREAMBLE,
    "test_files/ExplVR_LitEndNoMeta.dcm": _NO_PREAMBLE,
    "test_files/README.txt": _NO_DICOM_FILE,
    "test_files/SC_rgb_jpeg.dcm": "its data set is in implicit VR, but its transfer syntax says explicit VR",
    "test_files/UN_sequence.dcm": "its only element, of VR UN and undefined length, holds items in another encoding, "
                                  "implicit VR; they cannot be passed over",
    "test_files/dicomdirtests/README.txt": _NO_DICOM_FILE,
    "test_files/dicomdirtests/TINY_ALPHA/README": _NO_DICOM_FILE,
    "test_files/empty_charset_LEI.dcm": "its meta information lacks the SOP class, (0002,0002)",
    "test_files/image_dfl.dcm": "its data set is deflated, which is not supported: no element can be read",
    "test_files/meta_missing_tsyntax.dcm": _GROUP_1,
    "test_files/nested_priv_SQ.dcm": _GROUP_1,
    "test_files/no_meta.dcm": _NO_PREAMBLE,
    "test_files/rtplan.dump": _NO_DICOM_FILE,
    "test_files/rtstruct.dcm": _NO_PREAMBLE,
    "test_files/rtstruct.dump": _NO_DICOM_FILE,
    "test_files/test1.json": _NO_DICOM_FILE,
    "test_files/test_PN.json": _NO_DICOM_FILE,
    "test_files/zipMR.gz": _NO_DICOM_FILE,
}

# Files whose attributes are read but whose elements do not go on to the end, each with the true reason.
DUMP_STOPS = {
    "test_files/MR_truncated.dcm": "the file ends inside its pixel data",
    "test_files/rtplan_truncated.dcm": "the file ends inside a sequence",
}
