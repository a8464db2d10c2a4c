#pragma once

#include <filesystem>
#include <string>

#include "cli/Text.h"

namespace VantorCli {

// Checks a File-set ID of the command line: gives what is wrong with it, or nothing.
std::string ProblemOfFileSetName(const std::string& text);

// A File-set ID after a folder's own name: in upper case, with _ for what it may not hold, cut to its length.
HostString FileSetNameOf(const std::filesystem::path& folder);

}  // namespace VantorCli
