#include "cli/Table.h"

#include <algorithm>
#include <utility>

#include "cli/Console.h"
#include "cli/Text.h"

namespace VantorCli {

namespace {

constexpr size_t kGap = 2;

void RemoveBlanksAtEnd(std::string& line) { line.erase(line.find_last_not_of(' ') + 1); }

}  // namespace

void Table::AddRow(std::vector<std::string> cells) {
    cells.resize(fColumns.size());
    fRows.push_back(std::move(cells));
}

std::vector<size_t> Table::WidthsOfColumns() const {
    std::vector<size_t> widths(fColumns.size());
    for (const std::vector<std::string>& row : fRows) {
        for (size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], WidthOf(row[i]));
        }
    }
    return widths;
}

std::vector<std::string> Table::ToLines() const {
    const std::vector<size_t> widths = WidthsOfColumns();
    std::vector<std::string> lines;
    lines.reserve(fRows.size());
    for (const std::vector<std::string>& row : fRows) {
        std::string& line = lines.emplace_back(fIndent, ' ');
        for (size_t i = 0; i < row.size(); ++i) {
            if (widths[i] == 0) continue;
            line += fColumns[i] == Align::kRight ? PadLeft(row[i], widths[i]) : PadRight(row[i], widths[i]);
            line.append(kGap, ' ');
        }
        RemoveBlanksAtEnd(line);
    }
    return lines;
}

void Table::Print(Console& console) const {
    for (const std::string& line : ToLines()) {
        console.Print(line);
    }
}

}  // namespace VantorCli
