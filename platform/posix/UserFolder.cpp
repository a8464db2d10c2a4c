#include "platform/posix/UserFolder.h"

#include <sys/stat.h>

#include <cstdlib>

namespace Vantor::Platform {

namespace {

constexpr mode_t kFolderRights = 0700;

}  // namespace

std::optional<std::string> FolderVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value == '/' ? std::optional(std::string(value)) : std::nullopt;
}

std::optional<std::string> UserFolder(const char* variable, const std::string& belowHome) {
    if (auto folder = FolderVariable(variable)) return folder;
    const auto home = FolderVariable("HOME");
    return home ? std::optional(*home + "/" + belowHome) : std::nullopt;
}

void MakeFoldersOf(const std::string& file) {
    for (size_t end = file.find('/', 1); end != std::string::npos; end = file.find('/', end + 1)) {
        mkdir(file.substr(0, end).c_str(), kFolderRights);
    }
}

}  // namespace Vantor::Platform
