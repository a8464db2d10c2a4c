#include "platform/DriveList.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/MountTable.h"

namespace Vantor::Platform {

namespace {

constexpr char kDriveEnd = ':';
constexpr char kTypeStart = '=';
constexpr char kPartEnd = ',';

constexpr auto kTypes =
    std::to_array<std::pair<std::string_view, DriveType>>({{"fixed", DriveType::kFixed},
                                                           {"removable", DriveType::kRemovable},
                                                           {"cdrom", DriveType::kCdRom},
                                                           {"network", DriveType::kNetwork},
                                                           {"ram", DriveType::kRamDisk}});

// Takes the part in front of a character off the text, all of it where there is none.
std::string_view TakePart(std::string_view& text, char end) {
    const size_t length = std::min(text.find(end), text.size());
    const std::string_view part = text.substr(0, length);
    text.remove_prefix(std::min(length + 1, text.size()));
    return part;
}

std::optional<DriveType> ReadType(std::string_view word) {
    const auto* const type =
        std::find_if(kTypes.begin(), kTypes.end(), [word](const auto& named) { return named.first == word; });
    return type != kTypes.end() ? std::optional(type->second) : std::nullopt;
}

NamedDrive ReadDrive(std::string_view text) {
    const size_t typeStart = text.rfind(kTypeStart);
    if (typeStart != std::string_view::npos) {
        std::string_view rest = text.substr(typeStart + 1);
        if (const std::optional<DriveType> type = ReadType(TakePart(rest, kPartEnd))) {
            const std::string_view format = TakePart(rest, kPartEnd);
            return {FolderName(text.substr(0, typeStart)), type, std::string(format), std::string(rest)};
        }
    }
    return {FolderName(text), std::nullopt, {}, {}};
}

}  // namespace

std::vector<NamedDrive> ReadDriveList(std::string_view list) {
    std::vector<NamedDrive> drives;
    while (!list.empty()) {
        const std::string_view drive = TakePart(list, kDriveEnd);
        if (drive.starts_with('/')) {
            drives.push_back(ReadDrive(drive));
        }
    }
    return drives;
}

}  // namespace Vantor::Platform
