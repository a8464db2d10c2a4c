#include "platform/DynamicLibrary.h"

#include <dlfcn.h>

#include "platform/posix/PathLookup.h"

namespace Vantor::Platform {

namespace {

// Lazy binding would let an operation end the process that the library was not linked with.
constexpr int kMode = RTLD_NOW | RTLD_LOCAL;

class LoadedLibrary final : public DynamicLibrary {
  public:
    explicit LoadedLibrary(void* library) : fLibrary(library) {}
    ~LoadedLibrary() override { dlclose(fLibrary); }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    std::optional<int32_t> Call(const std::string& name) const override {
        using Operation = int32_t (*)();
        const auto operation = reinterpret_cast<Operation>(dlsym(fLibrary, name.c_str()));
        if (operation == nullptr) return std::nullopt;
        return operation();
    }

  private:
    void* fLibrary;
};

}  // namespace

std::unique_ptr<DynamicLibrary> DynamicLibrary::Load(const std::string& path) {
    // An empty path would stand for the program itself.
    if (path.empty()) return nullptr;
    // A path without a folder is searched for where the system keeps libraries.
    void* library = dlopen(path.c_str(), kMode);
    if (library == nullptr) library = dlopen(LookUpPath(path).fPath.c_str(), kMode);
    if (library == nullptr) return nullptr;
    return std::make_unique<LoadedLibrary>(library);
}

}  // namespace Vantor::Platform
