#pragma once

#include <cmath>
#include <cstdint>

#include "wrappers/ImageDescription.h"

namespace VantorCli {

// Which values are black, which are white, and the shades between them.
class GrayWindow {
  public:
    // Black from the first value down, white above the second one.
    GrayWindow(double black, double white) : fBlack(black), fWhite(white) {}

    // The standard's linear function: half a value beside the centre, and as wide as the steps between so
    // many values.
    explicit GrayWindow(const VantorWrappers::ImageDescription::Window& window)
        : fBlack(window.fCenter - kHalf - (window.fWidth - 1) / 2), fWhite(fBlack + window.fWidth - 1) {}

    uint8_t LevelOf(double value) const {
        if (value <= fBlack) return 0;
        if (value > fWhite) return UINT8_MAX;
        const double part = (value - fBlack) / (fWhite - fBlack);
        return part < 1 ? static_cast<uint8_t>(std::lround(part * UINT8_MAX)) : UINT8_MAX;
    }

  private:
    static constexpr double kHalf = 0.5;

    double fBlack;
    double fWhite;
};

}  // namespace VantorCli
