#pragma once

#include <cstddef>
#include <cstdint>

namespace Vantor {

// How the views of a movie lie in its frames: a grid of cells of one size.
class TMovieLayout {
  public:
    // More views have no layout.
    static constexpr size_t kMostViews = 6;

    // The grid for a number of views whose largest width and height are those of a cell: 1 x 1, 2 x 1, 2 x 2
    // for three and four, 3 x 2 for five and six. Empty for any other number.
    TMovieLayout(size_t views, int32_t cellWidth, int32_t cellHeight);

    int32_t GetColumns() const { return fColumns; }
    int32_t GetRows() const { return fRows; }

    // Of the whole frame, in pixels; 0 when a frame would have more pixels than can be counted.
    int32_t GetWidth() const;
    int32_t GetHeight() const;

    // True when there is nothing to show, or more than can be counted.
    bool IsEmpty() const { return GetWidth() <= 0 || GetHeight() <= 0; }

    // Where a picture begins that is in the middle of the cell of a view, which counts from 0 along the rows.
    // Outside the cell when the picture is larger.
    int64_t GetLeft(size_t view, int64_t pictureWidth) const;
    int64_t GetTop(size_t view, int64_t pictureHeight) const;

  private:
    bool IsCountable() const;

    int32_t fColumns = 0;
    int32_t fRows = 0;
    int32_t fCellWidth;
    int32_t fCellHeight;
};

}  // namespace Vantor
