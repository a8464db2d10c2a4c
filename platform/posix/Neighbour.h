#pragma once

#include <sys/types.h>

#include <string>

#include "platform/posix/Descriptor.h"

namespace Vantor::Platform {

// A new file in the folder of another, whose place it is going to take; removed unless it does. Paths are as
// on disk. Throws FileException, which names the target.
class Neighbour {
  public:
    // Creates the file, empty. `rights` are what it has less the user mask.
    Neighbour(const std::string& target, mode_t rights);
    ~Neighbour();
    Neighbour(const Neighbour&) = delete;
    Neighbour& operator=(const Neighbour&) = delete;

    const std::string& GetPath() const { return fPath; }

    // The new file, open for reading and writing. To be asked once.
    Descriptor TakeDescriptor();

    // At once for everybody, and lasting when this returns.
    void TakePlaceOfTarget();

    // The same where there was no target. One that somebody else has made since is not replaced, as far as
    // the file system can tell: that is kSharingViolation.
    void TakeFreePlace();

  private:
    void EndInPlace();

    std::string fTarget;
    std::string fPath;  // empty once the file is in place
    Descriptor fDescriptor;
};

// The rights of a file that is its maker's alone, and of one that is for all whom the user mask lets in.
constexpr mode_t kRightsOfMaker = 0600;
constexpr mode_t kRightsOfAll = 0666;

// What was renamed is there for everybody at once, but after a power cut only when its folder has reached
// the medium. Some file systems cannot do that for a folder; the move stands nevertheless.
void FlushFolderOf(const std::string& path);

}  // namespace Vantor::Platform
