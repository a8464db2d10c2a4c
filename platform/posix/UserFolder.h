#pragma once

#include <optional>
#include <string>

namespace Vantor::Platform {

// The value of a variable that names a folder; none for a relative one, which would be another place for
// every program.
std::optional<std::string> FolderVariable(const char* name);

// A folder of this user's: what the variable names, else one below the user's home. None without a home.
std::optional<std::string> UserFolder(const char* variable, const std::string& belowHome);

// Makes every folder on the way to the file that is missing, for this user alone. Failures show when the
// file is made.
void MakeFoldersOf(const std::string& file);

}  // namespace Vantor::Platform
