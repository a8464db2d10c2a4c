#pragma once

#include <windows.h>

#include <array>
#include <string>

namespace Vantor::Platform {

// A new file in the folder of another, whose place it is going to take; removed unless it does. Throws
// FileException, which names the target.
class Neighbour {
  public:
    // Creates the file, empty and closed.
    explicit Neighbour(const std::string& target);
    ~Neighbour();
    Neighbour(const Neighbour&) = delete;
    Neighbour& operator=(const Neighbour&) = delete;

    std::string GetPath() const { return fPath.data(); }

    // At once for everybody, and lasting when this returns. Both files have to be closed. False, with
    // GetLastError, on failure.
    bool TakePlaceOfTarget();

    // The same where there was no target. One that somebody else has made since is not replaced.
    bool TakeFreePlace();

  private:
    bool Move(DWORD flags);

    std::string fTarget;
    std::array<char, MAX_PATH> fPath = {};
    bool fIsInPlace = false;
};

// How a file takes another's place.
constexpr DWORD kMoveFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;

}  // namespace Vantor::Platform
