#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cli/Text.h"

namespace VantorCli {

// Breaks a text into lines of at most so many characters, fit to be printed, in UTF-8: at its own line ends,
// between words, and inside words that are longer than a line. Several empty lines become one.
void ForEachLine(const HostString& text, size_t width, const std::function<void(std::string_view)>& visit);

// The text when it is one line without breaking it, as it is printed then.
std::optional<std::string> ToSingleLine(const HostString& text, size_t width);

}  // namespace VantorCli
