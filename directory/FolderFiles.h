#pragma once

#include <string>
#include <vector>

namespace Vantor::FolderFiles {

// The full paths of all files in a folder and its sub-folders, as far as they fit a TFileSpec: in the order
// of the names, byte by byte, those of a sub-folder where that stands among them. A link to a file counts as
// a file; a link to a folder is not followed, as it may lead back. What is only there because a DICOMDIR is
// open for updating is left out.
std::vector<std::string> ListBelow(const std::string& folder);

}  // namespace Vantor::FolderFiles
