#pragma once

#include "cli/DeviceBitmap.h"
#include "wrappers/ImageDescription.h"

namespace VantorCli {

// The colours of an image whose values are places in palettes.
class PaletteColors {
  public:
    using Palettes =
        std::array<VantorWrappers::ImageDescription::Palette, VantorWrappers::ImageDescription::kPalettes>;

    // The palettes must outlive this object.
    explicit PaletteColors(const Palettes& palettes) : fPalettes(palettes) {}

    // False when a palette has no entries: there are no colours then.
    bool AreThere() const;

    // Values before the first that is mapped have its colour, and those behind the last one that one's.
    Bgr ColorOf(int32_t value) const;

  private:
    const Palettes& fPalettes;
};

}  // namespace VantorCli
