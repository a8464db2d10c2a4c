#pragma once

#include <string>

namespace VantorWrappers {

// Text as the host application has it.
using HostString = std::wstring;

}  // namespace VantorWrappers
