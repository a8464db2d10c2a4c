#include "cli/Table.h"

#include <algorithm>
#include <utility>

#include "cli/Console.h"
#include "cli/Text.h"

namespace VantorCli {

namespace {

constexpr size_t kGap = 2;

}  // namespace

std::vector<size_t> Table::WidthsOfColumns() const {
    std::vector<size_t> widths(fColumns.size());
    for (size_t i = 0; i < fCells.size(); ++i) {
        size_t& width = widths[i % fColumns.size()];
        width = std::max(width, WidthOf(fCells[i]));
    }
    return widths;
}

// Without blanks at its end.
void Table::AppendLine(size_t row, const std::vector<size_t>& widths, std::string& text) const {
    size_t blanks = fIndent;
    for (size_t i = 0; i < fColumns.size(); ++i) {
        if (widths[i] == 0) continue;
        const std::string& cell = fCells[row * fColumns.size() + i];
        const size_t padding = widths[i] - WidthOf(cell);
        const bool isRight = fColumns[i] == Align::kRight;
        if (!cell.empty()) {
            text.append(blanks + (isRight ? padding : 0), ' ').append(cell);
            blanks = 0;
        }
        blanks += kGap + (isRight && !cell.empty() ? 0 : padding);
    }
}

std::vector<std::string> Table::ToLines() const {
    const std::vector<size_t> widths = WidthsOfColumns();
    std::vector<std::string> lines(CountRows());
    for (size_t row = 0; row < lines.size(); ++row) {
        AppendLine(row, widths, lines[row]);
    }
    return lines;
}

std::string Table::ToText() const {
    const std::vector<size_t> widths = WidthsOfColumns();
    std::string text;
    for (size_t row = 0; row < CountRows(); ++row) {
        AppendLine(row, widths, text);
        text += '\n';
    }
    return text;
}

void Table::Print(Console& console) const { console.PrintPart(ToText()); }

}  // namespace VantorCli
