#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "host/VideoCompressors.h"

namespace VantorTest {

// A compressor that takes the first bytes of a frame, or does what a test says.
class TestCompressor : public VantorHost::VideoCompressor {
  public:
    static constexpr uint32_t kHandler = 0x54534554;  // "TEST"
    static constexpr wchar_t kDescription[] = L"Compressor of the tests";
    static constexpr size_t kKept = 13;

    uint32_t GetHandler() const override { return kHandler; }
    std::wstring GetDescription() const override { return kDescription; }

    bool Compress(const uint8_t* pixels, int32_t width, int32_t height, int32_t quality,
                  std::vector<uint8_t>& compressed) override {
        fWidth = width;
        fHeight = height;
        fQuality = quality;
        ++fCalls;
        if (fInstead) return fInstead(compressed);
        compressed.assign(pixels, pixels + kKept);
        return true;
    }

    std::function<bool(std::vector<uint8_t>& compressed)> fInstead;
    int32_t fWidth = 0;
    int32_t fHeight = 0;
    int32_t fQuality = 0;
    int fCalls = 0;
};

}  // namespace VantorTest
