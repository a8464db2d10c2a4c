#include "cli/DirsCommand.h"

#include <cstdint>
#include <set>

#include "cli/Columns.h"
#include "cli/Console.h"
#include "cli/DamageFinding.h"
#include "cli/Directories.h"
#include "cli/Json.h"
#include "cli/Text.h"
#include "host/DamagedDirectory.h"
#include "platform/FileException.h"

namespace VantorCli {

namespace {

// What a directory is like, asked for once: some of it looks at every file.
struct DirectoryFacts {
    explicit DirectoryFacts(const DicomDirectory& directory);

    HostString fDisplayName;
    HostString fPath;
    bool fHasDicomdir = false;
    bool fIsWritable = false;
    bool fIsRemovable = false;
    uint64_t fUsedKilobytes = 0;
    uint64_t fAvailableKilobytes = 0;
    bool fIsRemembered = false;
};

bool CanWrite(const DicomDirectory& directory) {
    try {
        return directory.IsWritable();
    } catch (const Vantor::Platform::FileException&) {
        return false;
    }
}

DirectoryFacts::DirectoryFacts(const DicomDirectory& directory)
    : fDisplayName(Trimmed(directory.GetDisplayName())),
      fPath(directory.GetFullPath()),
      fHasDicomdir(HasDicomdir(directory)),
      fIsWritable(CanWrite(directory)),
      fIsRemovable(directory.IsRemovable()),
      fUsedKilobytes(static_cast<uint64_t>(directory.GetFileSpaceUsed())),
      fAvailableKilobytes(static_cast<uint64_t>(directory.GetAvailableSpace())),
      fIsRemembered(directory.IsMarkedToRemember()) {}

Json ToJson(const DirectoryFacts& facts) {
    Json object;
    object["displayName"] = ToUtf8(facts.fDisplayName);
    object["path"] = ToUtf8(facts.fPath);
    object["kind"] = KindOf(facts.fHasDicomdir);
    object["writable"] = facts.fIsWritable;
    object["removable"] = facts.fIsRemovable;
    object["spaceUsedKB"] = facts.fUsedKilobytes;
    object["spaceAvailableKB"] = facts.fAvailableKilobytes;
    object["remembered"] = facts.fIsRemembered;
    return object;
}

const char* YesOrNo(bool is) { return is ? "yes" : "no"; }

Columns ToColumns(const DirectoryFacts& facts) {
    Columns columns(facts.fDisplayName);
    columns.Add("Path", facts.fPath);
    columns.AddLine("Kind", facts.fHasDicomdir ? "DICOMDIR" : "folder");
    columns.AddLine("Writable", YesOrNo(facts.fIsWritable));
    columns.AddLine("Removable", YesOrNo(facts.fIsRemovable));
    columns.AddLine("Space used", ReadableKilobytes(facts.fUsedKilobytes));
    columns.AddLine("Space available", ReadableKilobytes(facts.fAvailableKilobytes));
    columns.AddLine("Remembered", YesOrNo(facts.fIsRemembered));
    return columns;
}

DirectoriesMgr::DirectoryList AllOf(DirectoriesMgr& manager) {
    DirectoriesMgr::DirectoryList all = manager.GetDirList();
    const DirectoriesMgr::DirectoryList folders = manager.GetFolderDirList();
    all.insert(all.end(), folders.begin(), folders.end());
    return all;
}

}  // namespace

CommandLine DirsCommand::AddTo(const CommandLine& program) {
    const CommandLine line =
        program.AddCommand("dirs", "List the directories that a workstation has at hand");
    line.AddFlag("--json", fIsJson, "One JSON object a line for each directory");
    line.SetFooter(
        "The DICOMDIRs in the roots of the drives, and the folders that are remembered.\n"
        "\n"
        "Example:\n"
        "  vantor dirs");
    return line;
}

ExitStatus DirsCommand::Run(Console& console) {
    // A damaged disc in one drive does not hide what the others have. Each is found again and again.
    std::set<std::string> damaged;
    VantorHost::DamagedDirectory::SetHandler(
        [&damaged](const HostString& message) { damaged.insert(FindingOf(message)); });
    DirectoriesMgr manager(true, false, HostString());
    const DirectoriesMgr::DirectoryList all = AllOf(manager);
    VantorHost::DamagedDirectory::SetHandler({});
    // Who only looks changes nothing: a folder that is away at the moment stays remembered.
    manager.SetIsViewer(true);
    for (const auto& directory : all) {
        const DirectoryFacts facts(*directory);
        if (fIsJson) {
            console.Print(ToLine(ToJson(facts)));
            continue;
        }
        if (directory != all.front()) console.Print("");
        ToColumns(facts).Print(console);
    }
    if (all.empty() && !fIsJson) console.Print("no directories");
    for (const std::string& finding : damaged) {
        console.Report(finding);
    }
    return damaged.empty() ? ExitStatus::kDone : ExitStatus::kFailed;
}

}  // namespace VantorCli
