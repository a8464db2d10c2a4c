// For a program that is built where there is no libjpeg.

#include "cli/JpegCodec.h"

namespace VantorCli {

bool JpegCodec::IsThere() { return false; }

bool JpegCodec::Decode(std::span<const uint8_t> /*frame*/, int32_t /*width*/, int32_t /*height*/,
                       int32_t /*colors*/, bool /*isRgb*/, std::vector<uint8_t>& /*samples*/) {
    return false;
}

bool JpegCodec::Encode(const uint8_t* /*pixels*/, int32_t /*width*/, int32_t /*height*/, int32_t /*quality*/,
                       std::vector<uint8_t>& /*compressed*/) {
    return false;
}

}  // namespace VantorCli
