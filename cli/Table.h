#pragma once

#include <string>
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
    void AddRow(std::vector<std::string> cells);

    bool IsEmpty() const { return fRows.empty(); }
    std::vector<std::string> ToLines() const;
    void Print(Console& console) const;

  private:
    std::vector<size_t> WidthsOfColumns() const;

    size_t fIndent;
    std::vector<Align> fColumns;
    std::vector<std::vector<std::string>> fRows;
};

}  // namespace VantorCli
