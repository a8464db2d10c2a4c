#include "records/ReferencedFile.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "dicom/Attempt.h"
#include "dicom/TTextUtil.h"

namespace Vantor::ReferencedFile {

namespace {

constexpr uint32_t kLongestFileID = 256;

void PutFileID(TDicomDataSet& record, const char* fileID, uint32_t length) {
    record.PutElement(Tags::kReferencedFileID, Vr::kCS, length, fileID, length);
}

std::unique_ptr<TDicomFile> TakeFileOf(TDicomFile& file, TRecordDirectory& directory) {
    char sopClassUID[kMaximumUidLength + 1] = {};
    char sopInstanceUID[kMaximumUidLength + 1] = {};
    file.GetSOPClassUID(sopClassUID);
    file.GetSOPInstanceUID(sopInstanceUID);
    return directory.TakeRegisteredFile(sopClassUID, sopInstanceUID);
}

// Leaves the text empty when the file does not tell.
void ReadTransferSyntax(const TFileSpec& fileSpec, TUidText& transferSyntax) {
    TDicomFile file(0, fileSpec, 0);
    Succeeds([&] {
        file.OpenFile(Platform::FileAccess::kRead);
        file.ReadMetaHeader();
    });
    file.GetTransferSyntaxUID(transferSyntax.fText);
}

}  // namespace

std::optional<TFileSpec> Find(const TDicomDataSet* record, const TFilePlaces& places) {
    std::array<char, kLongestFileID> fileID{};
    uint32_t length = 0;
    if (record == nullptr ||
        !record->FindElement(Tags::kReferencedFileID, nullptr, &length, fileID.data(), kLongestFileID)) {
        return std::nullopt;
    }
    return places.Find(std::string_view(fileID.data(), std::min(length, kLongestFileID)));
}

// An absent UID leaves the buffer alone: who collects UIDs in a loop relies on it.
bool GetUid(const TDicomDataSet* record, Tag tag, char* buffer) {
    if (record == nullptr || !record->FindElement(tag)) return false;
    return record->GetText(tag, buffer, kMaximumUidLength + 1);
}

void SetUid(TDicomDataSet* record, Tag tag, const char* text) {
    if (record == nullptr) return;
    const uint32_t length = std::min<uint32_t>(TTextUtil().StringLength(text), kMaximumUidLength);
    record->PutElement(tag, Vr::kUI, length, text, length);
}

void HandUids(const TDicomDataSet* record, TIODSource& receiver) {
    char uid[kMaximumUidLength + 1] = {};
    if (GetUid(record, Tags::kReferencedSOPClassUIDInFile, uid)) receiver.SetSOPClassUID(uid);
    if (GetUid(record, Tags::kReferencedSOPInstanceUIDInFile, uid)) receiver.SetSOPInstanceUID(uid);
}

std::unique_ptr<TDicomFile> MakePlainFile(const TDicomDataSet* record, const TFilePlaces& places) {
    const auto fileSpec = Find(record, places);
    if (!fileSpec) return nullptr;
    auto file = std::make_unique<TDicomFile>(places.GetOwner(), *fileSpec, 0);
    HandUids(record, *file);
    return file;
}

std::unique_ptr<TDicomDataSet> CopyRecordTo(TDicomDoc& doc, TRecordDirectory* directory,
                                            const char* fallback) {
    const TDicomDataSet* const record = doc.GetDataSet();
    if (record == nullptr) return nullptr;
    std::unique_ptr<TDicomDataSet> copy = TDicomDoc::CopyRecord(*record);
    TDicomFile* const file = doc.GetDicomFile();
    if (file == nullptr || directory == nullptr) return copy;
    char fileID[TFileSpec::kPathSize] = {};
    uint32_t length = 0;
    if (const std::unique_ptr<TDicomFile> registered = TakeFileOf(*file, *directory)) {
        directory->MakeRelativeFileID(fileID, length, *registered->GetFileSpec());
    }
    // Without a file, and with one that is not on the medium.
    if (length == 0 && fallback != nullptr) {
        PutFileID(*copy, fallback, TTextUtil().StringLength(fallback));
    } else if (length > 0) {
        PutFileID(*copy, fileID, length);
    }
    return copy;
}

void CompleteReference(TDicomDataSet& record, TDicomFile& file, TRecordDirectory* directory) {
    if (directory != nullptr && !record.FindElement(Tags::kReferencedFileID)) {
        char fileID[TFileSpec::kPathSize] = {};
        uint32_t length = 0;
        directory->MakeRelativeFileID(fileID, length, *file.GetFileSpec());
        if (length > 0) PutFileID(record, fileID, length);
    }
    if (record.FindElement(Tags::kReferencedTransferSyntaxUIDInFile)) return;
    TUidText transferSyntax;
    if (!file.GetTransferSyntaxUID(transferSyntax.fText))
        ReadTransferSyntax(*file.GetFileSpec(), transferSyntax);
    if (transferSyntax.fText[0] == '\0') return;
    SetUid(&record, Tags::kReferencedTransferSyntaxUIDInFile, transferSyntax.fText);
}

}  // namespace Vantor::ReferencedFile
