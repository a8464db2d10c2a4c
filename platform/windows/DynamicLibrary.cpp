#include "platform/DynamicLibrary.h"

#include <windows.h>

#include "platform/windows/QuietErrors.h"

namespace Vantor::Platform {

namespace {

class LoadedLibrary final : public DynamicLibrary {
  public:
    explicit LoadedLibrary(HMODULE library) : fLibrary(library) {}
    ~LoadedLibrary() override { FreeLibrary(fLibrary); }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    std::optional<int32_t> Call(const std::string& name) const override {
        using Operation = HRESULT(STDAPICALLTYPE*)();
        // By way of void*: the system gives all operations one type of its own.
        const auto operation =
            reinterpret_cast<Operation>(reinterpret_cast<void*>(GetProcAddress(fLibrary, name.c_str())));
        if (operation == nullptr) return std::nullopt;
        return operation();
    }

  private:
    HMODULE fLibrary;
};

// The place of what the library needs can only be that of a library whose place is known.
bool IsFullPath(const std::string& path) {
    constexpr size_t kBehindLetter = 1;
    return path.find(':') == kBehindLetter || path.starts_with(R"(\\)");
}

}  // namespace

std::unique_ptr<DynamicLibrary> DynamicLibrary::Load(const std::string& path) {
    const QuietErrors quiet;  // one that is missing is an answer
    const DWORD flags = IsFullPath(path) ? LOAD_WITH_ALTERED_SEARCH_PATH : 0;
    const HMODULE library = LoadLibraryExA(path.c_str(), nullptr, flags);
    if (library == nullptr) return nullptr;
    return std::make_unique<LoadedLibrary>(library);
}

}  // namespace Vantor::Platform
