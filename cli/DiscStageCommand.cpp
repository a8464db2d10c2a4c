#include "cli/DiscStageCommand.h"

#include <filesystem>
#include <system_error>

#include "cli/CommandError.h"
#include "cli/Directories.h"
#include "cli/FileSetName.h"
#include "cli/Paths.h"
#include "cli/StagingArea.h"

namespace VantorCli {

namespace {

std::filesystem::path FolderOf(const DicomDirectory& source) {
    const std::filesystem::path root = ToPath(source.GetRootPath());
    return IsFolder(root) ? root : root.parent_path();
}

// The File-set ID of a disc with what comes from there.
HostString NameAfter(const DicomDirectory& source) {
    const HostString name = Trimmed(source.GetDirName().value_or(HostString()));
    return ProblemOfFileSetName(ToUtf8(name)).empty() ? name : FileSetNameOf(FolderOf(source));
}

void RequireOtherFolder(const DicomDirectory& source, const HostString& area) {
    std::error_code ignored;
    if (std::filesystem::equivalent(ToPath(source.GetRootPath()), ToPath(area), ignored)) {
        throw CommandError(ToPrintable(area) + ": this is the staging area itself");
    }
}

std::shared_ptr<DicomDirectory> OpenOrMakeStaging(DirectoriesMgr& manager, const HostString& area,
                                                  const HostString& name) {
    auto staging = OpenStagingArea(manager);
    if (HasDicomdir(*staging)) return staging;
    staging = manager.CreateOrReplaceDirectory(area, name, false);
    if (staging == nullptr || !staging->GetError().IsSuccess()) {
        throw CommandError(ToPrintable(area) + ": a DICOMDIR cannot be written there");
    }
    return staging;
}

}  // namespace

CommandLine DiscStageCommand::AddTo(const CommandLine& disc) {
    const CommandLine line = disc.AddCommand("stage", "Copy series into the staging area");
    line.AddArgument("PATH", fPath, "A DICOMDIR, a folder, or a DICOM file");
    fCopying.AddOptions(line);
    line.SetFooter(
        "They join what is staged already; a series that is there is not copied again. The first ones give\n"
        "the disc its name: the File-set ID of their DICOMDIR, or one after their folder.\n"
        "\n"
        "Example:\n"
        "  vantor disc stage EXAM --all\n"
        "  vantor disc stage EXAM --series 1.2.3.4 1.2.3.5");
    return line;
}

ExitStatus DiscStageCommand::Run(Console& console) {
    Directories directories(MakeDiscManager());
    DirectoriesMgr& manager = directories.GetManager();
    const HostString area = RequireStagingArea(*manager.GetWritableCd());
    const auto source = directories.Open(fPath);
    RequireOtherFolder(*source, area);
    const auto series = fCopying.Choose(*source, console);
    if (!series) return ExitStatus::kFailed;
    return fCopying.CopyInto(*OpenOrMakeStaging(manager, area, NameAfter(*source)), *series, console);
}

}  // namespace VantorCli
