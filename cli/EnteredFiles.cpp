#include "cli/EnteredFiles.h"

#include <system_error>

#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Failure.h"
#include "cli/Paths.h"
#include "cli/Progress.h"
#include "wrappers/DicomFileInfo.h"

namespace VantorCli {

namespace {

namespace fs = std::filesystem;

bool IsBelow(const fs::path& path, const fs::path& folder) {
    std::error_code ignored;
    fs::path above = path.parent_path();
    while (!fs::equivalent(above, folder, ignored)) {
        if (above == above.parent_path()) return false;
        above = above.parent_path();
    }
    return true;
}

// What a person can do something about comes before what the directory says.
std::string WhyNotEntered(const fs::path& path, const fs::path& folder, const HostString& reason) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) return "this is a folder, not a file";
    if (!fs::exists(path, ignored)) return "no such file";
    if (!IsBelow(path, folder)) return "not in the folder of the DICOMDIR";
    const HostString text = ToHostText(path);
    const auto failure = FailureOf(text, [&] { VantorWrappers::DicomFileInfo(text).Read(); });
    return failure.value_or(ToPrintable(reason));
}

}  // namespace

EnteredFiles::EnteredFiles(VantorWrappers::DicomDirectory& directory,
                           const std::vector<std::filesystem::path>& files, Console& console)
    : fDicomdir(directory.GetFullPath()) {
    if (!directory.OpenForUpdating()) {
        throw CommandError(ToPrintable(fDicomdir) + ": cannot be opened for writing");
    }
    Progress progress(console, files.size(), "files");
    uint64_t done = 0;
    for (const std::filesystem::path& file : files) {
        const HostString path = ToHostText(file);
        HostString reason;
        if (directory.AddFile(path, reason)) {
            fEntered.push_back(path);
        } else {
            AddSkipped(path, WhyNotEntered(file, ToPath(directory.GetRootPath()), reason));
        }
        progress.SetDone(++done);
    }
    if (fEntered.empty() && !directory.IsUnwritten()) {
        directory.CloseFile();
        return;
    }
    directory.Save();
    if (!directory.GetError().IsSuccess()) {
        throw CommandError(ToPrintable(fDicomdir) + ": " + ReasonOf(directory.GetError()));
    }
}

Json EnteredFiles::ToJson() const {
    Json skipped = Json::array();
    for (const Skipped& file : fSkipped) {
        Json object;
        object["path"] = ToUtf8(file.fPath);
        object["why"] = file.fReason;
        skipped.push_back(std::move(object));
    }
    Json object;
    object["dicomdir"] = ToUtf8(fDicomdir);
    object["entered"] = fEntered.size();
    object["skipped"] = std::move(skipped);
    return object;
}

std::string EnteredFiles::ToText() const {
    std::string text = ToPrintable(fDicomdir) + ": " + Counted(fEntered.size(), "file", "files") + " entered";
    if (!fSkipped.empty()) text += ", " + Grouped(fSkipped.size()) + " skipped";
    return text;
}

}  // namespace VantorCli
