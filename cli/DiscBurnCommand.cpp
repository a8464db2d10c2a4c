#include "cli/DiscBurnCommand.h"

#include <algorithm>
#include <cstdint>

#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Progress.h"
#include "cli/StagingArea.h"

namespace VantorCli {

namespace {

using VantorWrappers::WritableCdDvd;

constexpr uint64_t kAll = 100;  // percent

// A disc without images is one that is lost; and so is one whose DICOMDIR is damaged.
void RequireSomethingStaged(VantorWrappers::DirectoriesMgr& manager, const HostString& area) {
    if (manager.GetWritableCd()->CDFolderIsEmpty() || OpenStagingArea(manager)->GetSeriesList().empty()) {
        throw CommandError(ToPrintable(area) + ": nothing is staged; vantor disc stage does that");
    }
}

bool Burn(WritableCdDvd& writer, Console& console) {
    Progress progress(console, kAll, "");
    const auto subscription = writer.eBurnProgress.Subscribe(
        [&progress](int32_t percent) { progress.SetDone(static_cast<uint64_t>(std::max(percent, 0))); });
    const bool isBurned = writer.BurnCD(nullptr);
    writer.eBurnProgress.Unsubscribe(subscription);
    return isBurned;
}

}  // namespace

CommandLine DiscBurnCommand::AddTo(const CommandLine& disc) {
    const CommandLine line = disc.AddCommand("burn", "Write what is staged to a disc");
    line.SetFooter(
        "All that is in the staging area comes on the disc, and stays there. The File-set ID of the "
        "DICOMDIR\n"
        "becomes the name of the disc. Windows asks for a name, and for the disc, itself.\n"
        "\n"
        "Example:\n"
        "  vantor disc burn\n"
        "  VANTOR_RECORDER=/tmp/exam.iso vantor disc burn");
    return line;
}

ExitStatus DiscBurnCommand::Run(Console& console) {
    const auto manager = MakeDiscManager();
    WritableCdDvd& writer = *manager->GetWritableCd();
    const HostString area = RequireStagingArea(writer);
    RequireSomethingStaged(*manager, area);
    const std::string drive = ToPrintable(writer.GetWriteCDDrive());
    if (!Burn(writer, console)) {
        throw CommandError(drive + ": the disc cannot be burned; --trace error shows what the system says");
    }
    console.Print("burned " + ToPrintable(area) + " on " + drive);
    return ExitStatus::kDone;
}

}  // namespace VantorCli
