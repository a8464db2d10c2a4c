#include "cli/Directories.h"

#include <system_error>

#include "cli/CommandError.h"
#include "cli/Paths.h"

namespace VantorCli {

namespace {

constexpr wchar_t kDicomdirName[] = L"DICOMDIR";

}  // namespace

std::shared_ptr<DicomDirectory> Directories::OpenAny(const std::string& path) {
    auto directory = fManager->OpenDirectory(ToHostText(ToAbsolutePath(path)));
    if (directory != nullptr && directory->IsValid()) return directory;
    std::error_code ignored;
    const bool isThere = std::filesystem::exists(ToAbsolutePath(path), ignored);
    throw CommandError(ToPrintable(path) +
                       (isThere ? ": another program is changing it" : ": no such file or folder"));
}

std::shared_ptr<DicomDirectory> Directories::Open(const std::string& path) {
    auto directory = OpenAny(path);
    if (HasDicomdir(*directory) || !directory->GetPatientList().empty()) return directory;
    const bool isFolder = IsFolder(ToAbsolutePath(path));
    throw CommandError(ToPrintable(path) +
                       (isFolder ? ": no DICOM file is in this folder" : ": no DICOM file"));
}

std::shared_ptr<DicomDirectory> Directories::OpenDicomdir(const std::string& path, const char* advice) {
    auto directory = OpenAny(path);
    if (!HasDicomdir(*directory)) throw CommandError(ToPrintable(path) + ": no DICOMDIR is here; " + advice);
    RequireWhole(*directory);
    return directory;
}

std::shared_ptr<DicomDirectory> Directories::Create(const std::filesystem::path& folder,
                                                    const HostString& fileSetName) {
    return Make(folder, [&](const HostString& path) {
        return fManager->CreateOrReplaceDirectory(path, fileSetName, true);
    });
}

std::shared_ptr<DicomDirectory> Directories::Prepare(const std::filesystem::path& folder,
                                                     const HostString& fileSetName) {
    return Make(folder,
                [&](const HostString& path) { return fManager->PrepareDirectory(path, fileSetName); });
}

template <typename Maker>
std::shared_ptr<DicomDirectory> Directories::Make(const std::filesystem::path& folder, Maker maker) {
    const HostString path = ToHostText(folder / kDicomdirName);
    std::shared_ptr<DicomDirectory> directory;
    try {
        directory = maker(path);
    } catch (const CommandError&) {
        // Told below: what could not be made was not found damaged.
    }
    if (directory == nullptr || !directory->IsValid()) {
        throw CommandError(ToPrintable(path) + ": cannot be written");
    }
    return directory;
}

std::string FindLoss(const DicomDirectory& directory) {
    if (!directory.HasLostRecords()) return {};
    return ToPrintable(directory.GetFullPath()) +
           ": damaged, records are missing; vantor create --force makes it anew";
}

void RequireWhole(const DicomDirectory& directory) {
    if (const std::string loss = FindLoss(directory); !loss.empty()) throw CommandError(loss);
}

bool HasDicomdir(const DicomDirectory& directory) { return !directory.IsFolder() || directory.HasDICOMDIR(); }

void RequireNoDicomdir(const std::filesystem::path& folder, const char* advice) {
    const std::filesystem::path dicomdir = FindDicomdir(folder);
    if (!dicomdir.empty())
        throw CommandError(ToPrintable(ToHostText(dicomdir)) + " is there already; " + advice);
}

}  // namespace VantorCli
