#pragma once

#include <cerrno>
#include <string>

namespace Vantor::Platform {

// Paths come from DICOMDIRs and from users in any case, while a medium may be mounted in lower case: a path
// that does not exist as spelled is looked up without regard to the case of ASCII letters, component by
// component, each as spelled where that exists. Backslashes are letters like any other.

enum class Missing { kNothing, kName, kFolder };

struct LookedUpPath {
    std::string fPath;  // as on disk, as far as it exists; the rest as given
    Missing fMissing;   // nothing; the last component alone; or a folder on the way to it
};

LookedUpPath LookUpPath(const std::string& path);

// Tells the lookup that this process has just added the file at a path that LookUpPath gave.
void NoteAdded(const std::string& path);

// The same for a file beside another that is going to be renamed or removed, and never looked up.
void NoteAddedForNow(const std::string& path);

// Runs a system call that takes a path and gives a negative number and errno on failure: with the path as
// spelled and, if it does not exist so, once more as spelled on disk.
template <typename Call>
int WithPathOnDisk(const std::string& path, Call call) {
    const int result = call(path.c_str());
    if (result >= 0 || errno != ENOENT) {
        return result;
    }
    const LookedUpPath found = LookUpPath(path);
    if (found.fMissing != Missing::kNothing) {
        errno = ENOENT;
        return result;
    }
    return call(found.fPath.c_str());
}

// Throws the FileException for a system call that failed on a path. A file that does not exist because its
// folder does not is kBadPath.
[[noreturn]] void ThrowPathError(int error, const std::string& path);

}  // namespace Vantor::Platform
