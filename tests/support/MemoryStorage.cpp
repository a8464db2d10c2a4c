#include "tests/support/MemoryStorage.h"

#include <algorithm>
#include <cctype>

namespace VantorTest {

using Vantor::Platform::File;
using Vantor::Platform::FileAccess;
using Vantor::Platform::FileException;
using Cause = FileException::Cause;

class MemoryStorage::Stream : public File {
  public:
    Stream(const MemoryStorage& storage, std::string name, std::shared_ptr<Content> content,
           FileAccess access)
        : fStorage(storage), fName(std::move(name)), fStream(std::move(content)), fAccess(access) {
        fStream->fIsOpen = true;
    }

    ~Stream() override { Stream::Close(); }

    size_t Read(void* buffer, size_t count) override {
        fStorage.FailIf(Fault::kRead, Cause::kHardIO, fName);
        const size_t rest = fStream->fContent.size() - std::min(fPosition, fStream->fContent.size());
        count = std::min(count, rest);
        std::copy_n(fStream->fContent.begin() + static_cast<ptrdiff_t>(fPosition), count,
                    static_cast<uint8_t*>(buffer));
        fPosition += count;
        return count;
    }

    void Write(const void* bytes, size_t count) override {
        BeforeChange();
        if (count == 0) return;
        fStream->fContent.resize(std::max(fStream->fContent.size(), fPosition + count));
        std::copy_n(static_cast<const uint8_t*>(bytes), count,
                    fStream->fContent.begin() + static_cast<ptrdiff_t>(fPosition));
        fPosition += count;
    }

    void Seek(int64_t position) override {
        if (position < 0) throw FileException(Cause::kBadSeek, 0, fName);
        fPosition = static_cast<size_t>(position);
    }

    int64_t GetPosition() override { return static_cast<int64_t>(fPosition); }

    int64_t GetLength() override { return static_cast<int64_t>(fStream->fContent.size()); }

    void SetLength(int64_t length) override {
        BeforeChange();
        fStream->fContent.resize(static_cast<size_t>(length));
    }

    void Flush() override {
        fStorage.FailIf(Fault::kFlush, Cause::kHardIO, fName);
        fStream->fIsFlushed = true;
    }

    void Close() override {
        if (!fIsClosed) fStream->fIsOpen = false;
        fIsClosed = true;
    }

  private:
    void BeforeChange() {
        if (fAccess == FileAccess::kRead) throw FileException(Cause::kAccessDenied, 0, fName);
        fStorage.FailIf(Fault::kWrite, Cause::kDiskFull, fName);
        fStream->fIsFlushed = false;
    }

    const MemoryStorage& fStorage;
    std::string fName;
    std::shared_ptr<Content> fStream;
    FileAccess fAccess;
    size_t fPosition = 0;
    bool fIsClosed = false;
};

bool MemoryStorage::IgnoringCase::operator()(const std::string& a, const std::string& b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char first, char second) {
        return std::toupper(static_cast<unsigned char>(first)) <
               std::toupper(static_cast<unsigned char>(second));
    });
}

void MemoryStorage::FailIf(Fault fault, Cause cause, const std::string& name) const {
    if (fFault == fault) throw FileException(cause, 0, name);
}

MemoryStorage::Content& MemoryStorage::ClosedStream(const std::string& name) {
    const auto found = fStreams.find(name);
    if (found == fStreams.end()) throw FileException(Cause::kFileNotFound, 0, name);
    if (found->second->fIsOpen) throw FileException(Cause::kSharingViolation, 0, name);
    return *found->second;
}

void MemoryStorage::SetContent(const std::string& name, const Bytes& content) {
    std::shared_ptr<Content>& stream = fStreams[name];
    if (stream == nullptr) stream = std::make_shared<Content>();
    stream->fContent = content;
}

std::vector<std::string> MemoryStorage::ListStreams() const {
    std::vector<std::string> names;
    for (const auto& [name, content] : fStreams) names.push_back(name);
    return names;
}

std::unique_ptr<File> MemoryStorage::OpenStream(const std::string& name, FileAccess access) {
    ClosedStream(name);
    return std::make_unique<Stream>(*this, name, fStreams[name], access);
}

std::unique_ptr<File> MemoryStorage::CreateStream(const std::string& name) {
    if (HasStream(name)) ClosedStream(name);
    SetContent(name, {});
    return OpenStream(name, FileAccess::kReadWrite);
}

void MemoryStorage::RemoveStream(const std::string& name) {
    FailIf(Fault::kRemove, Cause::kAccessDenied, name);
    ClosedStream(name);
    fStreams.erase(name);
}

void MemoryStorage::RenameStream(const std::string& from, const std::string& to) {
    FailIf(Fault::kRename, Cause::kAccessDenied, from);
    ClosedStream(from);
    if (HasStream(to)) throw FileException(Cause::kAccessDenied, 0, to);
    auto stream = fStreams.extract(from);
    stream.key() = to;
    fStreams.insert(std::move(stream));
}

}  // namespace VantorTest
