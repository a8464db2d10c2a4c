#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/AxDicomImage.h"
#include "platform/Clipboard.h"
#include "tests/support/BitmapBuilder.h"

namespace VantorTest {

// An image view whose frames are pictures that tell views, frames and places in them apart.
class PictureView : public VantorHost::AxDicomImage {
  public:
    PictureView(int number, int32_t width, int32_t height, int32_t frames, int32_t cycleLength)
        : fNumber(number), fWidth(width), fHeight(height), fFrames(frames), fCycleLength(cycleLength) {}

    // Blue, green, red of a pixel of a frame, which counts from 1.
    static Bytes PixelOf(int number, int frame, int x, int y) {
        return {static_cast<uint8_t>(number * 40 + x), static_cast<uint8_t>(frame * 7 + y),
                static_cast<uint8_t>(x * 3 + y * 5 + 1)};
    }
    Bytes PixelAt(int frame, int x, int y) const { return PixelOf(fNumber, frame, x, y); }

    // What is done instead of putting the picture on the clipboard, from now on.
    std::function<bool(int32_t frame)> fInstead;

    std::vector<int32_t> fShown;  // the frames, in their order

    int32_t GetNumberOfFrames() const override { return fFrames; }
    int32_t GetImageWidth() const override { return fWidth; }
    int32_t GetImageHeight() const override { return fHeight; }
    int32_t GetCycleLength() const override { return fCycleLength; }
    void SetCurrentFrame(int32_t frame) override { fShown.push_back(frame); }

    bool BitmapToClipboard() override {
        const int32_t frame = fShown.back();
        if (fInstead) return fInstead(frame);
        return Vantor::Platform::PutBitmapOnClipboard(
            BitmapBuilder(fWidth, fHeight, 24).Build([&](int x, int y) {
                const Bytes pixel = PixelAt(frame, x, y);
                return uint32_t{pixel[2]} << 16 | uint32_t{pixel[1]} << 8 | pixel[0];
            }));
    }

    // A movie asks for none of these.
    std::wstring GetPathName() const override { return {}; }
    void SetSCPathName(const std::wstring&) override {}
    std::wstring GetInstanceUID() const override { return {}; }
    void SetInstanceUID(const std::wstring&) override {}
    std::wstring GetClassUID() const override { return {}; }
    void SetSeriesUID(const std::wstring&) override {}
    void SetStudyUID(const std::wstring&) override {}
    void SetPatientName(const std::wstring&) override {}
    void SetPatientID(const std::wstring&) override {}
    void SetStudyID(const std::wstring&) override {}
    void SetStudyName(const std::wstring&) override {}
    void SetAccessionNumber(const std::wstring&) override {}
    void SetSeriesNumber(const std::wstring&) override {}
    void SetSeriesName(const std::wstring&) override {}
    void SetImageNumber(int32_t) override {}
    void DeIdentifyImage(int32_t) override {}
    int32_t SaveAs() override { return 0; }
    int32_t GetImagesToWrite() const override { return 0; }

  private:
    int fNumber;
    int32_t fWidth;
    int32_t fHeight;
    int32_t fFrames;
    int32_t fCycleLength;
};

}  // namespace VantorTest
