#pragma once

#include <memory>
#include <utility>

#include "platform/File.h"

namespace Vantor::Platform {

// A disk file opened to be replaced, with what keeps others from doing the same: the claim lives as long as
// this object, also once the file is closed.
class ClaimedFile final : public File {
  public:
    ClaimedFile(std::shared_ptr<void> claim, std::unique_ptr<File> file)
        : fClaim(std::move(claim)), fFile(std::move(file)) {}

    size_t Read(void* buffer, size_t count) override { return fFile->Read(buffer, count); }
    void Write(const void* bytes, size_t count) override { fFile->Write(bytes, count); }
    void Seek(int64_t position) override { fFile->Seek(position); }
    int64_t GetPosition() override { return fFile->GetPosition(); }
    int64_t GetLength() override { return fFile->GetLength(); }
    void SetLength(int64_t length) override { fFile->SetLength(length); }
    void Reserve(int64_t length) override { fFile->Reserve(length); }
    void StartFlush() override { fFile->StartFlush(); }
    void Flush() override { fFile->Flush(); }
    FileMark GetMark() override { return fFile->GetMark(); }
    void Close() override { fFile->Close(); }

    // Goes on with the claim on the file that is at the path from now on.
    void ChangeClaim(std::shared_ptr<void> claim) { fClaim = std::move(claim); }

  private:
    std::shared_ptr<void> fClaim;
    std::unique_ptr<File> fFile;  // goes first
};

}  // namespace Vantor::Platform
