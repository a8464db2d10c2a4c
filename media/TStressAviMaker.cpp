#include "media/TStressAviMaker.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <optional>

#include "host/VideoCompressors.h"
#include "platform/Clipboard.h"
#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/VideoCompression.h"

namespace Vantor {

namespace {

using VantorHost::AxDicomImage;

constexpr int32_t kBestQuality = 100;

int32_t LargestOf(const TStressAviMaker::Views& views, int32_t (AxDicomImage::*getter)() const) {
    int32_t largest = 0;
    for (const AxDicomImage* view : views) {
        if (view != nullptr) largest = std::max(largest, (view->*getter)());
    }
    return largest;
}

// Where the system has no compressors: the host's with that handler.
Platform::FrameCompressor FindHostsCompressor(const Platform::VideoStream& stream) {
    std::shared_ptr<VantorHost::VideoCompressor> compressor =
        VantorHost::VideoCompressors::Find(stream.fHandler);
    if (compressor == nullptr) return nullptr;
    return [compressor, stream](const uint8_t* pixels, std::vector<uint8_t>& compressed) {
        try {
            return compressor->Compress(pixels, stream.fWidth, stream.fHeight,
                                        static_cast<int32_t>(stream.fQuality), compressed);
        } catch (...) {
            return false;  // the frames before make a shorter movie
        }
    };
}

// False also when the control throws: the movie goes on without its picture.
bool PutOnClipboard(AxDicomImage& view, int32_t frame) {
    try {
        view.SetCurrentFrame(frame);
        return view.BitmapToClipboard();
    } catch (...) {
        return false;
    }
}

void RemoveQuietly(const std::string& path) {
    try {
        Platform::RemoveFile(path);
    } catch (const Platform::FileException&) {
        // There is no one to tell, and nothing else to be done about it.
    }
}

}  // namespace

TStressAviMaker::TStressAviMaker(const Views& views, uint32_t handler, int32_t quality)
    : fViews(views),
      fHandler(handler),
      fQuality(std::clamp(quality, 0, kBestQuality)),
      fCycleLength(LargestOf(views, &AxDicomImage::GetCycleLength)),
      fLayout(views.size(), LargestOf(views, &AxDicomImage::GetImageWidth),
              LargestOf(views, &AxDicomImage::GetImageHeight)) {
    for (const AxDicomImage* view : views) {
        fFrameCounts.push_back(view == nullptr ? 0 : std::max(view->GetNumberOfFrames(), 0));
        fFrameCount = std::max(fFrameCount, fFrameCounts.back());
    }
}

// A movie of stills takes no time, and the headers have no rate below 1.
int32_t TStressAviMaker::GetRate() const {
    constexpr int64_t kMillisecondsOfSecond = 1000;
    constexpr int64_t kSlowest = 1;
    if (fCycleLength <= 0) return kSlowest;
    const int64_t rate = fFrameCount * kMillisecondsOfSecond / fCycleLength;
    return static_cast<int32_t>(std::clamp<int64_t>(rate, kSlowest, std::numeric_limits<int32_t>::max()));
}

Platform::VideoStream TStressAviMaker::DescribeStream() const {
    constexpr uint32_t kBytesOfPixel = 3;
    Platform::VideoStream stream;
    stream.fHandler = fHandler;
    stream.fRate = static_cast<uint32_t>(GetRate());
    stream.fLength = static_cast<uint32_t>(fFrameCount);
    stream.fQuality = static_cast<uint32_t>(fQuality * (Platform::kBestQuality / kBestQuality));
    stream.fWidth = fLayout.GetWidth();
    stream.fHeight = fLayout.GetHeight();
    // Kept as programs have always found it here: without the bytes that fill up each row.
    stream.fImageSize =
        static_cast<uint32_t>(stream.fWidth) * static_cast<uint32_t>(stream.fHeight) * kBytesOfPixel;
    return stream;
}

int32_t TStressAviMaker::MakeFile(const std::string& path) {
    if (fLayout.IsEmpty() || fFrameCount <= 0) return 0;
    TMovieFrame picture(fLayout.GetWidth(), fLayout.GetHeight());
    const std::unique_ptr<Platform::VideoFile> file = Platform::VideoFile::Create(path, DescribeStream());
    if (HasFrames()) WriteFrames(*file, picture);
    const int32_t written = file->Finish();
    if (written < 0 || (written == 0 && HasFrames())) RemoveQuietly(path);
    return std::max(written, 0);
}

void TStressAviMaker::WriteFrames(Platform::VideoFile& file, TMovieFrame& picture) {
    bool isWriting = file.StartFrames(FindHostsCompressor(DescribeStream()));
    for (int32_t frame = 0; isWriting && frame < fFrameCount; ++frame) {
        Paint(frame, picture);
        isWriting = !IsCancelled() && file.WriteFrame(picture.GetPixels());
    }
}

void TStressAviMaker::Paint(int32_t frame, TMovieFrame& picture) {
    picture.FillBlack();
    for (size_t view = 0; view < fViews.size(); ++view) {
        if (fViews[view] == nullptr || !PutOnClipboard(*fViews[view], FrameOfView(view, frame))) continue;
        const auto draw = [&](const uint8_t* bytes, size_t size) { Draw(bytes, size, view, picture); };
        Platform::UseBitmapOnClipboard(std::ref(draw));
    }
}

// What is no bitmap that can be drawn leaves the cell black.
void TStressAviMaker::Draw(const uint8_t* bytes, size_t size, size_t view, TMovieFrame& picture) const {
    const std::optional<TDeviceBitmap> bitmap = TDeviceBitmap::Read(bytes, size);
    if (!bitmap) return;
    picture.Draw(*bitmap, fLayout.GetLeft(view, bitmap->GetWidth()),
                 fLayout.GetTop(view, bitmap->GetHeight()));
}

// Counted from 1: the frame of the view's loop that is as far in it as the movie's frame is in the movie.
int32_t TStressAviMaker::FrameOfView(size_t view, int32_t frame) const {
    return static_cast<int32_t>(int64_t{frame} * fFrameCounts[view] / fFrameCount) + 1;
}

}  // namespace Vantor
