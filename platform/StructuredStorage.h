#pragma once

#include <memory>
#include <string>

#include "platform/File.h"

namespace Vantor::Platform {

// A compound file: one disk file that holds named streams. A port whose system has no such thing says so in
// IsAvailable and refuses Create and Open with FileException (kGeneric).
class StructuredStorage {
  public:
    static bool IsAvailable();

    // Create replaces a file that is there; Open needs one. The storage is held alone until destroyed when
    // it can be written, shared with readers otherwise. Both throw FileException.
    static std::unique_ptr<StructuredStorage> Create(const std::string& path);
    static std::unique_ptr<StructuredStorage> Open(const std::string& path, FileAccess access);

    StructuredStorage() = default;
    StructuredStorage(const StructuredStorage&) = delete;
    StructuredStorage& operator=(const StructuredStorage&) = delete;
    virtual ~StructuredStorage() = default;

    // Streams are opened alone (exclusive sharing): a stream that is open already cannot be opened again
    // until the first File is closed (kSharingViolation or kAccessDenied, as the system says). A stream name
    // has at most 31 characters. The File must be closed before the storage is destroyed.
    virtual std::unique_ptr<File> OpenStream(const std::string& name, FileAccess access) = 0;
    virtual std::unique_ptr<File> CreateStream(const std::string& name) = 0;

    virtual bool HasStream(const std::string& name) = 0;
    virtual void RemoveStream(const std::string& name) = 0;

    // Gives a stream another name; a stream that has the new name already must be removed first.
    virtual void RenameStream(const std::string& from, const std::string& to) = 0;
};

}  // namespace Vantor::Platform
