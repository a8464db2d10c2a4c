#pragma once

#include <string>

namespace VantorWrappers {

// Text as the host application has it.
using HostString = std::wstring;

// The text without the blanks, tabs and line ends around it.
HostString Trimmed(const HostString& text);

// The text with the letters of ASCII in upper case.
HostString UpperCased(const HostString& text);

}  // namespace VantorWrappers
