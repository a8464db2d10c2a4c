#pragma once

#include <functional>
#include <optional>
#include <string>

#include "wrappers/HostString.h"
#include "wrappers/LuminaError.h"

namespace VantorCli {

// Runs a piece of work on a file. When it fails, gives the reason as a text for a person, without the file's
// path, which the caller knows; none when it succeeds. OutputError is not caught.
std::optional<std::string> FailureOf(const VantorWrappers::HostString& path,
                                     const std::function<void()>& work);

// Why an operation on a directory failed, for a person.
const char* ReasonOf(const VantorWrappers::LuminaError& error);

// What scripts are told of how it ended: "success", or the error number's name.
const char* ResultName(const VantorWrappers::LuminaError& error);

}  // namespace VantorCli
