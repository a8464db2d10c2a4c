#include "directory/TFolderDirectory.h"

#include <string_view>
#include <utility>

#include "dicom/Attempt.h"
#include "dicom/TException.h"
#include "directory/MediaPlaces.h"
#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"

namespace Vantor {

namespace {

constexpr char kDirectoryFileName[] = "DICOMDIR";
constexpr uint32_t kLongestSeriesNumber = 20;
constexpr uint32_t kKeptWord = 0xFFFF;

const Platform::PathStyle& Style() { return Platform::PathStyle::OfPlatform(); }

// The files of a folder without regard to what looks like a full path but leads elsewhere.
class FolderPlaces final : public MediaPlaces {
  public:
    FolderPlaces(uintptr_t owner, const TFileSpec& spec, MediaPaths paths, std::string singleFile)
        : MediaPlaces(owner, spec, std::move(paths)), fSingleFile(std::move(singleFile)) {}

    TFileSpec Find(std::string_view fileID) const override {
        if (!fSingleFile.empty()) return MakeSpec(fSingleFile);
        const bool isFull = !GetPaths().MakeFileID(fileID).empty();
        return MakeSpec(isFull ? std::string(fileID) : GetPaths().MakePathBelow(fileID));
    }

    bool IsInside(const TFileSpec& fileSpec) const override {
        return fSingleFile.empty() ? MediaPlaces::IsInside(fileSpec) : fSingleFile == fileSpec.fPath;
    }

  protected:
    bool IsDirectoryItself(const std::string& path) const override {
        return fSingleFile.empty() && MediaPlaces::IsDirectoryItself(path);
    }

  private:
    std::string fSingleFile;  // empty for a folder
};

}  // namespace

TFolderDirectory::TFolderDirectory(const TFileSpec& fileSpec)
    : TDicomDirectory(fileSpec, 0, kFolderDirectory), fHasDICOMDIR(true) {
    SetFolderpath(std::string(Style().FolderPart(fileSpec.fPath)));
    ReadDirectory();
}

TFolderDirectory::TFolderDirectory(const std::string& path, const char* directoryName, int32_t mode)
    : TDicomDirectory(TFileSpec(), 0, kFolderDirectory), fMode(mode) {
    SetDirName(directoryName);
    SetDirName("");
    const std::string folder = mode == kSingleFile ? std::string(Style().FolderPart(path)) : path;
    SetFolderpath(folder);
    const std::string directoryPath = Style().Join(path, kDirectoryFileName);
    fHasDICOMDIR = mode != kSingleFile && Platform::IsFile(directoryPath);
    const std::string filePath = fHasDICOMDIR ? directoryPath : Style().WithoutLastSeparators(path);
    if (!TFileSpec::FitsPath(filePath)) return;
    *GetFileSpec() = TFileSpec(filePath);
    if (fHasDICOMDIR) {
        OpenDICOMDIR();
    } else {
        ScanAnew();
    }
}

void TFolderDirectory::OpenDICOMDIR() {
    if (!Succeeds([this] { ReadDirectory(); })) ForgetContent();
    CloseFile();
}

bool TFolderDirectory::ReloadIfChanged() {
    if (IsCurrent()) return false;
    if (fHasDICOMDIR) return TDicomDirectory::ReloadIfChanged();
    ScanAnew();
    return false;
}

void TFolderDirectory::LookAgain() {
    if (!fHasDICOMDIR) ScanAnew();
}

// ---- Looking through the files ----

// The time is noted first: what is changed meanwhile is looked at again next time.
void TFolderDirectory::ScanAnew() {
    UpdateModTime();
    ClearLists();
    ScanFiles();
    NumberSeries();
}

void TFolderDirectory::ScanFiles() {
    if (fMode != kSingleFile) return EnterFilesBelow(GetFolderPath(), SeriesNumbers::kLater);
    Succeeds([this] { EnterFile(GetFullPath(), SeriesNumbers::kLater); });
}

void TFolderDirectory::NumberSeries() {
    for (TStudyDoc* study : *GetStudyDocs()) {
        int32_t place = 0;
        for (TSeriesDoc* series : *study->GetSeriesDocs()) {
            ++place;
            char number[kLongestSeriesNumber + 1];
            const bool isNumbered = series->GetSeriesNumber(number, sizeof(number));
            if (!isNumbered) series->SetSeriesNumber(std::to_string(place).c_str());
        }
    }
}

void TFolderDirectory::RemoveAllDocs() { ClearLists(); }

// ---- The folder ----

std::shared_ptr<const MediaPlaces> TFolderDirectory::MakePlaces() {
    TFileSpec spec = *GetFileSpec();
    spec.fWord &= kKeptWord;
    return std::make_shared<const FolderPlaces>(reinterpret_cast<uintptr_t>(this), spec,
                                                MediaPaths(Style(), GetFolderPath(), true),
                                                fMode == kSingleFile ? GetFullPath() : std::string());
}

void TFolderDirectory::CreateImageFolder(const std::string& name) {
    const std::string folder = Style().Join(GetFolderPath(), Style().NameToMake(name));
    Platform::MakeFolderIfMissing(folder);
    SetImageFolder(folder);
    SetImageFolderName(('\\' + name).c_str());
}

void TFolderDirectory::CreateDICOMDIR() {
    MakeDICOMDIR([this] { CreateEmptyDICOMDIR(); });
}

void TFolderDirectory::CreateFilledDICOMDIR(const char* name) {
    MakeDICOMDIR([&] {
        SetDirName(name);
        TDicomDirectory::CreateFilledDICOMDIR();
    });
}

template <typename Write>
void TFolderDirectory::MakeDICOMDIR(Write write) {
    const TFileSpec before = *GetFileSpec();
    const std::string path = Style().Join(GetFolderPath(), kDirectoryFileName);
    if (!TFileSpec::FitsPath(path)) {
        throw Platform::FileException(Platform::FileException::Cause::kBadPath, 0, path);
    }
    // One that another program has made since, or that a single file is beside.
    const bool isForeign = GetFullPath() != path && Platform::PathExists(path);
    if (isForeign) throw new TException(ErrorNumbers::kRecordStructure, "another DICOMDIR is there");
    *GetFileSpec() = TFileSpec(path);
    try {
        write();
    } catch (...) {
        *GetFileSpec() = before;
        throw;
    }
    fHasDICOMDIR = true;
    fMode = kFolder;  // the file IDs count from here on
    ForgetPlaces();
}

void TFolderDirectory::WriteDICOMDIR() {
    if (fHasDICOMDIR) fHasWritten = Succeeds([this] { TDicomDirectory::WriteDICOMDIR(); });
}

}  // namespace Vantor
