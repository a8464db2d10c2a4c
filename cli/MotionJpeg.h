#pragma once

#include "host/VideoCompressors.h"

namespace VantorCli {

// Motion JPEG: each frame is a whole JPEG file.
class MotionJpeg final : public VantorHost::VideoCompressor {
  public:
    // Offers it to the library's movies, if this program is built with JPEG.
    static void Register();

    uint32_t GetHandler() const override;
    std::wstring GetDescription() const override { return L"Motion JPEG"; }
    bool Compress(const uint8_t* pixels, int32_t width, int32_t height, int32_t quality,
                  std::vector<uint8_t>& compressed) override;
};

}  // namespace VantorCli
