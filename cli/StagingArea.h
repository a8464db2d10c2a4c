#pragma once

#include <memory>

#include "cli/Text.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/DirectoriesMgr.h"
#include "wrappers/WritableCdDvd.h"

namespace VantorCli {

// The folder that a writer burns. Ends the command when discs cannot be burned on this computer.
HostString RequireStagingArea(const VantorWrappers::WritableCdDvd& writer);

// True when there is a disc player in the staging area.
bool HasPlayer(const HostString& area);

// A workstation's manager, with a writer of discs, which keeps the staging area as one of its directories.
std::unique_ptr<VantorWrappers::DirectoriesMgr> MakeDiscManager();

// The directory of the staging area, which may have no DICOMDIR. Ends the command when that is damaged.
std::shared_ptr<VantorWrappers::DicomDirectory> OpenStagingArea(VantorWrappers::DirectoriesMgr& manager);

}  // namespace VantorCli
