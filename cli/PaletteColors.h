#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "cli/DeviceBitmap.h"
#include "wrappers/ImageDescription.h"

namespace VantorCli {

// The colours of an image whose values are places in palettes.
class PaletteColors {
  public:
    using Palettes =
        std::array<VantorWrappers::ImageDescription::Palette, VantorWrappers::ImageDescription::kPalettes>;

    // The palettes must outlive this object.
    explicit PaletteColors(const Palettes& palettes);

    // False when a palette has no entries: there are no colours then.
    bool AreThere() const;

    // Values before the first that is mapped have its colour, and those behind the last one that one's.
    Bgr ColorOf(int32_t value) const;

  private:
    uint8_t LevelAt(size_t color, int32_t value) const;

    const Palettes& fPalettes;
    std::array<int32_t, VantorWrappers::ImageDescription::kPalettes> fShifts;  // from entries to levels
};

}  // namespace VantorCli
