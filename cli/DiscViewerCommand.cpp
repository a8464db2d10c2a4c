#include "cli/DiscViewerCommand.h"

#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Paths.h"
#include "cli/StagingArea.h"

namespace VantorCli {

namespace {

using VantorWrappers::WritableCdDvd;

constexpr wchar_t kPlayerSource[] = L"ViewerFiles";

// The two folders become one on the disc, which is the staged series'.
bool HasOwnDicomdir(const HostString& root) {
    return !FindDicomdir(FindEntry(ToPath(root), kPlayerSource)).empty();
}

}  // namespace

CommandLine DiscViewerCommand::AddTo(const CommandLine& disc) {
    const CommandLine line = disc.AddCommand("viewer", "Put a player into the staging area");
    line.AddArgument("ROOT", fRoot, "The folder that has the player");
    line.SetFooter(
        "All that is in the folder ViewerFiles in ROOT goes to the root of the disc: the player, which is "
        "the\n"
        "folder Viewer in there, and the files beside it that start and describe it.\n"
        "\n"
        "Example:\n"
        "  vantor disc viewer /opt/workstation");
    return line;
}

ExitStatus DiscViewerCommand::Run(Console& console) {
    const WritableCdDvd writer;
    const HostString area = RequireStagingArea(writer);
    const HostString root = ToHostText(ToAbsolutePath(fRoot));
    if (!writer.HasViewerFiles(root)) {
        throw CommandError(ToPrintable(root) +
                           ": no player is here; it would be the folder Viewer in ViewerFiles");
    }
    if (HasPlayer(area)) {
        throw CommandError(ToPrintable(area) + ": a player is there already; vantor disc clear removes it");
    }
    if (!writer.AddViewer(area, root)) {
        throw CommandError(ToPrintable(area) +
                           (HasOwnDicomdir(root)
                                ? ": the player has a DICOMDIR, in place of the one of what is staged"
                                : ": the player cannot be copied; one of its files cannot be read or would "
                                  "replace a staged image, or the volume is full or cannot be written"));
    }
    console.Print("player copied to " + ToPrintable(area));
    return ExitStatus::kDone;
}

}  // namespace VantorCli
