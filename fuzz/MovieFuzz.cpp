// Views of any sizes, loops and pictures as a movie: its layout has to fit the headers of a movie, and a
// movie that is made has as many frames as it tells. The input chooses the views; the rest of it is the
// bitmap that they put on the clipboard.

#include <deque>
#include <limits>

#include "fuzz/FuzzInput.h"
#include "media/TStressAviMaker.h"
#include "platform/Clipboard.h"
#include "platform/VideoCompression.h"
#include "tests/support/AviReader.h"
#include "tests/support/PictureView.h"
#include "tests/support/TestFolder.h"

namespace {

using namespace Vantor;
using VantorFuzz::Require;
using VantorTest::PictureView;

constexpr int64_t kMostPixels = 100'000;  // of a movie that is painted here
constexpr int32_t kMostFrames = 8;

// Takes the first frames, and then no more.
class FirstFrames : public Platform::VideoFile {
  public:
    bool StartFrames(Platform::FrameCompressor) override { return true; }
    bool WriteFrame(std::vector<uint8_t>&) override { return ++fCount < kMostFrames; }
    int32_t Finish() override { return fCount; }

  private:
    int32_t fCount = 0;
};

// Small ones mostly; also such as no image has.
int32_t TakeSize(VantorFuzz::Choices& input) {
    constexpr uint8_t kLarge = 0xE0, kAny = 0xF0;
    const uint8_t choice = input.Byte();
    if (choice >= kAny) return static_cast<int32_t>(input.Number());
    return choice >= kLarge ? input.Word() : choice % 64;
}

void CheckLayout(const TMovieLayout& layout, size_t views) {
    constexpr int64_t kBytesOfPixel = 4;
    const int64_t width = layout.GetWidth(), height = layout.GetHeight();
    Require(width >= 0 && height >= 0);
    Require(width * height * kBytesOfPixel <= std::numeric_limits<int32_t>::max());
    if (layout.IsEmpty()) return;
    const int64_t cellWidth = width / layout.GetColumns(), cellHeight = height / layout.GetRows();
    for (size_t view = 0; view < views; ++view) {
        const int64_t left = layout.GetLeft(view, cellWidth), top = layout.GetTop(view, cellHeight);
        Require(left >= 0 && left + cellWidth <= width && top >= 0 && top + cellHeight <= height);
    }
}

void MakeMovie(TStressAviMaker& maker) {
    static const VantorTest::TestFolder folder;
    const std::string path = folder.PathOf("movie.avi");
    const int32_t frames = maker.MakeFile(path);
    Require(frames == maker.GetFramesWanted());
    const VantorTest::Bytes bytes = VantorTest::ReadWholeFile(path);
    const VantorTest::AviMovie movie = VantorTest::ParseAvi(bytes);
    Require(movie.fFault.empty() && movie.fFrames.size() == static_cast<size_t>(frames));
    Require(movie.fWidth == maker.GetLayout().GetWidth() && movie.fHeight == maker.GetLayout().GetHeight());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    VantorFuzz::Choices input(data, size);
    std::deque<PictureView> views;
    TStressAviMaker::Views pointers;
    const size_t count = input.Below(TMovieLayout::kMostViews + 2);
    for (size_t view = 0; view < count; ++view) {
        const int32_t width = TakeSize(input), height = TakeSize(input);
        const int32_t frames = TakeSize(input), cycle = TakeSize(input);
        views.emplace_back(static_cast<int>(view), width, height, frames, cycle);
        pointers.push_back(input.Byte() < 0xF0 ? &views.back() : nullptr);
    }
    const std::vector<uint8_t> bitmap = input.TakeRest();
    for (PictureView& view : views) {
        view.fInstead = [&](int32_t frame) {
            Require(frame >= 1);
            return Platform::PutBitmapOnClipboard(bitmap);
        };
    }
    TStressAviMaker maker(pointers, Platform::kUncompressedHandler, 100);
    const TMovieLayout& layout = maker.GetLayout();
    CheckLayout(layout, count);
    Require(maker.GetRate() >= 1);
    maker.DescribeStream();
    const int64_t pixels = int64_t{layout.GetWidth()} * layout.GetHeight();
    if (layout.IsEmpty() || pixels > kMostPixels || maker.GetFramesWanted() == 0) return 0;
    if (maker.GetFramesWanted() <= kMostFrames) return MakeMovie(maker), 0;
    TMovieFrame picture(layout.GetWidth(), layout.GetHeight());
    FirstFrames file;
    maker.WriteFrames(file, picture);
    return 0;
}
