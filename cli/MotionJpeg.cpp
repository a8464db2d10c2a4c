#include "cli/MotionJpeg.h"

#include "cli/CharacterCode.h"
#include "cli/JpegCodec.h"

namespace VantorCli {

void MotionJpeg::Register() {
    if (JpegCodec::IsThere()) VantorHost::VideoCompressors::Register(std::make_shared<MotionJpeg>());
}

uint32_t MotionJpeg::GetHandler() const { return ToCharacterCode("MJPG"); }

bool MotionJpeg::Compress(const uint8_t* pixels, int32_t width, int32_t height, int32_t quality,
                          std::vector<uint8_t>& compressed) {
    constexpr int32_t kPartsOfPercent = 100;
    return JpegCodec::Encode(pixels, width, height, quality / kPartsOfPercent, compressed);
}

}  // namespace VantorCli
