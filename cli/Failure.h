#pragma once

#include <functional>
#include <optional>
#include <string>

#include "wrappers/HostString.h"

namespace VantorCli {

// Runs a piece of work on a file. When it fails, gives the reason as a text for a person, without the file's
// path, which the caller knows; none when it succeeds. OutputError is not caught.
std::optional<std::string> FailureOf(const VantorWrappers::HostString& path,
                                     const std::function<void()>& work);

}  // namespace VantorCli
