#include "platform/PathStyle.h"

#include <algorithm>
#include <array>

#include "platform/Ascii.h"

namespace Vantor::Platform {

namespace {

constexpr char kFileIDSeparator = '\\';
constexpr char kDriveEnd = ':';
constexpr std::string_view kSeparators = "\\/";
constexpr size_t kShareStart = 2;  // behind two separators
constexpr size_t kDriveLength = 2;

constexpr std::string_view kNeverInNames = "\\/:*?\"<>|";  // on Windows, as what is below a blank
constexpr std::string_view kDroppedAtEnd = ". ";
constexpr std::array<std::string_view, 6> kDevices = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
constexpr std::array<std::string_view, 2> kNumberedDevices = {"COM", "LPT"};
constexpr std::string_view kDeviceNumbers = "0123456789\xB9\xB2\xB3";  // raised ones too

bool IsControl(char character) { return character >= '\0' && character < ' '; }

// Whatever follows a dot: NUL.DCM is the device as well, on most systems.
bool IsDevice(std::string_view name) {
    const std::string_view start = name.substr(0, name.find('.'));
    const std::string device = UpperCased(start.substr(0, start.find_last_not_of(' ') + 1));
    if (std::find(kDevices.begin(), kDevices.end(), device) != kDevices.end()) return true;
    return std::any_of(kNumberedDevices.begin(), kNumberedDevices.end(), [&](std::string_view numbered) {
        return device.size() == numbered.size() + 1 && device.starts_with(numbered) &&
               kDeviceNumbers.find(device.back()) != std::string_view::npos;
    });
}

}  // namespace

std::string_view PathStyle::FolderPart(std::string_view path) const {
    const auto end = std::find_if(path.rbegin(), path.rend(), [this](char c) { return IsSeparator(c); });
    return path.substr(0, static_cast<size_t>(path.rend() - end));
}

std::string PathStyle::WithoutLastSeparators(std::string_view path) const {
    const auto isRoot = [this, &path] { return path.size() <= 1 || DriveEnd(path) == path.size() - 1; };
    while (!isRoot() && IsSeparator(path.back())) path.remove_suffix(1);
    return std::string(path);
}

std::string PathStyle::Join(std::string folder, std::string_view name) const {
    if (!EndsFolder(folder)) folder += GetSeparator();
    return folder.append(name);
}

std::string PathStyle::FromFileID(std::string_view fileID) const {
    std::string path(fileID);
    std::replace(path.begin(), path.end(), kFileIDSeparator, GetSeparator());
    return path;
}

std::string PathStyle::ToFileID(std::string_view path) const {
    std::string fileID(path);
    std::replace_if(
        fileID.begin(), fileID.end(), [this](char c) { return IsSeparator(c); }, kFileIDSeparator);
    return fileID;
}

bool WindowsPathStyle::IsFullPath(std::string_view path) const {
    return path.find(kDriveEnd) != std::string_view::npos;
}

bool WindowsPathStyle::EndsFolder(std::string_view path) const {
    return !path.empty() && (IsSeparator(path.back()) || path.back() == kDriveEnd);
}

std::optional<size_t> WindowsPathStyle::DriveEnd(std::string_view path) const {
    const size_t colon = path.find(kDriveEnd);
    if (colon == std::string_view::npos) return std::nullopt;
    return colon + 1;
}

std::string WindowsPathStyle::VolumeRoot(std::string_view path) const {
    const auto isSeparatorAt = [&](size_t index) { return index < path.size() && IsSeparator(path[index]); };
    if (isSeparatorAt(0) && isSeparatorAt(1)) {
        const size_t serverEnd = path.find_first_of(kSeparators, kShareStart);
        const size_t shareEnd = path.find_first_of(
            kSeparators, serverEnd == std::string_view::npos ? std::string_view::npos : serverEnd + 1);
        return std::string(path.substr(0, shareEnd)) + GetSeparator();
    }
    if (path.size() >= kDriveLength && path[kDriveLength - 1] == kDriveEnd) {
        return std::string(path.substr(0, kDriveLength)) + GetSeparator();
    }
    // On the drive that the process is on.
    return isSeparatorAt(0) ? "\\" : ".\\";
}

bool WindowsPathStyle::IsPlainName(std::string_view name) const {
    return !name.empty() && kDroppedAtEnd.find(name.back()) == std::string_view::npos &&
           name.find_first_of(kNeverInNames) == std::string_view::npos &&
           std::none_of(name.begin(), name.end(), IsControl) && !IsDevice(name);
}

bool PosixPathStyle::IsFullPath(std::string_view path) const {
    return !path.empty() && path.front() == GetSeparator();
}

bool PosixPathStyle::EndsFolder(std::string_view path) const {
    return !path.empty() && IsSeparator(path.back());
}

std::string PosixPathStyle::VolumeRoot(std::string_view path) const {
    const std::string_view folder = FolderPart(path);
    return folder.empty() ? "./" : std::string(folder);
}

std::string PosixPathStyle::NameToMake(std::string_view name) const { return UpperCased(name); }

bool PosixPathStyle::IsPlainName(std::string_view name) const {
    return !name.empty() && name != "." && name != ".." &&
           std::none_of(name.begin(), name.end(), [this](char c) { return IsSeparator(c) || c == '\0'; });
}

}  // namespace Vantor::Platform
