#include "platform/StructuredStorage.h"

#include <cerrno>

#include "platform/FileException.h"

namespace Vantor::Platform {

namespace {

[[noreturn]] void RefuseStorage(const std::string& path) {
    throw FileException(FileException::Cause::kGeneric, ENOTSUP, path);
}

}  // namespace

bool StructuredStorage::IsAvailable() { return false; }

std::unique_ptr<StructuredStorage> StructuredStorage::Create(const std::string& path) { RefuseStorage(path); }

std::unique_ptr<StructuredStorage> StructuredStorage::Open(const std::string& path, FileAccess) {
    RefuseStorage(path);
}

}  // namespace Vantor::Platform
