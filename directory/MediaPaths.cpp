#include "directory/MediaPaths.h"

#include <algorithm>

#include "platform/Ascii.h"

namespace Vantor {

namespace {

constexpr std::string_view kDirectoryFileName = "DICOMDIR";
constexpr char kFileIDSeparator = '\\';
constexpr std::string_view kPadding(" \0", 2);

std::string_view WithoutPadding(std::string_view fileID) {
    const size_t end = fileID.find_last_not_of(kPadding);
    return fileID.substr(0, end == std::string_view::npos ? 0 : end + 1);
}

}  // namespace

MediaPaths::MediaPaths(const Platform::PathStyle& style, std::string_view directoryPath, bool isFolder)
    : fStyle(style), fFolder(directoryPath) {
    // Looked for in the last name only: the folders above may be called after it too.
    const size_t nameStart = style.FolderPart(directoryPath).size();
    const size_t position = Platform::UpperCased(directoryPath).find(kDirectoryFileName, nameStart);
    const bool hasDICOMDIR = position != std::string::npos && !isFolder;
    if (hasDICOMDIR) fFolder.resize(position);
    fIsKnown = hasDICOMDIR || isFolder;
    if (!fFolder.empty() && !style.EndsFolder(fFolder)) fFolder += style.GetSeparator();
}

std::string MediaPaths::MakeFullPath(std::string_view fileID) const {
    return fStyle.IsFullPath(fileID) ? std::string(WithoutPadding(fileID)) : MakePathBelow(fileID);
}

std::string MediaPaths::MakePathBelow(std::string_view fileID) const {
    return fFolder + fStyle.FromFileID(WithoutPadding(fileID));
}

std::string MediaPaths::MakeFileID(std::string_view path) const {
    const auto isSame = [this](char a, char b) {
        return Platform::UpperCase(a) == Platform::UpperCase(b) ||
               (fStyle.IsSeparator(a) && fStyle.IsSeparator(b));
    };
    const std::string_view start = path.substr(0, fFolder.size());
    if (!std::equal(start.begin(), start.end(), fFolder.begin(), fFolder.end(), isSame)) return {};
    return fStyle.ToFileID(path.substr(fFolder.size()));
}

bool MediaPaths::IsInside(std::string_view path) const {
    const std::string fileID = MakeFileID(path);
    const bool startsAgain = fFolder.empty() && fStyle.IsFullPath(path);
    if (startsAgain) return false;
    for (size_t start = 0; start <= fileID.size();) {
        const size_t end = std::min(fileID.find(kFileIDSeparator, start), fileID.size());
        if (!fStyle.IsPlainName(std::string_view(fileID).substr(start, end - start))) return false;
        start = end + 1;
    }
    return true;
}

std::string MediaPaths::MakePathOnVolume(std::string_view path) const {
    const auto driveEnd = fStyle.DriveEnd(path);
    return driveEnd ? fStyle.ToFileID(path.substr(*driveEnd)) : kFileIDSeparator + MakeFileID(path);
}

std::string MediaPaths::MakeImageFolderPath(std::string_view imageFolderName) const {
    if (!fIsKnown || fFolder.size() <= 1 || imageFolderName.empty()) return {};
    imageFolderName.remove_prefix(1);  // the folder ends where a name may follow
    return fFolder + fStyle.FromFileID(fStyle.NameToMake(imageFolderName));
}

}  // namespace Vantor
