#include "cli/PaletteColors.h"

#include <algorithm>

namespace VantorCli {

namespace {

using Palette = VantorWrappers::ImageDescription::Palette;

constexpr int32_t kBitsOfByte = 8;

// Entries of 16 bits are intensities up to 65,535. Writers that mean 255 by white and say 16 bits all the
// same have none that is larger.
uint8_t LevelAt(const Palette& palette, int32_t value) {
    const int64_t last = static_cast<int64_t>(palette.fEntries.size()) - 1;
    const int64_t place = std::clamp<int64_t>(int64_t{value} - palette.fFirstValue, 0, last);
    const uint16_t entry = palette.fEntries[static_cast<size_t>(place)];
    return static_cast<uint8_t>(palette.fBits > kBitsOfByte ? entry >> kBitsOfByte : entry);
}

}  // namespace

bool PaletteColors::AreThere() const {
    return std::none_of(fPalettes.begin(), fPalettes.end(),
                        [](const Palette& palette) { return palette.fEntries.empty(); });
}

Bgr PaletteColors::ColorOf(int32_t value) const {
    return {LevelAt(fPalettes[2], value), LevelAt(fPalettes[1], value), LevelAt(fPalettes[0], value)};
}

}  // namespace VantorCli
