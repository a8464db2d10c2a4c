#pragma once

#include <algorithm>
#include <cstdio>
#include <string>

#include "platform/CodePage.h"

namespace Vantor::Platform {

// Writes a message as one line to standard error, for where there is no box to show it in.
inline void WriteMessageLine(const std::wstring& title, const std::wstring& text) {
    std::string line = FromHostText(title + L": " + text);
    std::replace_if(
        line.begin(), line.end(), [](char letter) { return letter == '\r' || letter == '\n'; }, ' ');
    std::fputs((line + "\n").c_str(), stderr);
}

}  // namespace Vantor::Platform
