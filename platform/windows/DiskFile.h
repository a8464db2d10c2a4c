#pragma once

#include <memory>
#include <string>

#include "platform/File.h"
#include "platform/windows/Handle.h"

namespace Vantor::Platform {

// The disk file of a handle that was opened for `access`. Its failures name `path`; `pathOnDisk` is where it
// is.
std::unique_ptr<File> MakeDiskFile(Handle handle, FileAccess access, const std::string& path,
                                   const std::string& pathOnDisk);

}  // namespace Vantor::Platform
