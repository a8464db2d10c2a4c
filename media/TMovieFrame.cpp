#include "media/TMovieFrame.h"

#include <algorithm>

namespace Vantor {

namespace {

constexpr size_t kPixelSize = 3;
constexpr size_t kRowUnit = 4;

size_t RowSize(int32_t width) {
    return (static_cast<size_t>(width) * kPixelSize + kRowUnit - 1) / kRowUnit * kRowUnit;
}

}  // namespace

TMovieFrame::TMovieFrame(int32_t width, int32_t height)
    : fWidth(width),
      fHeight(height),
      fRowSize(RowSize(width)),
      fPixels(fRowSize * static_cast<size_t>(height)) {}

void TMovieFrame::FillBlack() { std::fill(fPixels.begin(), fPixels.end(), uint8_t{0}); }

void TMovieFrame::Draw(const TDeviceBitmap& bitmap, int64_t left, int64_t top) {
    const int64_t firstColumn = std::max<int64_t>(left, 0);
    const int64_t endColumn = std::min<int64_t>(left + bitmap.GetWidth(), fWidth);
    const int64_t firstRow = std::max<int64_t>(top, 0);
    const int64_t endRow = std::min<int64_t>(top + bitmap.GetHeight(), fHeight);
    if (firstColumn >= endColumn) return;
    for (int64_t row = firstRow; row < endRow; ++row) {
        const auto fromBottom = static_cast<size_t>(fHeight - 1 - row);
        uint8_t* const pixels =
            fPixels.data() + fromBottom * fRowSize + static_cast<size_t>(firstColumn) * kPixelSize;
        bitmap.CopyPixels(row - top, firstColumn - left, endColumn - firstColumn, pixels);
    }
}

}  // namespace Vantor
