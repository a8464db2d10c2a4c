#include "cli/Columns.h"

#include <algorithm>

#include "cli/Console.h"

namespace VantorCli {

namespace {

constexpr size_t kGap = 2;

}  // namespace

void Columns::AddLine(const char* label, std::string utf8) {
    if (!utf8.empty()) fRows.emplace_back(label, std::move(utf8));
}

void Columns::Print(Console& console) const {
    size_t width = 0;
    for (const auto& [label, value] : fRows) {
        width = std::max(width, label.size());
    }
    console.Print(fHeadline);
    for (const auto& [label, value] : fRows) {
        std::string line(kGap, ' ');
        line += label;
        line.append(width - label.size() + kGap, ' ');
        line += value;
        console.Print(line);
    }
}

}  // namespace VantorCli
