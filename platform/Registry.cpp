#include "platform/Registry.h"

#include "platform/Ascii.h"
#include "platform/RegistryStore.h"

namespace Vantor::Platform {

namespace {

template <typename Kind>
std::optional<Kind> FindValue(const RegistryValues& values, const std::string& name) {
    const auto found = values.find(UpperCased(name));
    const Kind* const value = found == values.end() ? nullptr : std::get_if<Kind>(&found->second);
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

}  // namespace

std::optional<RegistryKey> RegistryKey::Open(const std::string& path) {
    std::optional<RegistryValues> values = ReadRegistryKey(path);
    return values ? std::optional(RegistryKey(std::move(*values))) : std::nullopt;
}

std::optional<std::wstring> RegistryKey::ReadText(const std::string& name) const {
    return FindValue<std::wstring>(fValues, name);
}

std::optional<int64_t> RegistryKey::ReadInteger(const std::string& name) const {
    return FindValue<int64_t>(fValues, name);
}

struct RegistryChange::State {
    std::string fPath;
    std::vector<RegistrySetting> fSettings;
};

RegistryChange::RegistryChange(const std::string& path) : fState(std::make_unique<State>()) {
    fState->fPath = path;
}

RegistryChange::~RegistryChange() = default;

void RegistryChange::SetText(const std::string& name, const std::wstring& text) {
    fState->fSettings.push_back({name, text.substr(0, text.find(L'\0'))});
}

void RegistryChange::SetInteger(const std::string& name, uint32_t value) {
    fState->fSettings.push_back({name, int64_t{value}});
}

bool RegistryChange::Commit() { return WriteRegistryKey(fState->fPath, fState->fSettings); }

}  // namespace Vantor::Platform
