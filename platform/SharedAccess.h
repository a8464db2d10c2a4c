#pragma once

#include <string>

namespace Vantor::Platform {

// Workstations are shared: what one user puts into a directory, the others must be able to change.

// Lets others read and change a file or folder that this user has made. Nobody loses a right. True also when
// nothing was missing; false when that cannot be done.
//
// Windows: everybody who may log on, with whatever is put into a folder later. Elsewhere: the group and all
// others, as far as they may change the folder that it lies in; what is put into a folder later is shared by
// itself. A folder open to all in which each keeps his own, such as the one for temporary files, shares
// nothing.
bool ShareFile(const std::string& path);
bool ShareFolder(const std::string& path);

}  // namespace Vantor::Platform
