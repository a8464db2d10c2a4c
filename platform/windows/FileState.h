#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "platform/FileMark.h"
#include "platform/windows/Handle.h"

namespace Vantor::Platform {

// A file or folder at a path, whoever has it open and how, to ask what it is; a link is followed. Not open,
// with GetLastError, where there is none.
Handle OpenToLookAt(const std::string& path);

// What the system tells of it, in the terms of the library; none, with GetLastError, on failure.
std::optional<FileMark> GetMarkOf(const Handle& handle);
std::optional<FileMark> GetMarkAt(const std::string& path);

}  // namespace Vantor::Platform
