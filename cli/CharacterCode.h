#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace VantorCli {

// Compressors have names of four characters, as a number with the first character in the lowest byte. Shorter
// names end in blanks.
inline constexpr size_t kCodeLength = 4;
inline constexpr size_t kBitsOfCharacter = 8;

inline uint32_t ToCharacterCode(std::string_view name) {
    uint32_t code = 0;
    for (size_t i = kCodeLength; i > 0; --i) {
        code = code << kBitsOfCharacter | static_cast<uint8_t>(i <= name.size() ? name[i - 1] : ' ');
    }
    return code;
}

inline std::string ToCodeName(uint32_t code) {
    std::string name;
    for (size_t i = 0; i < kCodeLength; ++i) {
        name += static_cast<char>(code >> (kBitsOfCharacter * i) & UINT8_MAX);
    }
    return name;
}

}  // namespace VantorCli
