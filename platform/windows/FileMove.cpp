#include <windows.h>

#include <array>

#include "platform/FileSystem.h"
#include "platform/windows/Handle.h"
#include "platform/windows/SystemError.h"

namespace Vantor::Platform {

namespace {

constexpr DWORD kMoveFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;

std::string FolderOf(const std::string& path) {
    const size_t separator = path.find_last_of("\\/:");
    return separator == std::string::npos ? "." : path.substr(0, separator + 1);
}

// The copy beside the target; removed unless it takes the target's place.
class Neighbour {
  public:
    explicit Neighbour(const std::string& target) : fTarget(target) {
        constexpr UINT kUniqueNumber = 0;
        if (GetTempFileNameA(FolderOf(target).c_str(), "VNT", kUniqueNumber, fPath.data()) == 0) {
            ThrowLastError(target);
        }
    }
    ~Neighbour() {
        if (!fIsInPlace) {
            SetFileAttributesA(fPath.data(), FILE_ATTRIBUTE_NORMAL);
            DeleteFileA(fPath.data());
        }
    }
    Neighbour(const Neighbour&) = delete;
    Neighbour& operator=(const Neighbour&) = delete;

    void CopyFrom(const std::string& source) {
        constexpr BOOL kMayExist = FALSE;
        if (!CopyFileA(source.c_str(), fPath.data(), kMayExist)) {
            ThrowCopyError(GetLastError(), source);
        }
    }

    // The attributes came with the copy, and one of them may forbid writing.
    void Flush() {
        const DWORD attributes = GetFileAttributesA(fPath.data());
        SetFileAttributesA(fPath.data(), FILE_ATTRIBUTE_NORMAL);
        Handle handle(CreateFileA(fPath.data(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!handle.IsOpen() || !FlushFileBuffers(handle.Get()) || !handle.Close()) {
            ThrowLastError(fTarget);
        }
        if (attributes != INVALID_FILE_ATTRIBUTES) {
            SetFileAttributesA(fPath.data(), attributes);
        }
    }

    void TakePlaceOfTarget() {
        if (!MoveFileExA(fPath.data(), fTarget.c_str(), kMoveFlags)) {
            ThrowLastError(fTarget);
        }
        fIsInPlace = true;
    }

  private:
    // A full disk is the target's failure; whatever keeps the source from being read is the source's.
    [[noreturn]] void ThrowCopyError(DWORD error, const std::string& source) const {
        const bool isOfTarget = CauseOfError(error) == FileException::Cause::kDiskFull;
        ThrowFileError(error, isOfTarget ? fTarget : source);
    }

    const std::string& fTarget;
    std::array<char, MAX_PATH> fPath = {};
    bool fIsInPlace = false;
};

// The system's own move to another volume writes onto the target itself, where a failure would leave half a
// file.
void MoveToOtherVolume(const std::string& from, const std::string& to) {
    Neighbour neighbour(to);
    neighbour.CopyFrom(from);
    neighbour.Flush();
    neighbour.TakePlaceOfTarget();
    DeleteFileA(from.c_str());
}

}  // namespace

void MoveFileReplacing(const std::string& from, const std::string& to) {
    if (GetFileAttributesA(from.c_str()) == INVALID_FILE_ATTRIBUTES) {
        ThrowLastError(from);
    }
    if (MoveFileExA(from.c_str(), to.c_str(), kMoveFlags)) {
        return;
    }
    if (GetLastError() != ERROR_NOT_SAME_DEVICE) {
        ThrowLastError(to);
    }
    MoveToOtherVolume(from, to);
}

}  // namespace Vantor::Platform
