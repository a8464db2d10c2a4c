#include "directory/FileRecords.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

#include "dicom/Attempt.h"
#include "dicom/TImageFile.h"
#include "dicom/TSRFile.h"
#include "dicom/TTextUtil.h"
#include "records/TImageDoc.h"
#include "records/TPrivateDoc.h"
#include "records/TRawDataDoc.h"
#include "records/TSR_Doc.h"

namespace Vantor {

namespace {

constexpr uint32_t kLongestPatientText = 128;
constexpr uint32_t kLongestValue = 0xFFFE;

// An element of a record, and of the file, where it mostly has the same tag.
struct CopiedElement {
    Tag fTag;
    VrCode fVr;
    bool fIsAlwaysWritten = false;  // empty when the file does not have it
    Tag fSource = fTag;
};

constexpr CopiedElement kStudyElements[] = {
    {Tags::kStudyDate, Vr::kDA, true},
    {Tags::kStudyTime, Vr::kTM, true},
    {Tags::kAccessionNumber, Vr::kSH, true},
    // Written as SH: readers of these records have always seen it so.
    {Tags::kReferringPhysicianName, Vr::kSH},
    {Tags::kStudyDescription, Vr::kLO, true},
    {Tags::kStudyInstanceUID, Vr::kUI},
    {Tags::kStudyID, Vr::kSH},
};

constexpr CopiedElement kSeriesElements[] = {
    {Tags::kModality, Vr::kCS, true},
    {Tags::kSeriesDescription, Vr::kLO},
    {Tags::kSeriesInstanceUID, Vr::kUI},
    {Tags::kSeriesNumber, Vr::kIS},
};

constexpr CopiedElement kInstanceElements[] = {
    {Tags::kReferencedSOPClassUIDInFile, Vr::kUI, false, Tags::kSOPClassUID},
    {Tags::kReferencedSOPInstanceUIDInFile, Vr::kUI, false, Tags::kSOPInstanceUID},
};

constexpr CopiedElement kImageElements[] = {{Tags::kInstanceNumber, Vr::kIS}};

constexpr CopiedElement kRawDataElements[] = {
    {Tags::kContentDate, Vr::kDA},
    {Tags::kContentTime, Vr::kTM},
    {Tags::kInstanceNumber, Vr::kIS, true},
};

constexpr CopiedElement kCharacterSet[] = {{Tags::kSpecificCharacterSet, Vr::kCS}};

void PutText(TDicomDoc& doc, Tag tag, VrCode vr, std::string_view text) {
    const auto length = static_cast<uint32_t>(text.size());
    doc.GetDataSet()->PutElement(tag, vr, length, text.data(), length);
}

void CopyElements(const TDicomDataSet& source, TDicomDoc& doc, std::span<const CopiedElement> elements) {
    for (const CopiedElement& element : elements) {
        uint32_t length = 0;
        if (!source.FindElement(element.fSource, nullptr, &length)) {
            if (element.fIsAlwaysWritten) PutText(doc, element.fTag, element.fVr, {});
            continue;
        }
        std::string value(std::min(length, kLongestValue), '\0');
        source.FindElement(element.fSource, nullptr, nullptr, value.data(), std::min(length, kLongestValue));
        PutText(doc, element.fTag, element.fVr, value);
    }
}

void FillPatient(const TDicomDataSet& source, TPatientDoc& patient) {
    char text[kLongestPatientText + 1];
    if (source.GetText(Tags::kPatientName, text, sizeof(text))) patient.SetPatientName(text);
    if (source.GetText(Tags::kPatientID, text, sizeof(text))) patient.SetPatientNumber(text);
}

template <typename T>
std::unique_ptr<TDicomDoc> NewInstance(const TDicomDataSet& source,
                                       std::span<const CopiedElement> elements = {}) {
    auto doc = std::make_unique<T>(nullptr, nullptr);
    CopyElements(source, *doc, elements);
    return doc;
}

std::unique_ptr<TDicomDoc> NewImage(const FileToEnter& file) {
    auto image = std::make_unique<TImageDoc>(nullptr, nullptr, 0);
    TUidText transferSyntax;
    file.GetFile().GetTransferSyntaxUID(transferSyntax.fText);
    PutText(*image, Tags::kReferencedTransferSyntaxUIDInFile, Vr::kUI, transferSyntax.fText);
    CopyElements(file.GetDataSet(), *image, kImageElements);
    return image;
}

std::unique_ptr<TDicomDoc> NewInstance(const FileToEnter& file) {
    switch (file.GetKind()) {
        case FileToEnter::Kind::kImage:
            return NewImage(file);
        case FileToEnter::Kind::kReport:
            return NewInstance<TSR_Doc>(file.GetDataSet());
        case FileToEnter::Kind::kRawData:
            return NewInstance<TRawDataDoc>(file.GetDataSet(), kRawDataElements);
        default:
            return NewInstance<TPrivateDoc>(file.GetDataSet());
    }
}

// False for a file that breaks off: what its last elements say would be made up.
bool HasWholeElements(TDicomFile& file) {
    return Succeeds([&file] { file.GetDataSet()->CountElements(); });
}

}  // namespace

// An image file is not read beyond the elements in front of its pixels; another one has to be read whole.
std::unique_ptr<FileToEnter> FileToEnter::Read(const TFileSpec& fileSpec) {
    std::unique_ptr<TDicomFile> file = std::make_unique<TImageFile>(0, fileSpec, 0);
    Kind kind = Kind::kImage;
    if (file->GetDataSet() == nullptr) {
        auto report = std::make_unique<TSRFile>(0, fileSpec);
        if (report->GetDataSet() == nullptr) return nullptr;
        TUidText sopClass;
        report->GetSOPClassUID(sopClass.fText);
        if (TTextUtil().EqualStrings(sopClass.fText, Uids::kMediaStorageDirectory)) return nullptr;
        const bool isRawData = TTextUtil().EqualStrings(sopClass.fText, Uids::kRawDataStorage);
        kind = isRawData ? Kind::kRawData : report->IsSRModality() ? Kind::kReport : Kind::kPrivate;
        file = std::move(report);
    }
    if (!HasWholeElements(*file)) return nullptr;
    return std::unique_ptr<FileToEnter>(new FileToEnter(kind, std::move(file)));
}

FileRecords::FileRecords(const FileToEnter& file, std::string_view fileID)
    : fPatient(nullptr, nullptr),
      fStudy(nullptr, nullptr),
      fSeries(nullptr, nullptr),
      fInstance(NewInstance(file)) {
    const TDicomDataSet& source = file.GetDataSet();
    FillPatient(source, fPatient);
    CopyElements(source, fStudy, kStudyElements);
    CopyElements(source, fSeries, kSeriesElements);
    PutText(*fInstance, Tags::kReferencedFileID, Vr::kCS, fileID);
    CopyElements(source, *fInstance, kInstanceElements);
    fHasSeriesNumber = fSeries.GetDataSet()->FindElement(Tags::kSeriesNumber);
    for (TDicomDoc* doc : {static_cast<TDicomDoc*>(&fPatient), static_cast<TDicomDoc*>(&fStudy),
                           static_cast<TDicomDoc*>(&fSeries), fInstance.get()}) {
        CopyElements(source, *doc, kCharacterSet);
        doc->CompleteRecord();
    }
    fInstance->SetParentObj(&fSeries);
    fSeries.SetParentObj(&fStudy);
    fStudy.SetParentObj(&fPatient);
}

void FileRecords::LeaveSeriesUnnumbered() {
    if (fHasSeriesNumber) return;
    fSeries.GetDataSet()->DeleteElement(Tags::kSeriesNumber.fGroup, Tags::kSeriesNumber.fElement);
}

}  // namespace Vantor
