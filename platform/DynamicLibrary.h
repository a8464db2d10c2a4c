#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Vantor::Platform {

// A library that is loaded into the process for as long as this object is there.
class DynamicLibrary {
  public:
    // Loads the library at a path; the libraries that it needs are looked for beside it as well. Null when it
    // cannot be loaded.
    static std::unique_ptr<DynamicLibrary> Load(const std::string& path);

    virtual ~DynamicLibrary() = default;
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    // Calls an exported operation that takes nothing and answers with a result code of COM: negative for a
    // failure. None when the library exports no such thing.
    virtual std::optional<int32_t> Call(const std::string& name) const = 0;

  protected:
    DynamicLibrary() = default;
};

}  // namespace Vantor::Platform
