#pragma once

#include <cstdint>
#include <string_view>

namespace Vantor {

namespace Platform {
class StructuredStorage;
}

// Where a file is: on disk, or as a stream inside structured storage.
struct TFileSpec {
    static constexpr uint32_t kPathSize = 256;

    TFileSpec() = default;

    // Stores at most kPathSize − 1 characters of the path; see FitsPath.
    explicit TFileSpec(std::string_view path, Platform::StructuredStorage* storage = nullptr);

    // True when the path is short enough to be stored whole.
    static bool FitsPath(std::string_view path) { return path.size() < kPathSize; }

    uint32_t fWord = 0;                               // carried along for the directory, not looked at
    Platform::StructuredStorage* fStorage = nullptr;  // not owned; null for an ordinary disk file
    char fPath[kPathSize] = {};                       // NUL-terminated; the stream's name inside a storage
};

}  // namespace Vantor
