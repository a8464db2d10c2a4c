#pragma once

#include <string>

#include "platform/File.h"

namespace Vantor::Platform {

// What disk files and streams have in common: a position of their own, transfers of any length, and zeros in
// every byte that nobody wrote, which neither the system's files nor its streams promise.
class PositionedFile : public File {
  public:
    size_t Read(void* buffer, size_t count) override;
    void Write(const void* bytes, size_t count) override;
    void Seek(int64_t position) override;
    int64_t GetPosition() override { return fPosition; }
    void SetLength(int64_t length) override;

  protected:
    explicit PositionedFile(const std::string& path) : fPath(path) {}

    // One transfer each, of at least 1 byte; the bytes done, which may be fewer than asked for. Reading
    // gives 0 at the end.
    virtual uint32_t ReadAt(int64_t position, void* buffer, uint32_t count) = 0;
    virtual uint32_t WriteAt(int64_t position, const void* bytes, uint32_t count) = 0;

    // Cuts or extends the file; what is in the new bytes does not matter.
    virtual void Resize(int64_t length) = 0;

    const std::string& GetPath() const { return fPath; }

  private:
    void WriteAllAt(int64_t position, const void* bytes, size_t count);
    void FillWithZeros(int64_t from, int64_t to);
    void RequireOffset(int64_t offset) const;

    std::string fPath;             // as the file was opened
    int64_t fPosition = 0;         // never negative
    bool fMayBeBehindEnd = false;  // the position; false when it is certainly not
};

}  // namespace Vantor::Platform
