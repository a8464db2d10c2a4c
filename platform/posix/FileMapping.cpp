#include "platform/FileMapping.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <limits>

#include "platform/posix/LockedFile.h"
#include "platform/posix/SystemError.h"

namespace Vantor::Platform {

namespace {

class PosixFileMapping final : public FileMapping {
  public:
    explicit PosixFileMapping(const std::string& path) : fDescriptor(OpenLocked(path, FileAccess::kRead)) {
        struct stat state = {};
        if (fstat(fDescriptor.Get(), &state) != 0) {
            ThrowFileError(errno, path);
        }
        fLength = state.st_size;
    }

    int64_t GetLength() const override { return fLength; }

    const uint8_t* Map(int64_t size) override {
        if (static_cast<uint64_t>(size) > std::numeric_limits<size_t>::max()) {
            return nullptr;
        }
        void* const view =
            mmap(nullptr, static_cast<size_t>(size), PROT_READ, MAP_SHARED, fDescriptor.Get(), 0);
        return view != MAP_FAILED ? static_cast<const uint8_t*>(view) : nullptr;
    }

    void Unmap(const uint8_t* view, int64_t size) override {
        munmap(const_cast<uint8_t*>(view), static_cast<size_t>(size));
    }

  private:
    Descriptor fDescriptor;
    int64_t fLength = 0;
};

}  // namespace

std::unique_ptr<FileMapping> OpenForMapping(const std::string& path) {
    return std::make_unique<PosixFileMapping>(path);
}

}  // namespace Vantor::Platform
