#include "platform/windows/DiskFile.h"

#include <windows.h>

#include <utility>

#include "platform/MediumWatch.h"
#include "platform/windows/FileState.h"
#include "platform/windows/OpenHandle.h"
#include "platform/windows/PositionedFile.h"
#include "platform/windows/SystemError.h"

namespace Vantor::Platform {

namespace {

constexpr int kHalfBits = 32;

// Reading and writing at a position of the caller's.
OVERLAPPED AtPosition(int64_t position) {
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(position);
    place.OffsetHigh = static_cast<DWORD>(position >> kHalfBits);
    return place;
}

class DiskFile final : public PositionedFile {
  public:
    DiskFile(Handle handle, FileAccess access, const std::string& path, const std::string& pathOnDisk)
        : PositionedFile(path), fHandle(std::move(handle)), fAccess(access), fPathOnDisk(pathOnDisk) {}

    int64_t GetLength() override {
        LARGE_INTEGER length = {};
        if (!GetFileSizeEx(fHandle.Get(), &length)) {
            ThrowLastError(GetPath());
        }
        return length.QuadPart;
    }

    void Reserve(int64_t length) override {
        FILE_ALLOCATION_INFO room = {};
        room.AllocationSize.QuadPart = length;
        const bool isDone =
            SetFileInformationByHandle(fHandle.Get(), FileAllocationInfo, &room, sizeof(room)) != 0;
        if (!isDone && GetLastError() == ERROR_DISK_FULL) {
            ThrowLastError(GetPath());
        }
    }

    void Flush() override {
        AnnounceChange(MediumChange::kFlush, fPathOnDisk);
        // A file opened for reading has nothing to hand on, and the system would refuse to try.
        if (fAccess == FileAccess::kReadWrite && !FlushFileBuffers(fHandle.Get())) {
            ThrowLastError(GetPath());
        }
    }

    FileMark GetMark() override {
        const std::optional<FileMark> mark = GetMarkOf(fHandle);
        if (!mark) {
            ThrowLastError(GetPath());
        }
        return *mark;
    }

    void Close() override {
        if (!fHandle.Close()) {
            ThrowLastError(GetPath());
        }
    }

  protected:
    uint32_t ReadAt(int64_t position, void* buffer, uint32_t count) override {
        OVERLAPPED place = AtPosition(position);
        DWORD got = 0;
        if (!ReadFile(fHandle.Get(), buffer, count, &got, &place) && GetLastError() != ERROR_HANDLE_EOF) {
            ThrowLastError(GetPath());
        }
        return got;
    }

    uint32_t WriteAt(int64_t position, const void* bytes, uint32_t count) override {
        AnnounceChange(MediumChange::kWrite, fPathOnDisk);
        OVERLAPPED place = AtPosition(position);
        DWORD put = 0;
        if (!WriteFile(fHandle.Get(), bytes, count, &put, &place)) {
            ThrowLastError(GetPath());
        }
        if (put == 0) {
            ThrowFileError(ERROR_WRITE_FAULT, GetPath());
        }
        return put;
    }

    void Resize(int64_t length) override {
        if (fAccess == FileAccess::kRead) {
            ThrowFileError(ERROR_ACCESS_DENIED, GetPath());
        }
        AnnounceChange(MediumChange::kSetLength, fPathOnDisk);
        LARGE_INTEGER end = {};
        end.QuadPart = length;
        if (!SetFilePointerEx(fHandle.Get(), end, nullptr, FILE_BEGIN) || !SetEndOfFile(fHandle.Get())) {
            ThrowLastError(GetPath());
        }
    }

  private:
    Handle fHandle;
    FileAccess fAccess;
    std::string fPathOnDisk;
};

Handle RequireDiskFile(HANDLE opened, const std::string& path) {
    Handle handle(opened);
    if (!handle.IsOpen()) {
        ThrowLastError(path);
    }
    if (GetFileType(handle.Get()) != FILE_TYPE_DISK) {
        ThrowFileError(ERROR_ACCESS_DENIED, path);
    }
    return handle;
}

}  // namespace

Handle OpenExistingFile(const std::string& path, FileAccess access) {
    const DWORD rights = access == FileAccess::kRead ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    return RequireDiskFile(CreateFileA(path.c_str(), rights, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr),
                           path);
}

std::unique_ptr<File> MakeDiskFile(Handle handle, FileAccess access, const std::string& path,
                                   const std::string& pathOnDisk) {
    return std::make_unique<DiskFile>(std::move(handle), access, path, pathOnDisk);
}

std::unique_ptr<File> OpenDiskFile(const std::string& path, FileAccess access) {
    return MakeDiskFile(OpenExistingFile(path, access), access, path, path);
}

std::unique_ptr<File> CreateDiskFile(const std::string& path) {
    constexpr DWORD kSharedWithNobody = 0;
    AnnounceChange(MediumChange::kCreateFile, path);
    Handle handle = RequireDiskFile(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, kSharedWithNobody,
                                                nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr),
                                    path);
    return MakeDiskFile(std::move(handle), FileAccess::kReadWrite, path, path);
}

}  // namespace Vantor::Platform
