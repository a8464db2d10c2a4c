#pragma once

#include <string>
#include <utility>
#include <vector>

namespace VantorCli {

class Console;

// Rows of cells, which are printed in columns. A column without any text takes no room.
class Table {
  public:
    enum class Align { kLeft, kRight };

    // A column for each alignment, behind so many blanks.
    Table(size_t indent, std::vector<Align> columns) : fIndent(indent), fColumns(std::move(columns)) {}

    // A cell for each column, of UTF-8 that is fit to be printed.
    template <typename... Cells>
    void AddRow(Cells&&... cells) {
        (fCells.emplace_back(std::forward<Cells>(cells)), ...);
    }

    // The rows as lines; and all of them in one text, with an end of line behind each.
    std::vector<std::string> ToLines() const;
    std::string ToText() const;

    void Print(Console& console) const;

  private:
    size_t CountRows() const { return fCells.size() / fColumns.size(); }
    std::vector<size_t> WidthsOfColumns() const;
    void AppendLine(size_t row, const std::vector<size_t>& widths, std::string& text) const;

    size_t fIndent;
    std::vector<Align> fColumns;
    std::vector<std::string> fCells;  // row by row
};

}  // namespace VantorCli
