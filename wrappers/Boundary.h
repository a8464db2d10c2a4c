#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace VantorWrappers {

// Where the native classes end and the host begins: their exceptions do not pass, and their texts become wide
// ones.

// Runs an operation of the native classes and catches whatever it throws. None when it succeeded, else what
// failed, as 8-bit text for the trace.
std::optional<std::string> FailureOf(const std::function<void()>& operation);

// Lines of the directory trace.
void TraceError(std::string_view text);
void TraceWarning(std::string_view text);
void TraceInfo(std::string_view text);
void TraceVerbose(std::string_view text);

}  // namespace VantorWrappers
