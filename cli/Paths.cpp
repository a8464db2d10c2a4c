#include "cli/Paths.h"

#include <algorithm>
#include <cwctype>
#include <system_error>
#include <type_traits>

#include "platform/CodePage.h"

namespace VantorCli {

namespace {

namespace fs = std::filesystem;

constexpr std::wstring_view kDicomdir = L"DICOMDIR";

// Paths are wide text on some systems and 8-bit text on others.
template <typename Text>
HostString FromNative(const Text& path) {
    if constexpr (std::is_same_v<Text, HostString>) {
        return path;
    } else {
        return Vantor::Platform::ToHostText(path);
    }
}

template <typename Text>
Text ToNative(const HostString& text) {
    if constexpr (std::is_same_v<Text, HostString>) {
        return text;
    } else {
        return Vantor::Platform::FromHostText(text);
    }
}

// Where paths are 8-bit text, bytes that are no text name files as well.
template <typename Text>
Text FromArgument(const std::string& argument) {
    if constexpr (std::is_same_v<Text, HostString>) {
        return Vantor::Platform::ToHostText(argument);
    } else {
        return argument;
    }
}

std::wint_t ToUpper(wchar_t letter) { return std::towupper(static_cast<std::wint_t>(letter)); }

bool IsCalled(const fs::path& path, std::wstring_view text) {
    const HostString name = ToHostText(path.filename());
    return std::equal(name.begin(), name.end(), text.begin(), text.end(),
                      [](wchar_t left, wchar_t right) { return ToUpper(left) == ToUpper(right); });
}

// In the order of names; `isRead` tells whether that is all of them.
std::vector<fs::directory_entry> EntriesOf(const fs::path& folder, bool& isRead) {
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    fs::directory_iterator next(folder, error);
    while (!error && next != fs::directory_iterator()) {
        entries.push_back(*next);
        next.increment(error);
    }
    isRead = !error;
    std::sort(entries.begin(), entries.end());
    return entries;
}

void AddBelow(const fs::path& folder, FolderContent& content) {
    bool isRead = false;
    std::error_code ignored;
    for (const fs::directory_entry& entry : EntriesOf(folder, isRead)) {
        if (entry.is_regular_file(ignored)) {
            content.fFiles.push_back(entry.path());
        } else if (entry.is_directory(ignored) && !entry.is_symlink(ignored)) {
            AddBelow(entry.path(), content);
        }
    }
    if (!isRead) content.fUnreadable.push_back(folder);
}

}  // namespace

fs::path ToAbsolutePath(const std::string& argument) {
    std::error_code ignored;  // of the empty path, which stays empty
    const fs::path path =
        fs::absolute(FromArgument<fs::path::string_type>(argument), ignored).lexically_normal();
    return path.has_filename() || !path.has_relative_path() ? path : path.parent_path();
}

fs::path ToPath(const HostString& text) { return ToNative<fs::path::string_type>(text); }

HostString ToHostText(const fs::path& path) { return FromNative(path.native()); }

HostString RelativeTo(const HostString& folder, const HostString& path) {
    if (!path.starts_with(folder)) return path;
    const size_t start = path.find_first_not_of(L"/\\", folder.size());
    const bool isBelow = start != HostString::npos &&
                         (start > folder.size() || folder.find_last_of(L"/\\") + 1 == folder.size());
    return isBelow ? path.substr(start) : path;
}

bool IsFolder(const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

fs::path FindEntry(const fs::path& folder, std::wstring_view name) {
    for (const fs::path& path : ListEntries(folder)) {
        if (IsCalled(path, name)) return path;
    }
    return {};
}

fs::path FindDicomdir(const fs::path& folder) { return FindEntry(folder, kDicomdir); }

std::vector<fs::path> ListEntries(const fs::path& folder) {
    bool isRead = false;
    const std::vector<fs::directory_entry> entries = EntriesOf(folder, isRead);
    return {entries.begin(), entries.end()};
}

FolderContent ListBelow(const fs::path& folder) {
    FolderContent content;
    AddBelow(folder, content);
    return content;
}

}  // namespace VantorCli
