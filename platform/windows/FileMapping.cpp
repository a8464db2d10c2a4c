#include "platform/FileMapping.h"

#include <windows.h>

#include <limits>

#include "platform/windows/OpenHandle.h"
#include "platform/windows/SystemError.h"

namespace Vantor::Platform {

namespace {

class WindowsFileMapping final : public FileMapping {
  public:
    explicit WindowsFileMapping(const std::string& path) : fFile(OpenExistingFile(path, FileAccess::kRead)) {
        LARGE_INTEGER length = {};
        if (!GetFileSizeEx(fFile.Get(), &length)) {
            ThrowLastError(path);
        }
        fLength = length.QuadPart;
    }

    int64_t GetLength() const override { return fLength; }

    const uint8_t* Map(int64_t size) override {
        if (static_cast<uint64_t>(size) > std::numeric_limits<SIZE_T>::max() || !HasMapping()) {
            return nullptr;
        }
        return static_cast<const uint8_t*>(
            MapViewOfFile(fMapping.Get(), FILE_MAP_READ, 0, 0, static_cast<SIZE_T>(size)));
    }

    void Unmap(const uint8_t* view, int64_t) override { UnmapViewOfFile(view); }

  private:
    // Made with the first view: an empty file, which has none, cannot be mapped at all.
    bool HasMapping() {
        if (!fMapping.IsOpen()) {
            fMapping = Handle(CreateFileMappingA(fFile.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
        }
        return fMapping.IsOpen();
    }

    Handle fFile;
    Handle fMapping;
    int64_t fLength = 0;
};

}  // namespace

std::unique_ptr<FileMapping> OpenForMapping(const std::string& path) {
    return std::make_unique<WindowsFileMapping>(path);
}

}  // namespace Vantor::Platform
