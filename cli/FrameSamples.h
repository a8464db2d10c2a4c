#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "wrappers/ImageDescription.h"

namespace VantorCli {

// The samples of one frame as they are drawn: not compressed, one or two bytes each, in the machine's byte
// order, and as many as the picture needs.
struct FrameSamples {
    template <typename Sample>
    Sample At(size_t index) const {
        Sample sample;
        std::memcpy(&sample, fBytes.data() + index * sizeof(Sample), sizeof(Sample));
        return sample;
    }

    std::span<const uint8_t> fBytes;
    size_t fSampleSize = 1;
    VantorWrappers::ImageDescription::Photometric fPhotometric =
        VantorWrappers::ImageDescription::Photometric::kOther;
    bool fIsPlanar = false;
};

}  // namespace VantorCli
