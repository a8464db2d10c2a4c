#pragma once

#include <string>

namespace Vantor {
class TFilePlaces;
}

namespace VantorWrappers {

// True for a path, where there need not be a file yet, that files of a directory may be written to: it is
// below the directory's folder, and no link on the way from there leads elsewhere. A medium of a stranger may
// name any file by its records. A link that the system does not tell the end of counts as one that does.
bool IsOnMedium(const Vantor::TFilePlaces& places, const std::string& path);

}  // namespace VantorWrappers
