#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace Vantor::Platform {

using RegistryValue = std::variant<std::wstring, int64_t>;
using RegistryValues = std::map<std::string, RegistryValue>;  // by their names in upper case

// The current user's settings: named values below keys, which are paths such as "Software\Vendor\Product".
// Names of keys and values are ASCII text, and found whatever their case.

// One key as it was when it was opened, to be read.
class RegistryKey {
  public:
    // None when there is no such key, or it cannot be read.
    static std::optional<RegistryKey> Open(const std::string& path);

    // None when there is no such value, or it is of the other kind.
    std::optional<std::wstring> ReadText(const std::string& name) const;
    std::optional<int64_t> ReadInteger(const std::string& name) const;

  private:
    explicit RegistryKey(RegistryValues values) : fValues(std::move(values)) {}

    RegistryValues fValues;
};

// Values to be set in a key, which is made if it is missing. Nothing is written before Commit.
class RegistryChange {
  public:
    explicit RegistryChange(const std::string& path);
    ~RegistryChange();
    RegistryChange(const RegistryChange&) = delete;
    RegistryChange& operator=(const RegistryChange&) = delete;

    // An integer is kept in 32 bits. A text ends in front of its first NUL.
    void SetText(const std::string& name, const std::wstring& text);
    void SetInteger(const std::string& name, uint32_t value);

    // Writes the values; those of the key that were not set stay. False when that fails.
    bool Commit();

  private:
    struct State;
    std::unique_ptr<State> fState;
};

// Puts the settings into another, empty place until destroyed; they are gone then. The user's own are neither
// read nor written. For tests; one at a time.
class ReplacedRegistry {
  public:
    // `folder` is an existing, empty folder, where the port may keep them; its path tells them from others.
    explicit ReplacedRegistry(const std::string& folder);
    ~ReplacedRegistry();
    ReplacedRegistry(const ReplacedRegistry&) = delete;
    ReplacedRegistry& operator=(const ReplacedRegistry&) = delete;
};

}  // namespace Vantor::Platform
