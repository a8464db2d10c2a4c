// A hostile medium is brought up to date: its DICOMDIR is opened, files are entered, a series is deleted with
// its files, names for new files are made, and it is written. What is in memory then has to come back from
// the DICOMDIR, which does not change when it is written again; one that cannot be written stays as it was;
// and nothing beside the medium is touched.

#include <cstring>

#include "dicom/TSRFile.h"
#include "directory/TDicomDirectory.h"
#include "fuzz/HostileMedium.h"
#include "platform/FileSystem.h"
#include "wrappers/SeriesDeletion.h"

namespace {

using namespace Vantor;
using VantorFuzz::HostileMedium;
using VantorFuzz::Require;
using VantorFuzz::Run;
using VantorTest::Bytes;
using VantorTest::FileBuilder;

// True when it was written.
bool Write(TDicomDirectory& directory) {
    const std::string path = directory.GetFullPath();
    const Bytes before = VantorTest::ReadWholeFile(path);
    bool isWritten = false;
    Run([&] {
        directory.WriteDICOMDIR();
        isWritten = true;
    });
    Require(!directory.IsOpen());
    if (!isWritten) Require(VantorTest::ReadWholeFile(path) == before);
    return isWritten;
}

void Enter(TDicomDirectory& directory, const HostileMedium& medium, bool scans) {
    if (scans) return Run([&] { directory.ScanFiles(); });
    for (const std::string& path : medium.GetPathsToEnter()) {
        Run([&] {
            TDicomDoc* const series = directory.AddFile(path);
            Require(series == nullptr || directory.IsInTree(*series));
        });
    }
}

void DeleteOneSeries(TDicomDirectory& directory, size_t choice) {
    const int32_t count = directory.GetSeriesDocs()->GetCount();
    if (count == 0) return;
    TSeriesDoc* series = nullptr;
    directory.GetSeriesDocs()->FetchItemAt(1 + static_cast<int32_t>(choice) % count, series);
    const bool isDeleted = VantorWrappers::SeriesDeletion(directory).Run(*series).IsSuccess();
    Require(!directory.IsOpen());
    if (isDeleted) VantorFuzz::RequireSameWhenReadAgain(directory);
}

void RequireNewBelow(const HostileMedium& medium, const std::string& path) {
    Require(path.starts_with(medium.GetFolder()) && !Platform::PathExists(path));
}

// In whichever layout the records say that the medium has.
void MakeNames(TDicomDirectory& directory, const HostileMedium& medium) {
    char text[TFileSpec::kPathSize] = {};
    TStudyDoc* study = nullptr;
    if (directory.GetStudyDocs()->GetCount() > 0) study = *directory.GetStudyDocs()->begin();
    Run([&] {
        uint32_t length = 0;
        directory.MakeNextFileName(text, length, TSRFile::kReportKind);
        TFileSpec file;
        directory.MakeFileSpec(text, file);
        RequireNewBelow(medium, file.fPath);
    });
    char examFolder[TDicomDoc::kFolderNameSize + 1] = {};
    Run([&] { directory.CreateExamFolders(examFolder, TDicomDoc::kFolderNameSize, 0, study); });
    if (examFolder[0] != '\0') std::strcat(examFolder, "\\");
    int32_t length = 0;
    directory.MakeImageFileName(text, length, examFolder, FileBuilder::kSecondaryCapture, "");
    if (length > 0) RequireNewBelow(medium, text);
}

void Update(const HostileMedium& medium, uint8_t choice) {
    constexpr uint8_t kDeletesFirst = 1, kScans = 2, kDeletes = 4, kNames = 8;
    TDicomDirectory directory(medium.GetDirectorySpec(), 0);
    if ((choice & kDeletesFirst) != 0) DeleteOneSeries(directory, choice);
    if (directory.OpenForUpdating()) {
        if ((choice & kNames) != 0) MakeNames(directory, medium);
        Enter(directory, medium, (choice & kScans) != 0);
        if (Write(directory)) VantorFuzz::RequireSameWhenReadAgain(directory);
    }
    Require(!directory.IsOpen());
    if ((choice & kDeletes) != 0) DeleteOneSeries(directory, choice);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    VantorFuzz::Choices input(data, size);
    const uint8_t choice = input.Byte();
    const HostileMedium medium(input);
    Run([&] { Update(medium, choice); });
    medium.RequireUntouchedSurroundings();
    return 0;
}
