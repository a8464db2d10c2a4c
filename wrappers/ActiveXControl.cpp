#include "wrappers/ActiveXControl.h"

#include <memory>
#include <optional>
#include <string>

#include "platform/CodePage.h"
#include "platform/DynamicLibrary.h"

namespace VantorWrappers {

namespace {

using Vantor::Platform::DynamicLibrary;

constexpr char kRegisterOperation[] = "DllRegisterServer";
constexpr char kUnregisterOperation[] = "DllUnregisterServer";

std::unique_ptr<DynamicLibrary> Load(const HostString& path) {
    return DynamicLibrary::Load(Vantor::Platform::FromHostText(path));
}

bool CallExported(const HostString& path, const std::string& operation) {
    const std::unique_ptr<DynamicLibrary> library = Load(path);
    if (library == nullptr) return false;
    const std::optional<int32_t> result = library->Call(operation);
    return result && *result >= 0;
}

}  // namespace

bool ActiveXControl::Register(const HostString& path) { return CallExported(path, kRegisterOperation); }

bool ActiveXControl::Unregister(const HostString& path) { return CallExported(path, kUnregisterOperation); }

bool ActiveXControl::Cache(const HostString& path) { return Load(path) != nullptr; }

}  // namespace VantorWrappers
