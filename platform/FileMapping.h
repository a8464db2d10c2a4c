#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace Vantor::Platform {

// What a port supplies for MappedFile, which brings the rules about sizes and views; nothing else uses it.
// The file stays open, shared with readers and denied to writers, as long as the object lives.
class FileMapping {
  public:
    FileMapping() = default;
    FileMapping(const FileMapping&) = delete;
    FileMapping& operator=(const FileMapping&) = delete;
    virtual ~FileMapping() = default;

    // The file's length in bytes when it was opened.
    virtual int64_t GetLength() const = 0;

    // Maps the first `size` bytes, at least 1 and at most the file's length; null when the system refuses.
    virtual const uint8_t* Map(int64_t size) = 0;

    // Gives back what Map gave, with the same size.
    virtual void Unmap(const uint8_t* view, int64_t size) = 0;
};

// Opens an existing file for mapping. Throws FileException.
std::unique_ptr<FileMapping> OpenForMapping(const std::string& path);

}  // namespace Vantor::Platform
