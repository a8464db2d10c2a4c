#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/FileMark.h"

namespace Vantor::Platform {

// What an open file may be used for.
enum class FileAccess { kRead, kReadWrite };

// An open file: a disk file, or a stream inside structured storage (see StructuredStorage). Every operation
// throws FileException on failure, naming the path or stream. Not for use by several threads at once.
class File {
  public:
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // Closes the file if that has not happened; a failure then goes unreported.
    virtual ~File() = default;

    // Reads up to `count` bytes at the position and advances it. Fewer than `count` only at the end of the
    // file; 0 at the end.
    virtual size_t Read(void* buffer, size_t count) = 0;

    // Writes all `count` bytes at the position and advances it; the file grows as needed.
    virtual void Write(const void* bytes, size_t count) = 0;

    // Sets the position, in bytes from the start. It may lie behind the end: bytes between the end and the
    // next write then read as zero. A negative position is kBadSeek.
    virtual void Seek(int64_t position) = 0;
    virtual int64_t GetPosition() = 0;

    // The file's length in bytes.
    virtual int64_t GetLength() = 0;

    // Cuts the file or extends it with zeros. The position stays.
    virtual void SetLength(int64_t length) = 0;

    // Sets room on the volume aside for a file of that length, so that writing it does not fail for lack of
    // room; kDiskFull when there is none. The length stays. Where a volume cannot do that, nothing happens.
    virtual void Reserve(int64_t /*length*/) {}

    // Has the system begin to hand what was written so far to the medium, and does not wait for it: for long
    // files that are going to be flushed at the end.
    virtual void StartFlush() {}

    // Hands everything written so far to the medium; returns when it is there.
    virtual void Flush() = 0;

    // Of the open file itself, which may have lost its path. Of a stream always the same.
    virtual FileMark GetMark() { return {}; }

    // Closes the file; a second call does nothing. Other operations need an open file.
    virtual void Close() = 0;
};

// Opens an existing disk file, denying others to write it while it is open: readers share the file, a writer
// has it alone. A conflict with another holder is kSharingViolation, reported at once. What is opened for
// writing is the file that is at the path once it is held, never one that was replaced meanwhile. A folder, a
// pipe or a device is kAccessDenied.
std::unique_ptr<File> OpenDiskFile(const std::string& path, FileAccess access);

// Creates a disk file, or empties the existing one, open for reading and writing and denied to others until
// closed. An existing file that others hold keeps its content and is kSharingViolation.
std::unique_ptr<File> CreateDiskFile(const std::string& path);

}  // namespace Vantor::Platform
