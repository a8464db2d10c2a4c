#include <windows.h>

#include "platform/FileSystem.h"
#include "platform/MediumWatch.h"
#include "platform/windows/Handle.h"
#include "platform/windows/Neighbour.h"
#include "platform/windows/SystemError.h"

namespace Vantor::Platform {

namespace {

// A full disk is the target's failure; whatever keeps the source from being read is the source's.
void Copy(const std::string& from, const std::string& neighbour, const std::string& to) {
    constexpr BOOL kMayExist = FALSE;
    AnnounceChange(MediumChange::kWrite, neighbour);
    if (!CopyFileA(from.c_str(), neighbour.c_str(), kMayExist)) {
        const DWORD error = GetLastError();
        const bool isOfTarget = CauseOfError(error) == FileException::Cause::kDiskFull;
        ThrowFileError(error, isOfTarget ? to : from);
    }
}

// The attributes came with the copy, and one of them may forbid writing; those that are dropped are gone
// then.
void FlushCopy(const std::string& neighbour, const std::string& to, DWORD dropped) {
    const DWORD attributes = GetFileAttributesA(neighbour.c_str());
    SetFileAttributesA(neighbour.c_str(), FILE_ATTRIBUTE_NORMAL);
    Handle handle(CreateFileA(neighbour.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
    AnnounceChange(MediumChange::kFlush, neighbour);
    if (!handle.IsOpen() || !FlushFileBuffers(handle.Get()) || !handle.Close()) {
        ThrowLastError(to);
    }
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        SetFileAttributesA(neighbour.c_str(), attributes & ~dropped);
    }
}

void PutCopyInPlace(const std::string& from, const std::string& to, DWORD dropped) {
    Neighbour neighbour(to);
    Copy(from, neighbour.GetPath(), to);
    FlushCopy(neighbour.GetPath(), to, dropped);
    if (!neighbour.TakePlaceOfTarget()) {
        ThrowLastError(to);
    }
}

// The system's own move to another volume writes onto the target itself, where a failure would leave half a
// file.
void MoveToOtherVolume(const std::string& from, const std::string& to) {
    PutCopyInPlace(from, to, 0);
    if (MayChange(MediumChange::kRemoveFile, from)) {
        DeleteFileA(from.c_str());
    }
}

}  // namespace

void MoveFileReplacing(const std::string& from, const std::string& to) {
    if (GetFileAttributesA(from.c_str()) == INVALID_FILE_ATTRIBUTES) {
        ThrowLastError(from);
    }
    AnnounceChange(MediumChange::kMove, from, to);
    if (MoveFileExA(from.c_str(), to.c_str(), kMoveFlags)) {
        return;
    }
    if (GetLastError() != ERROR_NOT_SAME_DEVICE) {
        ThrowLastError(to);
    }
    MoveToOtherVolume(from, to);
}

void CopyFileReplacing(const std::string& from, const std::string& to) {
    PutCopyInPlace(from, to, FILE_ATTRIBUTE_READONLY);
}

}  // namespace Vantor::Platform
