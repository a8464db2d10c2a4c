#include "platform/FileSystem.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "platform/CodePage.h"
#include "platform/MediumWatch.h"
#include "platform/windows/FileState.h"
#include "platform/windows/Handle.h"
#include "platform/windows/SystemError.h"

namespace Vantor::Platform {

namespace {

std::optional<WIN32_FILE_ATTRIBUTE_DATA> GetAttributes(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA attributes = {};
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &attributes)) {
        return std::nullopt;
    }
    return attributes;
}

// Of the files that the system keeps in a way of its own, such as in a cloud, only links lead elsewhere.
template <typename FindData>
FolderEntry::Kind KindOf(const FindData& found) {
    const bool isSpecial = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if (isSpecial &&
        (found.dwReserved0 == IO_REPARSE_TAG_SYMLINK || found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT)) {
        return FolderEntry::Kind::kLink;
    }
    const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return isFolder ? FolderEntry::Kind::kFolder : FolderEntry::Kind::kFile;
}

// A name that the code page cannot write must not become one that looks like it: a letter that looks like a
// separator would lead out of the folder. Such files have a short name, or one with a question mark, by which
// nothing is found.
std::string NameOf(const WIN32_FIND_DATAW& found) {
    const std::string name = FromHostText(found.cFileName);
    const bool isWhole = ToHostText(name) == found.cFileName;
    return isWhole || found.cAlternateFileName[0] == L'\0' ? name : FromHostText(found.cAlternateFileName);
}

bool IsNamedBefore(const FolderEntry& first, const FolderEntry& second) { return first.fName < second.fName; }

}  // namespace

std::optional<FileTime> GetLastWriteTime(const std::string& path) {
    const auto attributes = GetAttributes(path);
    if (!attributes) {
        return std::nullopt;
    }
    return FileTime{attributes->ftLastWriteTime.dwLowDateTime, attributes->ftLastWriteTime.dwHighDateTime};
}

bool PathExists(const std::string& path) { return GetAttributes(path).has_value(); }

bool IsFolder(const std::string& path) {
    const auto attributes = GetAttributes(path);
    return attributes && (attributes->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsReadOnly(const std::string& path) {
    const auto attributes = GetAttributes(path);
    return attributes && (attributes->dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
}

bool IsLink(const std::string& path) {
    if (path.find_first_of("*?") != std::string::npos) {
        return false;  // no name, but a pattern
    }
    WIN32_FIND_DATAA found = {};
    const HANDLE search = FindFirstFileA(path.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(search);
    return KindOf(found) == FolderEntry::Kind::kLink;
}

bool IsSameFile(const std::string& first, const std::string& second) {
    const std::optional<FileMark> firstFile = GetMarkAt(first);
    const std::optional<FileMark> secondFile = GetMarkAt(second);
    return firstFile && secondFile && firstFile->fVolume == secondFile->fVolume &&
           firstFile->fIdentity == secondFile->fIdentity;
}

void CreateFolder(const std::string& path) {
    AnnounceChange(MediumChange::kCreateFolder, path);
    if (!CreateDirectoryA(path.c_str(), nullptr)) {
        ThrowLastError(path);
    }
}

// A folder lists itself first, and is never empty for that; the root of an empty drive does not.
std::optional<std::vector<FolderEntry>> ReadFolder(const std::string& path) {
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW(ToHostText(path + "\\*").c_str(), &found);
    std::vector<FolderEntry> entries;
    if (search == INVALID_HANDLE_VALUE) {
        return GetLastError() == ERROR_FILE_NOT_FOUND ? std::optional(entries) : std::nullopt;
    }
    const std::unique_ptr<void, decltype(&FindClose)> closing(search, FindClose);
    do {
        std::string name = NameOf(found);
        if (name != "." && name != "..") {
            entries.push_back({std::move(name), KindOf(found)});
        }
    } while (FindNextFileW(search, &found));
    if (GetLastError() != ERROR_NO_MORE_FILES) {
        return std::nullopt;
    }
    std::sort(entries.begin(), entries.end(), IsNamedBefore);
    return entries;
}

void RemoveFolder(const std::string& path) {
    AnnounceChange(MediumChange::kRemoveFolder, path);
    if (!RemoveDirectoryA(path.c_str())) {
        ThrowLastError(path);
    }
}

uint64_t GetFreeBytes(const std::string& path) {
    ULARGE_INTEGER freeToCaller = {};
    return GetDiskFreeSpaceExA(path.c_str(), &freeToCaller, nullptr, nullptr) ? freeToCaller.QuadPart : 0;
}

void FlushFiles(const std::vector<std::string>& paths) {
    constexpr DWORD kSharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    for (const std::string& path : paths) {
        AnnounceChange(MediumChange::kFlush, path);
        const Handle file(CreateFileA(path.c_str(), GENERIC_WRITE, kSharedWithAll, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file.IsOpen() && !FlushFileBuffers(file.Get())) {
            ThrowLastError(path);
        }
    }
}

void RemoveFile(const std::string& path) {
    AnnounceChange(MediumChange::kRemoveFile, path);
    if (!DeleteFileA(path.c_str())) {
        ThrowLastError(path);
    }
}

std::string MakeTemporaryFile(const std::string& prefix) {
    constexpr UINT kUniqueNumber = 0;
    std::array<char, MAX_PATH + 1> folder = {};
    std::array<char, MAX_PATH> path = {};
    AnnounceChange(MediumChange::kCreateFile, prefix);
    const DWORD length = GetTempPathA(static_cast<DWORD>(folder.size()), folder.data());
    if (length == 0 || length > folder.size() ||
        GetTempFileNameA(folder.data(), prefix.c_str(), kUniqueNumber, path.data()) == 0) {
        ThrowLastError(folder.data());
    }
    return path.data();
}

}  // namespace Vantor::Platform
