#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/RegistryStore.h"

namespace Vantor::Platform {

// Settings as a text that a person can read and write, for systems that keep none themselves:
//
//     [Software\Vendor\Product]
//     "StagingPath"="/data/staging \"new\""
//     "Trim"=dword:00000001
//
// A backslash stands in front of a quote, of itself, and of `n` and `r` for the ends of lines. Of values that
// stand there twice the last one counts. Lines of another kind mean nothing and stay as they are.
class RegistryText {
  public:
    explicit RegistryText(std::string_view text);

    // None when neither the key nor one below it is there.
    std::optional<RegistryValues> ReadKey(std::string_view path) const;

    // False, with nothing changed, for a path that no line can hold.
    bool AddKey(std::string_view path);

    // Sets a value of a key that is there.
    void Set(std::string_view path, const RegistrySetting& setting);

    std::string GetText() const;

  private:
    using Lines = std::vector<std::string>;

    // Where a value of a key is, or, when it has none of that name, where it belongs.
    struct Place {
        size_t fLine = 0;
        bool fIsThere = false;
    };

    Place FindPlace(const std::string& upperPath, const std::string& upperName) const;

    Lines fLines;
};

}  // namespace Vantor::Platform
