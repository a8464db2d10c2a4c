#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace Vantor::Platform {

class FileMapping;

// A read-only mapping of a disk file, of which one view at a time is visible in memory. The file stays open,
// shared with other readers and denied to writers, as long as the object lives.
class MappedFile {
  public:
    // Opens an existing file for mapping. Throws FileException.
    explicit MappedFile(const std::string& path);
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    // The file's length in bytes when it was opened.
    int64_t GetLength() const;

    // Maps the first `size` bytes in place of the present view. False, and no view, when the system has no
    // room for a view of that size, or when `size` is below 1 or beyond the file's length.
    bool MapView(int64_t size);
    void UnmapView();

    // The view's bytes, valid until it is unmapped or replaced; null without a view.
    const uint8_t* GetView() const { return fView; }
    int64_t GetViewSize() const { return fViewSize; }

    // For tests: views larger than this many bytes cannot be had, as in a process short of address space;
    // 0 lifts the limit.
    static void LimitViewSizeForTesting(int64_t bytes);

  private:
    std::unique_ptr<FileMapping> fMapping;
    const uint8_t* fView = nullptr;
    int64_t fViewSize = 0;  // 0 without a view
};

}  // namespace Vantor::Platform
