#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Registry.h"

namespace Vantor::Platform {

// One value to be set, its name as spelled.
struct RegistrySetting {
    std::string fName;
    RegistryValue fValue;  // an integer fits 32 bits
};

// Where the system keeps the settings, which the port gives. None when there is no such key.
std::optional<RegistryValues> ReadRegistryKey(const std::string& path);

// Makes the key if it is missing and sets the values in their order. False when that fails.
bool WriteRegistryKey(const std::string& path, const std::vector<RegistrySetting>& settings);

}  // namespace Vantor::Platform
