#include "platform/windows/Neighbour.h"

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
    if (GetTempFileNameA(FolderOf(target).c_str(), "VNT", kUniqueNumber, fPath.data()) == 0) {
        ThrowLastError(target);
    }
}

Neighbour::~Neighbour() {
    if (!fIsInPlace) {
        SetFileAttributesA(fPath.data(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileA(fPath.data());
    }
}

bool Neighbour::TakePlaceOfTarget() {
    fIsInPlace = MoveFileExA(fPath.data(), fTarget.c_str(), kMoveFlags) != FALSE;
    return fIsInPlace;
}

}  // namespace Vantor::Platform
