#pragma once

#include <memory>
#include <string>

#include "platform/File.h"
#include "platform/posix/Descriptor.h"

namespace Vantor::Platform {

// The disk file of a descriptor that was opened for `access`. Its failures name `path`; `pathOnDisk` is where
// it is.
std::unique_ptr<File> MakeDiskFile(Descriptor descriptor, FileAccess access, const std::string& path,
                                   const std::string& pathOnDisk);

// Returns when what was written to a file is on the medium. Failures name `path`.
void FlushDescriptor(const Descriptor& descriptor, const std::string& path);

}  // namespace Vantor::Platform
