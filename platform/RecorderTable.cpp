#include "platform/RecorderTable.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "platform/Ascii.h"

namespace Vantor::Platform {

namespace {

constexpr std::string_view kNames = "drive name";
constexpr std::array<std::string_view, 3> kAbilities = {"Can write CD-R", "Can write DVD-R",
                                                        "Can write DVD-RAM"};
constexpr std::string_view kYes = "1";
constexpr size_t kLongestVolumeName = 32;

std::vector<std::string> SplitCells(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> cells;
    for (std::string cell; stream >> cell;) cells.push_back(cell);
    return cells;
}

bool StaysInVolumeName(char letter) {
    return (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9') || letter == '_' ||
           letter == ' ';
}

}  // namespace

// A row for each fact, a column for each drive, the newest first.
std::vector<std::string> ReadRecorders(std::string_view table) {
    std::vector<std::string> names;
    std::vector<bool> canWrite;
    std::istringstream rows{std::string(table)};
    for (std::string row; std::getline(rows, row);) {
        const size_t colon = row.find(':');
        if (colon == std::string::npos) continue;
        const std::string fact = row.substr(0, colon);
        const std::vector<std::string> cells = SplitCells(row.substr(colon + 1));
        if (fact == kNames) {
            names = cells;
            canWrite.assign(names.size(), false);
        }
        if (std::find(kAbilities.begin(), kAbilities.end(), fact) == kAbilities.end()) continue;
        for (size_t drive = 0; drive < std::min(cells.size(), names.size()); ++drive) {
            if (cells[drive] == kYes) canWrite[drive] = true;
        }
    }
    std::vector<std::string> recorders;
    for (size_t drive = names.size(); drive-- > 0;) {
        if (canWrite[drive]) recorders.push_back(names[drive]);
    }
    return recorders;
}

std::string MakeVolumeName(std::string_view text) {
    std::string name = UpperCased(text.substr(0, kLongestVolumeName));
    std::replace_if(
        name.begin(), name.end(), [](char letter) { return !StaysInVolumeName(letter); }, '_');
    const size_t first = name.find_first_not_of(' ');
    if (first == std::string::npos) return std::string();
    return name.substr(first, name.find_last_not_of(' ') + 1 - first);
}

}  // namespace Vantor::Platform
