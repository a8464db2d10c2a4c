#include "media/TMovieLayout.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace Vantor {

namespace {

struct Grid {
    int32_t fColumns;
    int32_t fRows;
};

// By the number of views.
constexpr Grid kGrids[] = {{0, 0}, {1, 1}, {2, 1}, {2, 2}, {2, 2}, {3, 2}, {3, 2}};
static_assert(std::size(kGrids) == TMovieLayout::kMostViews + 1);

}  // namespace

TMovieLayout::TMovieLayout(size_t views, int32_t cellWidth, int32_t cellHeight)
    : fCellWidth(std::max(cellWidth, 0)), fCellHeight(std::max(cellHeight, 0)) {
    if (views > kMostViews) return;
    fColumns = kGrids[views].fColumns;
    fRows = kGrids[views].fRows;
}

int32_t TMovieLayout::GetWidth() const { return IsCountable() ? fColumns * fCellWidth : 0; }

int32_t TMovieLayout::GetHeight() const { return IsCountable() ? fRows * fCellHeight : 0; }

int64_t TMovieLayout::GetLeft(size_t view, int64_t pictureWidth) const {
    const auto column = static_cast<int64_t>(view) % fColumns;
    return column * fCellWidth + (fCellWidth - pictureWidth) / 2;
}

int64_t TMovieLayout::GetTop(size_t view, int64_t pictureHeight) const {
    const auto row = static_cast<int64_t>(view) / fColumns;
    return row * fCellHeight + (fCellHeight - pictureHeight) / 2;
}

// The size of a frame in bytes has to fit the headers of a movie.
bool TMovieLayout::IsCountable() const {
    constexpr int64_t kBytesOfPixel = 4;
    constexpr int64_t kMost = std::numeric_limits<int32_t>::max() / kBytesOfPixel;
    const int64_t width = int64_t{fColumns} * fCellWidth;
    const int64_t height = int64_t{fRows} * fCellHeight;
    return width <= kMost && height <= kMost && width * height <= kMost;
}

}  // namespace Vantor
