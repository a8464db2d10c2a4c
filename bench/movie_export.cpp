// Exports a movie of views that have their pictures ready: what is timed is the library, not a control.
//
// usage: movie_export OUT.avi VIEWS WIDTH HEIGHT FRAMES

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "platform/CodePage.h"
#include "platform/VideoCompression.h"
#include "tests/support/PictureView.h"
#include "wrappers/StressAviMaker.h"

namespace {

constexpr int kArguments = 6;
constexpr int32_t kCycle = 1000;

// Its picture is made once; that frames differ makes no difference to the export.
class ReadyView final : public VantorTest::PictureView {
  public:
    ReadyView(int number, int32_t width, int32_t height, int32_t frames)
        : PictureView(number, width, height, frames, kCycle),
          fBitmap(VantorTest::BitmapBuilder(width, height, 24).Build([number](int x, int y) {
              return static_cast<uint32_t>((number + 1) * (x + 1) * (y + 1)) & 0xFFFFFF;
          })) {
        fInstead = [this](int32_t) { return Vantor::Platform::PutBitmapOnClipboard(fBitmap); };
    }

  private:
    VantorTest::Bytes fBitmap;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != kArguments) {
        std::fprintf(stderr, "usage: movie_export OUT.avi VIEWS WIDTH HEIGHT FRAMES\n");
        return 2;
    }
    std::vector<std::unique_ptr<ReadyView>> views;
    VantorWrappers::StressAviMaker::ImageViews all;
    for (int number = 0; number < std::atoi(argv[2]); ++number) {
        views.push_back(
            std::make_unique<ReadyView>(number, std::atoi(argv[3]), std::atoi(argv[4]), std::atoi(argv[5])));
        all.push_back(views.back().get());
    }
    int32_t width = 0, height = 0;
    VantorWrappers::StressAviMaker maker;
    maker.MakeStressAviFile(Vantor::Platform::ToHostText(argv[1]), Vantor::Platform::kUncompressedHandler,
                            100, all, width, height);
    std::printf("%d frames of %d x %d\n", maker.GetFramesWritten(), width, height);
    return maker.GetFramesWritten() == maker.GetFramesWanted() ? 0 : 1;
}
