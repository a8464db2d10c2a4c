#include "platform/MappedFile.h"

#include <atomic>
#include <limits>

#include "platform/FileMapping.h"

namespace Vantor::Platform {

namespace {

constexpr int64_t kNoLimit = std::numeric_limits<int64_t>::max();

std::atomic<int64_t> viewSizeLimit{kNoLimit};

}  // namespace

MappedFile::MappedFile(const std::string& path) : fMapping(OpenForMapping(path)) {}

MappedFile::~MappedFile() { UnmapView(); }

int64_t MappedFile::GetLength() const { return fMapping->GetLength(); }

bool MappedFile::MapView(int64_t size) {
    UnmapView();
    if (size < 1 || size > GetLength() || size > viewSizeLimit) {
        return false;
    }
    fView = fMapping->Map(size);
    fViewSize = fView != nullptr ? size : 0;
    return fView != nullptr;
}

void MappedFile::UnmapView() {
    if (fView != nullptr) {
        fMapping->Unmap(fView, fViewSize);
    }
    fView = nullptr;
    fViewSize = 0;
}

void MappedFile::LimitViewSizeForTesting(int64_t bytes) { viewSizeLimit = bytes > 0 ? bytes : kNoLimit; }

}  // namespace Vantor::Platform
