#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/WindowHandle.h"

namespace Vantor::Platform {

// The video compressors that the system has: all of them for every program.

// Four characters as a number, the first in the lowest byte.
constexpr uint32_t FourCharacterCode(char first, char second, char third, char fourth) {
    constexpr int kBitsOfByte = 8;
    const char characters[] = {first, second, third, fourth};
    uint32_t code = 0;
    for (int index = 0; index < 4; ++index) {
        code |= uint32_t{static_cast<uint8_t>(characters[index])} << (index * kBitsOfByte);
    }
    return code;
}

// The handler of a movie whose frames are not compressed.
inline constexpr uint32_t kUncompressedHandler = FourCharacterCode('D', 'I', 'B', ' ');

// Qualities go from 0 to this.
inline constexpr int32_t kBestQuality = 10000;

struct SystemCompressor {
    uint32_t fHandler = 0;  // its four-character code
    std::wstring fDescription;
};

// Those that are installed, in the system's order; none when the system has no such thing as compressors, so
// that the library has to bring its own.
std::optional<std::vector<SystemCompressor>> ListSystemCompressors();

// How a compressor describes itself; "" when there is none with that handler, or it cannot be opened. None
// when the system has no compressors at all.
std::optional<std::wstring> DescribeSystemCompressor(uint32_t handler);

struct CompressionChoice {
    uint32_t fHandler = 0;
    int32_t fQuality = 0;  // 0 to kBestQuality
};

// Shows the system's dialog for choosing a compressor, which lists all of them, with a choice to begin with.
// None when the user does not choose, or there is no such dialog. `window` is
// the one that the dialog belongs to.
std::optional<CompressionChoice> ShowCompressorDialog(const std::wstring& title,
                                                      const CompressionChoice& first, WindowHandle window);

}  // namespace Vantor::Platform
