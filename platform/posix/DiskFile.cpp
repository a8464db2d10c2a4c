#include "platform/posix/DiskFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "platform/MediumWatch.h"
#include "platform/posix/FileState.h"
#include "platform/posix/LockedFile.h"
#include "platform/posix/SystemError.h"

namespace Vantor::Platform {

namespace {

class DiskFile final : public File {
  public:
    DiskFile(Descriptor descriptor, FileAccess access, const std::string& path, const std::string& pathOnDisk)
        : fDescriptor(std::move(descriptor)), fAccess(access), fPath(path), fPathOnDisk(pathOnDisk) {}

    size_t Read(void* buffer, size_t count) override {
        auto* const bytes = static_cast<char*>(buffer);
        size_t done = 0;
        while (done < count) {
            const ssize_t got = RetryInterrupted(
                [&] { return pread(fDescriptor.Get(), bytes + done, count - done, fPosition); });
            if (got < 0) {
                ThrowFileError(errno, fPath);
            }
            if (got == 0) {
                break;
            }
            done += static_cast<size_t>(got);
            fPosition += got;
        }
        return done;
    }

    void Write(const void* bytes, size_t count) override {
        RequireWritable();
        AnnounceChange(MediumChange::kWrite, fPathOnDisk);
        const auto* next = static_cast<const char*>(bytes);
        while (count > 0) {
            const ssize_t put =
                RetryInterrupted([&] { return pwrite(fDescriptor.Get(), next, count, fPosition); });
            if (put < 0) {
                ThrowFileError(errno, fPath);
            }
            next += put;
            count -= static_cast<size_t>(put);
            fPosition += put;
        }
    }

    void Seek(int64_t position) override {
        RequireOffset(position);
        fPosition = position;
    }

    int64_t GetPosition() override { return fPosition; }

    int64_t GetLength() override { return GetState().st_size; }

    void SetLength(int64_t length) override {
        RequireWritable();
        RequireOffset(length);
        AnnounceChange(MediumChange::kSetLength, fPathOnDisk);
        if (RetryInterrupted([&] { return ftruncate(fDescriptor.Get(), length); }) != 0) {
            ThrowFileError(errno, fPath);
        }
    }

    void Reserve(int64_t length) override {
        RequireWritable();
        const bool isDone = RetryInterrupted([&] {
                                return fallocate(fDescriptor.Get(), FALLOC_FL_KEEP_SIZE, 0, length);
                            }) == 0;
        if (!isDone && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) {
            ThrowFileError(errno, fPath);
        }
    }

    // A hint: whether it was taken shows in Flush.
    void StartFlush() override {
        constexpr off_t kToTheEnd = 0;
        sync_file_range(fDescriptor.Get(), fFlushedUpTo, kToTheEnd, SYNC_FILE_RANGE_WRITE);
        fFlushedUpTo = fPosition;
    }

    void Flush() override {
        AnnounceChange(MediumChange::kFlush, fPathOnDisk);
        FlushDescriptor(fDescriptor, fPath);
    }

    FileMark GetMark() override { return MarkOf(GetState()); }

    void Close() override {
        if (!fDescriptor.Close() && errno != EINTR) {
            ThrowFileError(errno, fPath);
        }
    }

  private:
    struct stat GetState() const {
        struct stat state = {};
        if (fstat(fDescriptor.Get(), &state) != 0) {
            ThrowFileError(errno, fPath);
        }
        return state;
    }

    void RequireWritable() const {
        if (fAccess == FileAccess::kRead) {
            throw FileException(FileException::Cause::kAccessDenied, EBADF, fPath);
        }
    }

    void RequireOffset(int64_t offset) const {
        if (offset < 0) {
            throw FileException(FileException::Cause::kBadSeek, EINVAL, fPath);
        }
    }

    Descriptor fDescriptor;
    FileAccess fAccess;
    std::string fPath;  // as the file was opened
    std::string fPathOnDisk;
    int64_t fFlushedUpTo = 0;  // how far StartFlush has come
    int64_t fPosition = 0;     // never negative; may be behind the end
};

}  // namespace

void FlushDescriptor(const Descriptor& descriptor, const std::string& path) {
    const bool isDone = RetryInterrupted([&] { return fsync(descriptor.Get()); }) == 0;
    // EINVAL and EROFS: a file system with nothing between it and its medium.
    if (!isDone && errno != EINVAL && errno != EROFS) {
        ThrowFileError(errno, path);
    }
}

std::unique_ptr<File> MakeDiskFile(Descriptor descriptor, FileAccess access, const std::string& path,
                                   const std::string& pathOnDisk) {
    return std::make_unique<DiskFile>(std::move(descriptor), access, path, pathOnDisk);
}

std::unique_ptr<File> OpenDiskFile(const std::string& path, FileAccess access) {
    return MakeDiskFile(OpenLocked(path, access), access, path, path);
}

std::unique_ptr<File> CreateDiskFile(const std::string& path) {
    return MakeDiskFile(CreateLocked(path), FileAccess::kReadWrite, path, path);
}

}  // namespace Vantor::Platform
