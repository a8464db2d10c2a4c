#include "cli/StagingArea.h"

#include "cli/CommandError.h"
#include "cli/DamageFinding.h"
#include "cli/Directories.h"
#include "cli/Paths.h"
#include "host/DamagedDirectory.h"

namespace VantorCli {

using VantorHost::DamagedDirectory;
using VantorWrappers::WritableCdDvd;

namespace {

constexpr wchar_t kPlayerFolder[] = L"Viewer";

void RequireReadable(const HostString& dicomdir) {
    DirectoriesMgr(true, true, HostString()).OpenDirectory(dicomdir);
}

}  // namespace

HostString RequireStagingArea(const WritableCdDvd& writer) {
    HostString area = writer.GetWriteFolderPath();
    if (area.empty()) {
        throw CommandError("discs cannot be burned here; vantor disc --help tells what that needs");
    }
    return area;
}

bool HasPlayer(const HostString& area) {
    return !area.empty() && IsFolder(FindEntry(ToPath(area), kPlayerFolder));
}

// A damaged disc in one of the drives is none of this; a damaged DICOMDIR in the staging area is found again
// when that is opened. What the workstation remembers stays as it is.
std::unique_ptr<DirectoriesMgr> MakeDiscManager() {
    DamagedDirectory::SetHandler([](const HostString& /*message*/) {});
    auto manager = std::make_unique<DirectoriesMgr>(true, false, HostString(), true);
    DamagedDirectory::SetHandler(ThrowFinding);
    manager->SetIsViewer(true);
    return manager;
}

std::shared_ptr<DicomDirectory> OpenStagingArea(DirectoriesMgr& manager) {
    const HostString area = RequireStagingArea(*manager.GetWritableCd());
    auto staging = manager.FindOrCreateFolderDirectory(area);
    if (staging == nullptr) throw CommandError(ToPrintable(area) + ": the staging area cannot be opened");
    // A folder takes a DICOMDIR that is damaged for an empty one, and what was staged would be lost for that.
    if (HasDicomdir(*staging) && staging->GetSeriesList().empty()) RequireReadable(staging->GetFullPath());
    RequireWhole(*staging);
    return staging;
}

}  // namespace VantorCli
