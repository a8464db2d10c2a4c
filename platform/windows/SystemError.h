#pragma once

#include <cstdint>
#include <string>

#include "platform/FileException.h"

namespace Vantor::Platform {

// What an error number of GetLastError means for a file operation.
FileException::Cause CauseOfError(uint32_t error);

// The same for an HRESULT of structured storage.
FileException::Cause CauseOfResult(int32_t result);

// Throw the FileException for a failure; `path` as the caller of the library gave it.
[[noreturn]] void ThrowFileError(uint32_t error, const std::string& path);
[[noreturn]] void ThrowLastError(const std::string& path);
[[noreturn]] void ThrowStorageError(int32_t result, const std::string& path);

}  // namespace Vantor::Platform
