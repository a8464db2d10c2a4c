#include "platform/windows/Neighbour.h"

#include "platform/MediumWatch.h"
#include "platform/NeighbourName.h"
#include "platform/windows/SystemError.h"

namespace Vantor::Platform {

namespace {

std::string FolderOf(const std::string& path) {
    const size_t separator = path.find_last_of("\\/:");
    return separator == std::string::npos ? "." : path.substr(0, separator + 1);
}

}  // namespace

Neighbour::Neighbour(const std::string& target) : fTarget(target) {
    constexpr UINT kUniqueNumber = 0;
    const std::string folder = FolderOf(target);
    // The system finds the rest of the name while it creates the file.
    AnnounceChange(MediumChange::kCreateFile, folder + "\\" + kNeighbourStart.data());
    if (GetTempFileNameA(folder.c_str(), kNeighbourStart.data(), kUniqueNumber, fPath.data()) == 0) {
        ThrowLastError(target);
    }
}

Neighbour::~Neighbour() {
    if (!fIsInPlace && MayChange(MediumChange::kRemoveFile, fPath.data())) {
        SetFileAttributesA(fPath.data(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileA(fPath.data());
    }
}

bool Neighbour::TakePlaceOfTarget() { return Move(kMoveFlags); }

bool Neighbour::TakeFreePlace() { return Move(MOVEFILE_WRITE_THROUGH); }

bool Neighbour::Move(DWORD flags) {
    AnnounceChange(MediumChange::kMove, fPath.data(), fTarget);
    fIsInPlace = MoveFileExA(fPath.data(), fTarget.c_str(), flags) != FALSE;
    return fIsInPlace;
}

}  // namespace Vantor::Platform
