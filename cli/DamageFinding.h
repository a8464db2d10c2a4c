#pragma once

#include <string>

#include "cli/Text.h"

namespace VantorCli {

// Which DICOMDIR is damaged, from the message that the library has for the user of a workstation: the advice
// at its end, whom to ask for help, is not for this program. UTF-8 that is fit to be printed.
std::string FindingOf(const HostString& message);

// A damaged DICOMDIR ends the command: throws a CommandError that tells which.
[[noreturn]] void ThrowFinding(const HostString& message);

}  // namespace VantorCli
