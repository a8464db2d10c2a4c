#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace Vantor::Platform {

// A file operation that the operating system refused. Thrown by value by everything in platform/ that
// touches files, and passed on unchanged by the layers above.
class FileException : public std::exception {
  public:
    enum class Cause {
        kGeneric,           // none of the others
        kFileNotFound,      // no such file
        kBadPath,           // a folder on the way does not exist, or the path is not usable
        kTooManyOpenFiles,  // the process or the system has no file handle left
        kAccessDenied,      // rights, a read-only medium, or a folder where a file was expected
        kDirectoryFull,     // no room for another entry
        kBadSeek,           // a position that the file cannot have
        kHardIO,            // the device failed
        kSharingViolation,  // somebody else has the file open in a way that excludes this use
        kDiskFull,          // no space left, or a quota or size limit reached
        kEndOfFile,         // fewer bytes than were needed
    };

    // `osError` is the operating system's own number (GetLastError, errno or an HRESULT), 0 when there is
    // none. `fileName` is the path, or a word for what was worked on where the path is not known.
    FileException(Cause cause, int32_t osError, std::string fileName);

    Cause GetCause() const { return fCause; }
    int32_t GetOsError() const { return fOsError; }
    const std::string& GetFileName() const { return fFileName; }

    // "<file name>: <what happened>", in English, fit to be shown to a user or traced.
    const char* what() const noexcept override { return fMessage.c_str(); }

    // The same failure under another name: layers that know what the bytes are say so.
    FileException WithFileName(const std::string& fileName) const;

  private:
    Cause fCause;
    int32_t fOsError;
    std::string fFileName;
    std::string fMessage;
};

// The text of a cause alone, such as "file not found".
const char* CauseText(FileException::Cause cause);

}  // namespace Vantor::Platform
