#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/FileMark.h"

// Every path that the platform takes is 8-bit text (see CodePage) with the platform's own separators. Names
// are found without regard to the case of ASCII letters on every platform: a path that does not exist as
// spelled stands for the one that does, and a new file is made in the folders that do.

namespace Vantor::Platform {

// The last-write time of a file or folder; none when the path names nothing that can be looked at.
std::optional<FileTime> GetLastWriteTime(const std::string& path);

// True when the path names an existing file or folder.
bool PathExists(const std::string& path);

// True when the path names an existing folder.
bool IsFolder(const std::string& path);

// True when the path names something that exists and is no folder.
bool IsFile(const std::string& path);

// True when the path names something that is marked as not to be written: by its attribute, or, where there
// is none, by rights or a medium that do not let this user.
bool IsReadOnly(const std::string& path);

// True when the path names a link, to anything or nothing, itself.
bool IsLink(const std::string& path);

// True when both paths name the same existing file, however they are spelled.
bool IsSameFile(const std::string& first, const std::string& second);

// Makes a folder in an existing one. Throws FileException, also when there is something of that name already.
void CreateFolder(const std::string& path);

// Makes a folder where there is none; on failure there is still none.
void MakeFolderIfMissing(const std::string& path);

// What a folder holds, itself and the folder above it left out.
struct FolderEntry {
    enum class Kind { kFile, kFolder, kLink, kOther };

    std::string fName;
    Kind fKind = Kind::kOther;  // of the entry itself: a link to a folder is a link
};

// The entries of a folder in the order of their names, byte by byte. None when it cannot be read: ReadFolder
// tells that from an empty one.
std::vector<FolderEntry> ListFolder(const std::string& path);
std::optional<std::vector<FolderEntry>> ReadFolder(const std::string& path);

// Removes an empty folder. Throws FileException, also when it holds something.
void RemoveFolder(const std::string& path);

// Removes a folder with all that is in it, as far as that goes, but for the folders in it whose name the
// caller keeps. Links are removed themselves: what they lead to is left alone. True when it is gone.
bool RemoveFolderTree(const std::string& path);
bool RemoveFolderTree(const std::string& path, bool (*isKept)(const std::string& name));

// The bytes that this user may still write on the volume that holds an existing file or folder; 0 when that
// cannot be told.
uint64_t GetFreeBytes(const std::string& path);

// Hands to the medium what any program has written to these files so far, and their places in their folders;
// returns when all is there. Files that are not there do not count, nor do, on Windows, those that another
// program keeps from being opened. Throws FileException.
void FlushFiles(const std::vector<std::string>& paths);

// Removes a file (never a folder). Throws FileException, also when there is none.
void RemoveFile(const std::string& path);

// Gives a file another path, in place of a file that may be there. Across volumes the bytes are copied to a
// neighbour of the target first, so that nobody finds half a file there and a failure leaves the target as
// it was. Throws FileException; the source is then still in place.
//
// The file keeps its last-write time. Close both files first: Windows neither moves nor replaces one that is
// open. A source that cannot be removed once it is copied, as on a read-only medium, stays without failure.
void MoveFileReplacing(const std::string& from, const std::string& to);

// Puts a copy of a file at another path, in place of a file that may be there, in the same way: nobody finds
// half a file, and a failure leaves what was there. A link is copied as the file that it leads to, and what
// is at the other path is replaced itself if it is a link. The copy has the last-write time of the original,
// and may be changed although that may not. Throws FileException.
void CopyFileReplacing(const std::string& from, const std::string& to);

// Creates an empty file with a name of its own in the system's folder for temporary files and gives its
// path. The name starts with `prefix` (three letters). Throws FileException.
std::string MakeTemporaryFile(const std::string& prefix);

}  // namespace Vantor::Platform
