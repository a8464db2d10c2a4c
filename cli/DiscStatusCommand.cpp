#include "cli/DiscStatusCommand.h"

#include "cli/Columns.h"
#include "cli/Console.h"
#include "cli/Json.h"
#include "cli/StagingArea.h"

namespace VantorCli {

namespace {

using VantorWrappers::WritableCdDvd;

struct DiscStatus {
    explicit DiscStatus(const WritableCdDvd& writer)
        : fCanBurn(writer.CanBurnCDs()),
          fDrive(writer.GetWriteCDDrive()),
          fFolder(writer.GetWriteFolderPath()),
          fIsEmpty(writer.CDFolderIsEmpty()),
          fHasPlayer(HasPlayer(fFolder)) {}

    bool fCanBurn;
    HostString fDrive;
    HostString fFolder;
    bool fIsEmpty;
    bool fHasPlayer;
};

Json ToJson(const DiscStatus& status) {
    Json object;
    object["canBurn"] = status.fCanBurn;
    object["drive"] = ToUtf8(status.fDrive);
    object["folder"] = ToUtf8(status.fFolder);
    object["empty"] = status.fIsEmpty;
    object["viewer"] = status.fHasPlayer;
    return object;
}

Columns ToColumns(const DiscStatus& status) {
    Columns columns(L"Discs");
    columns.AddLine("Can be burned",
                    status.fCanBurn ? "yes" : "no; vantor disc --help tells what that needs");
    columns.Add("Drive", status.fDrive);
    columns.Add("Staging area", status.fFolder);
    columns.AddLine("Staged", status.fIsEmpty ? "nothing" : "a DICOMDIR");
    columns.AddLine("Player", status.fHasPlayer ? "yes" : "no");
    return columns;
}

}  // namespace

CommandLine DiscStatusCommand::AddTo(const CommandLine& disc) {
    const CommandLine line =
        disc.AddCommand("status", "Show whether discs can be burned, and what is staged");
    line.AddFlag("--json", fIsJson, "One JSON object");
    line.SetFooter(
        "The drive and the staging area are those that the other commands use. Nothing is staged when there\n"
        "is no DICOMDIR in the staging area. vantor tree shows what one holds.\n"
        "\n"
        "Example:\n"
        "  vantor disc status");
    return line;
}

ExitStatus DiscStatusCommand::Run(Console& console) {
    const DiscStatus status{WritableCdDvd()};
    if (fIsJson) {
        console.Print(ToLine(ToJson(status)));
    } else {
        ToColumns(status).Print(console);
    }
    return ExitStatus::kDone;
}

}  // namespace VantorCli
