#include "platform/PathStyle.h"

#include <algorithm>

#include "platform/Ascii.h"

namespace Vantor::Platform {

namespace {

constexpr char kFileIDSeparator = '\\';
constexpr char kDriveEnd = ':';
constexpr std::string_view kShareStart = "\\\\";
constexpr size_t kDriveLength = 2;

}  // namespace

std::string_view PathStyle::FolderPart(std::string_view path) const {
    const auto end = std::find_if(path.rbegin(), path.rend(), [this](char c) { return IsSeparator(c); });
    return path.substr(0, static_cast<size_t>(path.rend() - end));
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

std::string WindowsPathStyle::VolumeRoot(std::string_view path) const {
    if (path.substr(0, kShareStart.size()) != kShareStart) {
        return std::string(path.substr(0, kDriveLength)) + GetSeparator();
    }
    const size_t serverEnd = path.find(GetSeparator(), kShareStart.size());
    const size_t shareEnd =
        serverEnd == std::string_view::npos ? serverEnd : path.find(GetSeparator(), serverEnd + 1);
    if (shareEnd == std::string_view::npos) return std::string(path) + GetSeparator();
    return std::string(path.substr(0, shareEnd + 1));
}

bool PosixPathStyle::IsFullPath(std::string_view path) const {
    return !path.empty() && path.front() == GetSeparator();
}

std::string PosixPathStyle::VolumeRoot(std::string_view path) const {
    const std::string_view folder = FolderPart(path);
    return folder.empty() ? "./" : std::string(folder);
}

std::string PosixPathStyle::NameToMake(std::string_view name) const { return UpperCased(name); }

}  // namespace Vantor::Platform
