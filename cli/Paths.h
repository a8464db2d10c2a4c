#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Text.h"

namespace VantorCli {

// A path of the command line: absolute, without "." and "..", and without a separator at its end.
std::filesystem::path ToAbsolutePath(const std::string& argument);

// The path that a text of the library names, and back. Other ways to make a path of wide text fail for what
// is not ASCII.
std::filesystem::path ToPath(const HostString& text);
HostString ToHostText(const std::filesystem::path& path);

// A path below a folder as it is from there; any other stays as it is.
HostString RelativeTo(const HostString& folder, const HostString& path);

// True when the path names an existing folder.
bool IsFolder(const std::filesystem::path& path);

// What is called so in a folder, in upper or lower case; empty when nothing is.
std::filesystem::path FindEntry(const std::filesystem::path& folder, std::wstring_view name);
std::filesystem::path FindDicomdir(const std::filesystem::path& folder);

// What is in a folder, in the order of names.
std::vector<std::filesystem::path> ListEntries(const std::filesystem::path& folder);

// What a folder holds, with all that is below it, in the order of names; the files of a sub-folder come where
// that stands among them. Links to folders are not followed, and what is neither file nor folder is left out.
struct FolderContent {
    std::vector<std::filesystem::path> fFiles;
    std::vector<std::filesystem::path> fUnreadable;  // folders
};
FolderContent ListBelow(const std::filesystem::path& folder);

}  // namespace VantorCli
