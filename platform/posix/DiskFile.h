#pragma once

#include <memory>
#include <string>

#include "platform/File.h"
#include "platform/posix/Descriptor.h"

namespace Vantor::Platform {

// The disk file of a descriptor that was opened for `access`. Its failures name `path`.
std::unique_ptr<File> MakeDiskFile(Descriptor descriptor, FileAccess access, const std::string& path);

}  // namespace Vantor::Platform
