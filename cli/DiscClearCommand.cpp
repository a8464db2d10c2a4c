#include "cli/DiscClearCommand.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "cli/Console.h"
#include "cli/Paths.h"
#include "cli/StagingArea.h"

namespace VantorCli {

namespace {

namespace fs = std::filesystem;

using VantorWrappers::WritableCdDvd;

constexpr size_t kShownEntries = 20;

// The folder goes with what is in it; the new one has the same rights.
void RemoveContent(const WritableCdDvd& writer, const fs::path& folder) {
    std::error_code ignored;
    const fs::perms rights = fs::status(folder, ignored).permissions();
    writer.RecursiveDeleteFolder(ToHostText(folder));
    if (fs::create_directory(folder, ignored)) fs::permissions(folder, rights, ignored);
}

bool IsKept(const fs::directory_entry& entry) {
    std::error_code ignored;
    return !entry.is_symlink(ignored) && entry.is_directory(ignored) &&
           ToHostText(entry.path().filename()).starts_with(L'.');
}

// The first folder that is never removed among a path and what is below it; empty when there is none.
fs::path FindKept(const fs::path& path) {
    std::error_code error;
    if (IsKept(fs::directory_entry(path, error))) return path;
    fs::recursive_directory_iterator next(path, error);
    while (!error && next != fs::recursive_directory_iterator()) {
        if (IsKept(*next)) return next->path();
        next.increment(error);
    }
    return {};
}

std::string WhyLeft(const fs::path& path) {
    const fs::path kept = FindKept(path);
    if (kept.empty()) return ToPrintable(ToHostText(path)) + ": cannot be removed";
    return ToPrintable(ToHostText(kept)) + ": not removed, as folders whose names begin with a period";
}

void ReportLeft(const fs::path& folder, Console& console) {
    const std::vector<fs::path> left = ListEntries(folder);
    for (size_t i = 0; i < std::min(left.size(), kShownEntries); ++i) {
        console.Report(WhyLeft(left[i]));
    }
    if (left.size() > kShownEntries) console.Report("and " + Grouped(left.size() - kShownEntries) + " more");
    if (left.empty()) console.Report(ToPrintable(ToHostText(folder)) + ": the folder cannot be read or made");
}

}  // namespace

CommandLine DiscClearCommand::AddTo(const CommandLine& disc) {
    const CommandLine line = disc.AddCommand("clear", "Remove all that is staged");
    line.SetFooter(
        "The staging area is empty then: series, player, and whatever else was in there are gone. Links are\n"
        "removed, not what they lead to. Folders whose names begin with a period stay, and are told of.\n"
        "\n"
        "Example:\n"
        "  vantor disc clear");
    return line;
}

ExitStatus DiscClearCommand::Run(Console& console) {
    const WritableCdDvd writer;
    const HostString area = RequireStagingArea(writer);
    const fs::path folder = ToPath(area);
    std::error_code ignored;
    if (fs::is_empty(folder, ignored)) {
        console.Print(ToPrintable(area) + " is empty already");
        return ExitStatus::kDone;
    }
    RemoveContent(writer, folder);
    if (!fs::is_empty(folder, ignored)) {
        ReportLeft(folder, console);
        return ExitStatus::kFailed;
    }
    console.Print("cleared " + ToPrintable(area));
    return ExitStatus::kDone;
}

}  // namespace VantorCli
