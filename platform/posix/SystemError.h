#pragma once

#include <cerrno>
#include <string>

#include "platform/FileException.h"

namespace Vantor::Platform {

// What an errno value means for a file operation.
FileException::Cause CauseOfError(int error);

// Throws the FileException for an errno value; `path` as the caller of the library gave it.
[[noreturn]] void ThrowFileError(int error, const std::string& path);

// Runs a system call again as long as a signal interrupts it, and gives its result.
template <typename Call>
auto RetryInterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

}  // namespace Vantor::Platform
