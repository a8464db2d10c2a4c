#include "platform/StructuredStorage.h"

#include <objbase.h>
#include <objidl.h>
#include <windows.h>

#include <utility>

#include "platform/CodePage.h"
#include "platform/windows/ComPointer.h"
#include "platform/windows/PositionedFile.h"
#include "platform/windows/SystemError.h"

namespace Vantor::Platform {

namespace {

constexpr DWORD kNoReserved = 0;

// Throws unless the system did what it was asked for.
void Require(HRESULT result, const std::string& name) {
    if (FAILED(result)) {
        ThrowStorageError(result, name);
    }
}

class StorageStream final : public PositionedFile {
  public:
    StorageStream(ComPointer<IStream> stream, IStorage& storage, const std::string& name)
        : PositionedFile(name), fStream(std::move(stream)), fStorage(storage) {}

    int64_t GetLength() override {
        STATSTG state = {};
        Require(Stream().Stat(&state, STATFLAG_NONAME), GetPath());
        return static_cast<int64_t>(state.cbSize.QuadPart);
    }

    void Flush() override {
        Require(Stream().Commit(STGC_DEFAULT), GetPath());
        Require(fStorage.Commit(STGC_DEFAULT), GetPath());
    }

    void Close() override { fStream.reset(); }

  protected:
    uint32_t ReadAt(int64_t position, void* buffer, uint32_t count) override {
        ULONG got = 0;
        SeekTo(position);
        Require(Stream().Read(buffer, count, &got), GetPath());
        return got;
    }

    uint32_t WriteAt(int64_t position, const void* bytes, uint32_t count) override {
        ULONG put = 0;
        SeekTo(position);
        Require(Stream().Write(bytes, count, &put), GetPath());
        if (put == 0) {
            ThrowStorageError(STG_E_WRITEFAULT, GetPath());
        }
        return put;
    }

    void Resize(int64_t length) override {
        ULARGE_INTEGER size = {};
        size.QuadPart = static_cast<ULONGLONG>(length);
        Require(Stream().SetSize(size), GetPath());
    }

  private:
    IStream& Stream() const {
        if (fStream == nullptr) {
            ThrowStorageError(STG_E_INVALIDHANDLE, GetPath());
        }
        return *fStream;
    }

    void SeekTo(int64_t position) {
        LARGE_INTEGER place = {};
        place.QuadPart = position;
        Require(Stream().Seek(place, STREAM_SEEK_SET, nullptr), GetPath());
    }

    ComPointer<IStream> fStream;  // null when closed
    IStorage& fStorage;           // which outlives its streams
};

class CompoundFile final : public StructuredStorage {
  public:
    explicit CompoundFile(ComPointer<IStorage> storage) : fStorage(std::move(storage)) {}

    std::unique_ptr<File> OpenStream(const std::string& name, FileAccess access) override {
        const DWORD mode = access == FileAccess::kRead ? STGM_READ : STGM_READWRITE;
        IStream* stream = nullptr;
        Require(fStorage->OpenStream(ValidName(name).c_str(), nullptr, mode | STGM_SHARE_EXCLUSIVE,
                                     kNoReserved, &stream),
                name);
        return std::make_unique<StorageStream>(ComPointer<IStream>(stream), *fStorage, name);
    }

    std::unique_ptr<File> CreateStream(const std::string& name) override {
        constexpr DWORD kMode = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
        RequireNotOpen(name);
        IStream* stream = nullptr;
        Require(fStorage->CreateStream(ValidName(name).c_str(), kMode, kNoReserved, kNoReserved, &stream),
                name);
        return std::make_unique<StorageStream>(ComPointer<IStream>(stream), *fStorage, name);
    }

    bool HasStream(const std::string& name) override {
        IEnumSTATSTG* elements = nullptr;
        Require(fStorage->EnumElements(kNoReserved, nullptr, kNoReserved, &elements), name);
        const ComPointer<IEnumSTATSTG> owner(elements);
        const std::wstring wanted = ToHostText(name);
        STATSTG element = {};
        while (elements->Next(1, &element, nullptr) == S_OK) {
            const bool isWanted = element.type == STGTY_STREAM && IsSameName(element.pwcsName, wanted);
            CoTaskMemFree(element.pwcsName);
            if (isWanted) {
                return true;
            }
        }
        return false;
    }

    void RemoveStream(const std::string& name) override {
        Require(fStorage->DestroyElement(ValidName(name).c_str()), name);
    }

    void RenameStream(const std::string& from, const std::string& to) override {
        Require(fStorage->RenameElement(ValidName(from).c_str(), ValidName(to).c_str()), from);
    }

  private:
    static constexpr size_t kLongestName = 31;

    // Not every system refuses to replace a stream that is open.
    void RequireNotOpen(const std::string& name) {
        if (HasStream(name)) {
            OpenStream(name, FileAccess::kReadWrite)->Close();
        }
    }

    // The name as the system takes it, which does not check its length everywhere.
    static std::wstring ValidName(const std::string& name) {
        std::wstring wide = ToHostText(name);
        if (wide.empty() || wide.size() > kLongestName) {
            ThrowStorageError(STG_E_INVALIDNAME, name);
        }
        return wide;
    }

    static bool IsSameName(const wchar_t* element, const std::wstring& wanted) {
        constexpr int kUpToTerminator = -1;
        constexpr BOOL kIgnoreCase = TRUE;
        return CompareStringOrdinal(element, kUpToTerminator, wanted.c_str(), kUpToTerminator, kIgnoreCase) ==
               CSTR_EQUAL;
    }

    ComPointer<IStorage> fStorage;
};

}  // namespace

bool StructuredStorage::IsAvailable() { return true; }

std::unique_ptr<StructuredStorage> StructuredStorage::Create(const std::string& path) {
    constexpr DWORD kMode = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_DIRECT;
    IStorage* storage = nullptr;
    Require(StgCreateDocfile(ToHostText(path).c_str(), kMode, kNoReserved, &storage), path);
    return std::make_unique<CompoundFile>(ComPointer<IStorage>(storage));
}

std::unique_ptr<StructuredStorage> StructuredStorage::Open(const std::string& path, FileAccess access) {
    const DWORD mode = access == FileAccess::kRead ? STGM_READ | STGM_SHARE_DENY_WRITE
                                                   : STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
    IStorage* storage = nullptr;
    Require(
        StgOpenStorage(ToHostText(path).c_str(), nullptr, mode | STGM_DIRECT, nullptr, kNoReserved, &storage),
        path);
    return std::make_unique<CompoundFile>(ComPointer<IStorage>(storage));
}

}  // namespace Vantor::Platform
