// Arbitrary bytes as a bitmap from the clipboard: drawn into a movie's frame at a place that they choose. The
// first four bytes are the size of the frame and the place.

#include "fuzz/FuzzInput.h"
#include "media/TDeviceBitmap.h"
#include "media/TMovieFrame.h"
#include "media/TMovieLayout.h"

namespace {

using namespace Vantor;

constexpr size_t kChoices = 4;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < kChoices) return 0;
    const auto bytes = VantorFuzz::ExactCopy(data + kChoices, size - kChoices);
    const auto bitmap = TDeviceBitmap::Read(bytes.data(), bytes.size());
    if (!bitmap) return 0;
    TMovieFrame frame(data[0] + 1, data[1] + 1);
    frame.Draw(*bitmap, static_cast<int8_t>(data[2]), static_cast<int8_t>(data[3]));

    const TMovieLayout layout(data[2] % (TMovieLayout::kMostViews + 1), data[0] + 1, data[1] + 1);
    if (layout.IsEmpty()) return 0;
    const size_t view = data[3] % TMovieLayout::kMostViews;
    frame.Draw(*bitmap, layout.GetLeft(view, bitmap->GetWidth()), layout.GetTop(view, bitmap->GetHeight()));
    return 0;
}
