#include "cli/PaletteColors.h"

#include <algorithm>

namespace VantorCli {

namespace {

using Palette = VantorWrappers::ImageDescription::Palette;

constexpr int32_t kBitsOfByte = 8;
constexpr int32_t kBitsOfWord = 16;

// The largest entry of all palettes that tell as many bits: of a picture without much blue, the blue ones are
// as wide as the others.
int32_t LargestEntry(const PaletteColors::Palettes& palettes, int32_t bits) {
    int32_t largest = 0;
    for (const Palette& palette : palettes) {
        if (palette.fBits != bits) continue;
        for (const uint16_t entry : palette.fEntries) largest = std::max<int32_t>(largest, entry);
    }
    return largest;
}

// Entries are of 8 or 16 bits, or by some writers of those between. But what a palette tells and what is in
// it differ: writers that mean 255 by white say 16 bits, and others that mean 65,535 say 8 or 12.
int32_t BitsOfEntries(int32_t told, int32_t largest) {
    if (largest <= UINT8_MAX) return kBitsOfByte;
    const bool isBetween = told > kBitsOfByte && told < kBitsOfWord;
    return isBetween && largest < 1 << told ? told : kBitsOfWord;
}

}  // namespace

PaletteColors::PaletteColors(const Palettes& palettes) : fPalettes(palettes), fShifts{} {
    for (size_t color = 0; color < palettes.size(); ++color) {
        const int32_t told = palettes[color].fBits;
        fShifts[color] = BitsOfEntries(told, LargestEntry(palettes, told)) - kBitsOfByte;
    }
}

bool PaletteColors::AreThere() const {
    return std::none_of(fPalettes.begin(), fPalettes.end(),
                        [](const Palette& palette) { return palette.fEntries.empty(); });
}

Bgr PaletteColors::ColorOf(int32_t value) const {
    return {LevelAt(2, value), LevelAt(1, value), LevelAt(0, value)};
}

uint8_t PaletteColors::LevelAt(size_t color, int32_t value) const {
    const Palette& palette = fPalettes[color];
    const int64_t last = static_cast<int64_t>(palette.fEntries.size()) - 1;
    const int64_t place = std::clamp<int64_t>(int64_t{value} - palette.fFirstValue, 0, last);
    return static_cast<uint8_t>(palette.fEntries[static_cast<size_t>(place)] >> fShifts[color]);
}

}  // namespace VantorCli
