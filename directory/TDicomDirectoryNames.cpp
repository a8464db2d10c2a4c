// The names and folders of new files.

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

#include "dicom/TException.h"
#include "dicom/TSRFile.h"
#include "dicom/TTextUtil.h"
#include "directory/ExamFolder.h"
#include "directory/MediaPlaces.h"
#include "directory/TDicomDirectory.h"
#include "platform/Ascii.h"
#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"

namespace Vantor {

namespace {

constexpr char kStandardPrefix[] = "Imagesdc\\I_";
constexpr char kReportPrefix[] = "Imagesdc\\SR";
constexpr char kSuffix[] = ".dcm";
constexpr int32_t kLastFileNumber = 999999;

constexpr std::string_view kExamPrefix = "EXAM";
constexpr size_t kFolderPrefixLength = 4;
constexpr int32_t kLastFolderNumber = 9999;
constexpr char kClipsFolder[] = "Clips";
constexpr char kImagesFolder[] = "Images";
constexpr char kFirstExamImage[] = "IMAG0000";

// The one class whose files go into the clips folder.
constexpr char kClipsClassUID[] = "1.2.840.10008.5.1.1.3.1";

constexpr size_t kLongestImageFolder = 128;
constexpr size_t kLongestName = 12;
constexpr size_t kKeptOfName = 2;

const Platform::PathStyle& Style() { return Platform::PathStyle::OfPlatform(); }

template <typename... Arguments>
std::string Format(const char* format, Arguments... arguments) {
    char text[64];
    std::snprintf(text, sizeof(text), format, arguments...);
    return text;
}

// A link counts, also one to nothing: who made a file there would make it where the link leads.
bool IsTaken(const std::string& path) { return Platform::PathExists(path) || Platform::IsLink(path); }

std::string ExamFolderOf(const TStudyDoc& study) {
    char name[TDicomDoc::kFolderNameSize] = {};
    study.GetFolderName(name);
    return name;
}

std::string SixDigits(int32_t number) { return Format("%06i", number); }

}  // namespace

void TDicomDirectory::SetNextImageNumber(int32_t number) {
    fNextImageNumber = std::clamp(number, 0, kLastFileNumber);
}

void TDicomDirectory::MakeNextFileName(char* fileID, uint32_t& length, int32_t kind) {
    const char* const prefix = kind == TSRFile::kReportKind ? kReportPrefix : kStandardPrefix;
    const auto name = [&] { return Style().NameToMake(prefix + SixDigits(fNextImageNumber) + kSuffix); };
    TFileSpec fileSpec;
    MakeFileSpec(name(), fileSpec);
    while (IsTaken(fileSpec.fPath) && fNextImageNumber < kLastFileNumber) {
        ++fNextImageNumber;
        MakeFileSpec(name(), fileSpec);
    }
    length = TTextUtil().CopyCString(name().c_str(), fileID, TFileSpec::kPathSize);
    ++fNextImageNumber;
    if (fNextImageNumber > kLastFileNumber) {
        throw new TException(ErrorNumbers::kRecordStructure, "Exceeded 999999 files!");
    }
}

void TDicomDirectory::MakeImageFileName(char* path, int32_t& length, const char* subFolder,
                                        const char* sopClassUID, const char* preferredName) {
    path[0] = '\0';
    length = 0;
    const bool isExam = fDirectoryType == kExamLayout;
    std::string folder = MakeImageFolderPath();
    if (folder.empty() || folder.size() > kLongestImageFolder) return;
    std::string below = std::string("\\") + subFolder;
    if (isExam) {
        const bool isClip = TTextUtil().EqualStrings(sopClassUID, kClipsClassUID);
        below += std::string(isClip ? kClipsFolder : kImagesFolder) + "\\";
    }
    folder += Style().FromFileID(Style().NameToMake(below));
    int32_t counter = isExam ? 0 : fNextImageNumber;
    std::string name = preferredName;
    if (!isExam) name = "I_" + SixDigits(counter) + kSuffix;
    if (name.empty()) name = kFirstExamImage;
    name.resize(std::min(name.size(), kLongestName));
    const auto full = [&] { return folder + Style().NameToMake(name); };
    while (IsTaken(full()) && counter < kLastFileNumber) {
        ++counter;
        name = name.substr(0, kKeptOfName) + SixDigits(counter) + kSuffix;
    }
    ++counter;
    const bool isUsable = ExamFolder::IsPlainName(name) && GetPaths().IsInside(full());
    if (counter > kLastFileNumber || !isUsable || !TFileSpec::FitsPath(full())) return;
    if (!isExam) fNextImageNumber = counter;
    length = static_cast<int32_t>(TTextUtil().CopyCString(full().c_str(), path, TFileSpec::kPathSize));
}

// ---- Folders ----

std::string TDicomDirectory::MakeNumberedFolder(std::string_view prefix, const std::string& baseFolder,
                                                std::string& name) {
    int32_t counter = 0;
    const auto path = [&] {
        name = std::string(prefix.substr(0, kFolderPrefixLength)) + Format("%04i", counter);
        return baseFolder + Style().GetSeparator() + name;
    };
    while (IsTaken(path()) && counter < kLastFolderNumber) ++counter;
    try {
        // Without a folder of its own to put it into, it would land wherever the process is.
        if (baseFolder.empty() || !GetPlaces().MayBeWritten(TFileSpec(path())))
            throw Platform::FileException(Platform::FileException::Cause::kBadPath, 0, name);
        Platform::CreateFolder(path());
    } catch (const Platform::FileException&) {
        name.clear();
        throw new TException(ErrorNumbers::kRecordStructure, "Cannot make folder.");
    }
    return path();
}

void TDicomDirectory::CreateExamFolders(char* name, uint32_t size, int32_t /*reserved*/, TStudyDoc* study) {
    if (size > 0) name[0] = '\0';
    if (fDirectoryType != kExamLayout) return;
    std::string folderName;
    const std::string folder = MakeNumberedFolder(kExamPrefix, MakeImageFolderPath(), folderName);
    TTextUtil().CopyCString(folderName.c_str(), name, size);
    for (const char* below : {kClipsFolder, kImagesFolder}) {
        Platform::MakeFolderIfMissing(folder + Style().GetSeparator() + Style().NameToMake(below));
    }
    if (study == nullptr) return;
    ExamFolder::WritePath(*study->GetDataSet(), GetPaths().MakePathOnVolume(folder));
    study->SetFolderName(folderName.c_str(), static_cast<uint32_t>(folderName.size()));
}

// A record of another study may name the folder too: what it holds is not this one's alone then.
bool TDicomDirectory::HasOwnExamFolder(const TStudyDoc& study) const {
    const std::string name = Platform::UpperCased(ExamFolderOf(study));
    const auto isSharedWith = [&](const TStudyDoc* other) {
        return other != &study && Platform::UpperCased(ExamFolderOf(*other)) == name;
    };
    return ExamFolder::IsPlainName(name) && std::none_of(fStudyDocs.begin(), fStudyDocs.end(), isSharedWith);
}

void TDicomDirectory::RemoveExamFolder(const TStudyDoc& study) {
    const std::string imageFolder = MakeImageFolderPath();
    if (!HasOwnExamFolder(study) || imageFolder.empty()) return;
    const std::string folder = imageFolder + Style().GetSeparator() + ExamFolderOf(study);
    const bool mayBeRemoved = TFileSpec::FitsPath(folder) && GetPlaces().MayBeRemoved(TFileSpec(folder));
    if (mayBeRemoved && !HasFilesOfOthers(study, folder)) Platform::RemoveFolderTree(folder);
}

// A study that names no folder, or was entered from the files that lie there, may have them in it all the
// same.
bool TDicomDirectory::HasFilesOfOthers(const TStudyDoc& study, const std::string& folder) {
    const std::string start = MakeStoredFileID(TFileSpec(folder)) + '\\';
    const auto fileIDs = CollectFileIDs(&study);
    return std::any_of(fileIDs.begin(), fileIDs.end(),
                       [&start](const std::string& fileID) { return fileID.starts_with(start); });
}

void TDicomDirectory::DeleteFiles(TDicomDoc& doc) {
    const auto named = CollectFileIDs(&doc);
    doc.DeleteFilesFromDisk(
        [&](TDicomFile& file) { return named.count(MakeStoredFileID(*file.GetFileSpec())) > 0; });
}

void TDicomDirectory::DeleteFolders(TDicomDoc* doc) {
    if (doc == nullptr || fDirectoryType != kExamLayout) return;
    if (doc->GetDocType() == TDicomDoc::kStudy) RemoveExamFolder(static_cast<const TStudyDoc&>(*doc));
    if (doc->GetDocType() != TDicomDoc::kPatient) return;
    for (const TStudyDoc* study : *static_cast<TPatientDoc*>(doc)->GetStudyDocs()) RemoveExamFolder(*study);
}

float TDicomDirectory::GetFileSpaceUsed() {
    fSpaceUsed = 0;
    for (TSeriesDoc* series : fSeriesDocs) fSpaceUsed += static_cast<float>(series->GetDiskSpace());
    return fSpaceUsed;
}

}  // namespace Vantor
