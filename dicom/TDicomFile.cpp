#include "dicom/TDicomFile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <map>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "dicom/FileLayout.h"
#include "dicom/TException.h"
#include "dicom/TTextUtil.h"
#include "platform/Ascii.h"
#include "platform/Clock.h"
#include "platform/FileException.h"
#include "platform/FileReplacement.h"
#include "platform/StructuredStorage.h"

namespace Vantor {

using namespace FileLayout;
using Platform::FileException;

namespace {

// The first group that is not part of the meta information.
constexpr uint16_t kFirstMainGroup = 0x0003;

// The names under which hosts know the failures of input and output.
constexpr char kImageFile[] = "image file";
constexpr char kImageData[] = "image data";
constexpr char kImageFilePosition[] = "image file position";

constexpr std::chrono::seconds kLongestWait(50);
constexpr std::chrono::milliseconds kNoRest(0);

// Room that data sets are given. What is read may grow to a multiple of its size, a new one to fixed sizes.
constexpr int64_t kMetaRoomFactor = 4;
constexpr int64_t kGrowDivisor = 4;
constexpr int64_t kSmallestGrowth = 16384;
constexpr int64_t kRoomFactor = 20;
constexpr int64_t kSmallestRoom = 20480000;
constexpr uint32_t kNewDataSetSize = 102400;
constexpr int32_t kNewDataSetRoom = 0x5000000;
constexpr uint32_t kNewMetaSize = 1024;
constexpr int32_t kNewMetaRoom = 20480;

// (0002,0001) as files of this library have always carried it.
constexpr std::array<uint8_t, 2> kMetaVersion = {0x01, 0x00};

// Where a copy onto the file itself is gathered.
constexpr char kTemporaryPrefix[] = "VNT";
constexpr char kTemporaryStream[] = "Temp";
constexpr char kOtherTemporaryStream[] = "Temp1";

constexpr int64_t kKilobyte = 1024;

// A path no longer than this is a drive at most ("C:\"): no file has been given.
constexpr size_t kLongestPathWithoutFile = 3;

TException* NoDicomFile() { return new TException(ErrorNumbers::kRecordStructure, "Invalid Dicom File"); }

TException* NoMemory() { return new TException(ErrorNumbers::kFileBufferMemory, "Can't get memory"); }

// A data set's sizes are signed 32-bit numbers, so a longer file could be read but not held.
bool FitsDataSet(int64_t size) { return size <= std::numeric_limits<int32_t>::max(); }

std::unique_ptr<uint8_t[]> AllocateFileBuffer(int64_t size) {
    std::unique_ptr<uint8_t[]> buffer;
    if (FitsDataSet(size)) buffer.reset(new (std::nothrow) uint8_t[static_cast<size_t>(size)]);
    if (buffer == nullptr) throw NoMemory();
    return buffer;
}

// What a data set of a given size may grow to: the wanted room as far as data sets go at all, but never
// less than what it holds.
int32_t RoomFor(int64_t size, int64_t wanted) {
    const int64_t possible = std::min<int64_t>(wanted, TDicomDataSet::kDefaultMaximumSize);
    return static_cast<int32_t>(std::max(possible, size));
}

// An owning data set with a copy of the bytes.
std::unique_ptr<TDicomDataSet> CopyToDataSet(const uint8_t* bytes, int64_t size, bool isExplicit,
                                             bool isBigEndian, int64_t growBy, int32_t room,
                                             uintptr_t context) {
    auto dataSet = std::make_unique<TDicomDataSet>(isExplicit, isBigEndian, static_cast<uint32_t>(size),
                                                   static_cast<uint32_t>(growBy), room, context);
    dataSet->SetDataSetSize(static_cast<int32_t>(size));
    std::memcpy(dataSet->GetDataSet(), bytes, static_cast<size_t>(size));
    return dataSet;
}

// Measures the meta information: everything before the first element of a later group.
int32_t MeasureMeta(const uint8_t* bytes, int64_t count) {
    const auto size = static_cast<int32_t>(std::min<int64_t>(count, std::numeric_limits<int32_t>::max()));
    // Only read, never changed.
    const TDicomDataSet elements(true, false, const_cast<uint8_t*>(bytes), size, size);
    if (!elements.FindElement(Tags::kMediaStorageSOPClassUID)) throw NoDicomFile();
    uint16_t group = 0;
    int32_t offset = TDicomDataSet::kFromStart;
    while (group < kFirstMainGroup) {
        if (!elements.GetNextElement(offset, &group, nullptr, nullptr, nullptr, nullptr, 0, &offset)) {
            throw NoDicomFile();
        }
    }
    return offset;
}

// False, and an empty text, when the element is absent. Of the padding one NUL is dropped.
bool ReadUid(const TDicomDataSet& meta, Tag tag, TKeptUid& kept) {
    TUidText uid;
    const bool isThere = meta.FindElement(tag, nullptr, &uid.fLength, uid.fText, kMaximumUidLength);
    uid.fLength = std::min<uint32_t>(uid.fLength, kMaximumUidLength);
    if (uid.fLength > 0 && uid.fText[uid.fLength - 1] == '\0') --uid.fLength;
    kept.Set(uid);
    return isThere;
}

// Compares a stored UID with a constant over the stored length only: an empty UID, and one that breaks off
// early, select the first constant they are held against. Files in the field depend on it.
bool Selects(const TUidText& stored, const char* uid) {
    TUidText wanted;  // with NULs behind the end, so that more padding than is usual does not matter
    wanted.Set(uid);
    return TTextUtil().CompareBytes(stored.fText, wanted.fText, stored.fLength);
}

// Runs an operation on a file; its failures name what the bytes are instead of the path.
template <typename Operation>
auto NamingFailures(const char* name, Operation operation) {
    try {
        return operation();
    } catch (const FileException& error) {
        throw error.WithFileName(name);
    }
}

std::unique_ptr<Platform::File> CreateFileAt(const TFileSpec& fileSpec) {
    if (fileSpec.fStorage != nullptr) return fileSpec.fStorage->CreateStream(fileSpec.fPath);
    return Platform::CreateDiskFile(fileSpec.fPath);
}

void RemoveFileAt(const TFileSpec& fileSpec) {
    if (fileSpec.fPath[0] == '\0') return;
    try {
        if (fileSpec.fStorage != nullptr) {
            fileSpec.fStorage->RemoveStream(fileSpec.fPath);
        } else {
            Platform::RemoveFile(fileSpec.fPath);
        }
    } catch (const FileException&) {
        // What cannot be removed stays.
    }
}

// Structured storage does not tell stream names apart by case.
bool IsSameStreamName(std::string_view a, std::string_view b) {
    return Platform::UpperCased(a) == Platform::UpperCased(b);
}

// The place where a copy of a file onto itself is gathered.
TFileSpec MakeTemporarySpec(const TFileSpec& fileSpec) {
    if (fileSpec.fStorage != nullptr) {
        const bool isTaken = IsSameStreamName(fileSpec.fPath, kTemporaryStream);
        return TFileSpec(isTaken ? kOtherTemporaryStream : kTemporaryStream, fileSpec.fStorage);
    }
    const std::string path = Platform::MakeTemporaryFile(kTemporaryPrefix);
    if (!TFileSpec::FitsPath(path)) {
        Platform::RemoveFile(path);
        throw FileException(FileException::Cause::kBadPath, 0, path);
    }
    return TFileSpec(path);
}

// The disk files that are open, and which thread opened each: to wait for one's own would be to wait for
// ever.
class OpenFiles {
  public:
    void Add(const TDicomFile* file) {
        const std::lock_guard<std::mutex> lock(fMutex);
        fFiles[file] = std::this_thread::get_id();
    }
    void Remove(const TDicomFile* file) {
        const std::lock_guard<std::mutex> lock(fMutex);
        fFiles.erase(file);
    }
    bool HasOfThisThread(const char* path) const {
        std::vector<std::string> own;
        {
            const std::lock_guard<std::mutex> lock(fMutex);
            for (const auto& [file, thread] : fFiles) {
                const bool isOwn = thread == std::this_thread::get_id();
                if (isOwn && file->GetFileSpec()->fStorage == nullptr)
                    own.emplace_back(file->GetFileSpec()->fPath);
            }
        }
        return std::any_of(own.begin(), own.end(),
                           [path](const std::string& open) { return Platform::IsSameFile(open, path); });
    }

    // Never destroyed: a file that a host keeps to the very end is closed after everything else.
    static OpenFiles& Instance() {
        static OpenFiles& files = *new OpenFiles;
        return files;
    }

  private:
    mutable std::mutex fMutex;
    std::map<const TDicomFile*, std::thread::id> fFiles;
};

}  // namespace

TDicomFile::TDicomFile() = default;

TDicomFile::TDicomFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context)
    : TDicomFile(owner, fileSpec, context, 0, 0) {}

TDicomFile::TDicomFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context, uintptr_t firstValue,
                       uintptr_t secondValue)
    : fOwner(owner), fContext(context), fFileSpec(fileSpec), fValues{firstValue, secondValue} {}

TDicomFile::TDicomFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context,
                       std::unique_ptr<TDicomDataSet> dataSet, const char* sopClassUID,
                       const char* sopInstanceUID, const char* transferSyntaxUID,
                       const char* implementationClassUID, bool isBigEndian) {
    InitNewFile(owner, fileSpec, context, std::move(dataSet), sopClassUID, sopInstanceUID, transferSyntaxUID,
                implementationClassUID, isBigEndian);
}

TDicomFile::~TDicomFile() {
    CloseFile();
    if (fFile != nullptr) OpenFiles::Instance().Remove(this);  // opened by another thread
    if (fCopyFile != nullptr) AbandonCopy();
}

// ---- Identity ----

bool TDicomFile::GetSOPClassUID(char* buffer) { return fSOPClassUID.Get().CopyTo(buffer); }

bool TDicomFile::GetSOPInstanceUID(char* buffer) { return fSOPInstanceUID.Get().CopyTo(buffer); }

void TDicomFile::SetSOPClassUID(const char* text) {
    fIsModified = true;
    TIODSource::SetSOPClassUID(text);
    PutUid(fMetaDataSet.get(), Tags::kMediaStorageSOPClassUID, fSOPClassUID.Get());
}

void TDicomFile::SetSOPInstanceUID(const char* text) {
    fIsModified = true;
    TIODSource::SetSOPInstanceUID(text);
    PutUid(fMetaDataSet.get(), Tags::kMediaStorageSOPInstanceUID, fSOPInstanceUID.Get());
}

// ---- New files ----

void TDicomFile::InitNewFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context,
                             std::unique_ptr<TDicomDataSet> dataSet, const char* sopClassUID,
                             const char* sopInstanceUID, const char* transferSyntaxUID,
                             const char* implementationClassUID, bool isBigEndian) {
    InitUnwrittenFile(owner, fileSpec, context, std::move(dataSet), sopClassUID, sopInstanceUID,
                      transferSyntaxUID, implementationClassUID, isBigEndian);
    CreateFileAt(fFileSpec)->Close();
}

void TDicomFile::InitUnwrittenFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context,
                                   std::unique_ptr<TDicomDataSet> dataSet, const char* sopClassUID,
                                   const char* sopInstanceUID, const char* transferSyntaxUID,
                                   const char* implementationClassUID, bool isBigEndian) {
    Reset();
    fOwner = owner;
    fContext = context;
    fFileSpec = fileSpec;
    fSOPClassUID.Set(sopClassUID);
    fSOPInstanceUID.Set(sopInstanceUID);
    fTransferSyntaxUID.Set(transferSyntaxUID);
    if (dataSet == nullptr) {
        dataSet = std::make_unique<TDicomDataSet>(true, isBigEndian, kNewDataSetSize, kNewDataSetSize,
                                                  kNewDataSetRoom, fContext);
    }
    fDataSet = std::move(dataSet);
    fIsExplicit = fDataSet->IsExplicit();
    fIsBigEndian = fDataSet->IsBigEndian();
    fMetaDataSet = MakeMetaDataSet(transferSyntaxUID, implementationClassUID);
}

void TDicomFile::Reset() {
    CloseFile();
    if (fCopyFile != nullptr) AbandonCopy();
    fDataSet.reset();
    fMetaDataSet.reset();
    fIsModified = false;
    fDataOffset = 0;
    fDataLength = 0;
    fFileSize = 0;
    fValues[0] = 0;
    fValues[1] = 0;
    fLastWriteTime = {};
}

std::unique_ptr<TDicomDataSet> TDicomFile::MakeMetaDataSet(const char* transferSyntaxUID,
                                                           const char* implementationClassUID) const {
    TUidText transferSyntax;
    transferSyntax.Set(transferSyntaxUID);
    TUidText implementation;
    implementation.Set(implementationClassUID);
    auto meta =
        std::make_unique<TDicomDataSet>(true, false, kNewMetaSize, kNewMetaSize, kNewMetaRoom, fContext);
    meta->PutElement(Tags::kFileMetaInformationVersion, Vr::kOB, kMetaVersion.size(), kMetaVersion.data(),
                     kMetaVersion.size());
    PutUid(meta.get(), Tags::kMediaStorageSOPClassUID, fSOPClassUID.Get());
    PutUid(meta.get(), Tags::kMediaStorageSOPInstanceUID, fSOPInstanceUID.Get());
    PutUid(meta.get(), Tags::kTransferSyntaxUID, transferSyntax);
    PutUid(meta.get(), Tags::kImplementationClassUID, implementation);
    return meta;
}

void TDicomFile::CreateEmptyFile(bool isExplicit, bool isBigEndian) {
    fIsExplicit = isExplicit;
    fIsBigEndian = isBigEndian;
    CreateFileAt(fFileSpec)->Close();
}

void TDicomFile::DeleteDiskFile() { RemoveFileAt(fFileSpec); }

// ---- Opening and closing ----

void TDicomFile::OpenFile(Platform::FileAccess access) {
    std::unique_lock<std::recursive_mutex> lock(fLock);
    if (IsOpen()) return;
    std::unique_ptr<Platform::File> file = fFileSpec.fStorage != nullptr
                                               ? fFileSpec.fStorage->OpenStream(fFileSpec.fPath, access)
                                               : OpenWaitingForOthers(access);
    fFileSize = file->GetLength();
    OpenFiles::Instance().Add(this);
    fFile = std::move(file);
    lock.release();  // CloseFile unlocks
}

// Another program that holds the file usually lets go of it within seconds.
std::unique_ptr<Platform::File> TDicomFile::OpenWaitingForOthers(Platform::FileAccess access) const {
    Platform::Clock& clock = Platform::Clock::Current();
    const auto firstAttempt = clock.Now();
    std::optional<bool> isOwn;
    for (;;) {
        try {
            if (fIsReplaced && access == Platform::FileAccess::kReadWrite) {
                return Platform::OpenDiskFileToReplace(fFileSpec.fPath);
            }
            return Platform::OpenDiskFile(fFileSpec.fPath, access);
        } catch (const FileException& error) {
            if (error.GetCause() != FileException::Cause::kSharingViolation) throw;
            if (!isOwn) isOwn = OpenFiles::Instance().HasOfThisThread(fFileSpec.fPath);
            if (*isOwn || clock.Now() - firstAttempt >= kLongestWait) throw;
        }
        clock.Sleep(kNoRest);
    }
}

void TDicomFile::CloseFile() {
    // A file that another thread has open is not this one's to close.
    const std::unique_lock<std::recursive_mutex> lock(fLock, std::try_to_lock);
    if (!lock.owns_lock() || !IsOpen()) return;
    try {
        fFile->Close();
    } catch (const FileException&) {
        // Nobody who closes a file can do anything about it; writers flush.
    }
    fFile.reset();
    OpenFiles::Instance().Remove(this);
    fLock.unlock();
}

Platform::File& TDicomFile::OpenedFile() {
    if (fFile == nullptr) throw FileException(FileException::Cause::kGeneric, 0, fFileSpec.fPath);
    return *fFile;
}

// ---- Reading ----

bool TDicomFile::ReadMetaHeader() {
    std::array<uint8_t, kMetaHeaderReadSize> bytes;
    SeekTo(OpenedFile(), 0);
    const size_t count = ReadBytes(OpenedFile(), bytes.data(), bytes.size());
    return ParseMetaHeader(bytes.data(), static_cast<int64_t>(count));
}

bool TDicomFile::ReadFile() {
    Platform::File& file = OpenedFile();
    // A film or another large file among the images is not read to its end only to find out what it is.
    std::array<uint8_t, kMetaOffset> start;
    SeekTo(file, 0);
    CheckPrefix(start.data(), static_cast<int64_t>(ReadBytes(file, start.data(), start.size())));
    const int64_t length = file.GetLength();
    const std::unique_ptr<uint8_t[]> bytes = AllocateFileBuffer(length);
    SeekTo(file, 0);
    fFileSize = static_cast<int64_t>(ReadBytes(file, bytes.get(), static_cast<size_t>(length)));
    if (ParseMetaHeader(bytes.get(), fFileSize) && ParseDataSet(bytes.get(), fFileSize)) return true;
    fDataSet.reset();
    return false;
}

void TDicomFile::CheckPrefix(const uint8_t* bytes, int64_t count) {
    if (count < kMetaOffset) throw NoDicomFile();
    if (!TTextUtil().CompareBytes(bytes + kPreambleSize, kPrefix.data(), kPrefix.size())) throw NoDicomFile();
}

bool TDicomFile::ParseMetaHeader(const uint8_t* bytes, int64_t count) {
    fMetaDataSet.reset();
    CheckPrefix(bytes, count);
    const uint8_t* metaBytes = bytes + kMetaOffset;
    const int32_t metaSize = MeasureMeta(metaBytes, count - kMetaOffset);
    std::unique_ptr<TDicomDataSet> meta = CopyToDataSet(
        metaBytes, metaSize, true, false, metaSize, RoomFor(metaSize, metaSize * kMetaRoomFactor), fContext);
    const bool hasSOPClass = ReadUid(*meta, Tags::kMediaStorageSOPClassUID, fSOPClassUID);
    const bool hasTransferSyntax = ReadUid(*meta, Tags::kTransferSyntaxUID, fTransferSyntaxUID);
    ReadUid(*meta, Tags::kMediaStorageSOPInstanceUID, fSOPInstanceUID);
    fMetaDataSet = std::move(meta);
    if (!hasSOPClass || !hasTransferSyntax) return false;
    fDataOffset = kMetaOffset + metaSize;
    fDataLength = std::max<int64_t>(fFileSize - fDataOffset, 0);
    ApplyTransferSyntax();
    return true;
}

// Every compressed transfer syntax is explicit little endian outside its pixel data.
void TDicomFile::ApplyTransferSyntax() {
    fIsExplicit = true;
    fIsBigEndian = false;
    if (Selects(fTransferSyntaxUID.Get(), Uids::kImplicitVRLittleEndian)) {
        fIsExplicit = false;
    } else if (Selects(fTransferSyntaxUID.Get(), Uids::kExplicitVRLittleEndian)) {
        return;
    } else if (Selects(fTransferSyntaxUID.Get(), Uids::kExplicitVRBigEndian)) {
        fIsBigEndian = true;
    }
}

bool TDicomFile::ParseDataSet(const uint8_t* bytes, int64_t count) {
    fDataSet.reset();
    CheckPrefix(bytes, count);
    if (fFileSize == 0 || fDataOffset == 0) return false;
    const int64_t length = std::min(fDataLength, count - fDataOffset);
    if (length <= 0) return false;
    if (!FitsDataSet(length)) throw NoMemory();
    fDataSet = CopyToDataSet(bytes + fDataOffset, length, fIsExplicit, fIsBigEndian,
                             std::max(length / kGrowDivisor, kSmallestGrowth),
                             RoomFor(length, std::max(length * kRoomFactor, kSmallestRoom)), fContext);
    return true;
}

// ---- Writing ----

void TDicomFile::WriteFile() {
    Platform::File& file = OpenedFile();
    if (fMetaDataSet == nullptr || fDataSet == nullptr) throw NoDicomFile();
    WriteContent(file, *fMetaDataSet, *fDataSet);
}

void TDicomFile::WriteContent(Platform::File& file, const TDicomDataSet& meta, const TDicomDataSet& dataSet) {
    NamingFailures(kImageFile, [&] {
        SetFileLength(file, 0);
        SeekTo(file, 0);
        WritePreamble(file);
        for (const TDicomDataSet* part : {&meta, &dataSet}) {
            WriteBytes(file, part->GetDataSet(), static_cast<size_t>(part->GetDataSetSize()));
        }
        file.Flush();
    });
}

void TDicomFile::WritePreamble(Platform::File& file) {
    std::array<char, kMetaOffset> preamble{};
    std::copy(kPrefix.begin(), kPrefix.end(), preamble.begin() + kPreambleSize);
    WriteBytes(file, preamble.data(), preamble.size());
}

size_t TDicomFile::ReadBytes(Platform::File& file, void* buffer, size_t count) {
    return NamingFailures(kImageData, [&] { return file.Read(buffer, count); });
}

void TDicomFile::SeekTo(Platform::File& file, int64_t position) {
    NamingFailures(kImageFilePosition, [&] { file.Seek(position); });
}

void TDicomFile::WriteBytes(Platform::File& file, const void* bytes, size_t count) {
    NamingFailures(kImageFile, [&] { file.Write(bytes, count); });
}

void TDicomFile::SetFileLength(Platform::File& file, int64_t length) {
    NamingFailures(kImageFile, [&] { file.SetLength(length); });
}

// ---- Copying ----

int32_t TDicomFile::BeginCopy(const TFileSpec& destination, int64_t& size) {
    if (fCopyFile != nullptr) AbandonCopy();
    // Opened before anything is created, so that a missing file costs no destination.
    OpenFile(Platform::FileAccess::kRead);
    try {
        fFileSize = fFile->GetLength();
        fChunk.resize(kChunkSize);
        CreateCopyFile(destination);
    } catch (...) {
        CloseFile();
        ForgetCopy();
        throw;
    }
    fCopyPosition = 0;
    size = fFileSize;
    return 0;
}

bool TDicomFile::IsThisFile(const TFileSpec& destination) const {
    if (destination.fStorage != fFileSpec.fStorage) return false;
    if (fFileSpec.fStorage != nullptr) return IsSameStreamName(destination.fPath, fFileSpec.fPath);
    return TTextUtil().EqualStrings(destination.fPath, fFileSpec.fPath) ||
           Platform::IsSameFile(destination.fPath, fFileSpec.fPath);
}

void TDicomFile::CreateCopyFile(const TFileSpec& destination) {
    fIsCopyTemporary = IsThisFile(destination);
    fCopySpec = fIsCopyTemporary ? MakeTemporarySpec(fFileSpec) : destination;
    try {
        fCopyFile = CreateFileAt(fCopySpec);
    } catch (const FileException&) {
        if (fIsCopyTemporary) RemoveFileAt(fCopySpec);
        throw;
    }
}

int64_t TDicomFile::CopyNextChunk() {
    if (fCopyFile == nullptr) return 0;
    // Reading the file anew during the copy may have shown that it has become shorter.
    if (fFileSize < fCopyPosition) throw FileException(FileException::Cause::kEndOfFile, 0, kImageData);
    const auto count = static_cast<size_t>(std::min<int64_t>(fFileSize - fCopyPosition, kChunkSize));
    SeekTo(OpenedFile(), fCopyPosition);
    if (ReadBytes(OpenedFile(), fChunk.data(), count) < count) {
        throw FileException(FileException::Cause::kEndOfFile, 0, kImageData);
    }
    WriteBytes(*fCopyFile, fChunk.data(), count);
    fCopyPosition += static_cast<int64_t>(count);
    return fFileSize - fCopyPosition;
}

void TDicomFile::EndCopy(const TFileSpec* destination) {
    if (fCopyFile == nullptr) return;
    CloseFile();
    if (destination != nullptr) {
        CommitCopy(*destination);
    } else {
        AbandonCopy();
    }
}

void TDicomFile::CommitCopy(const TFileSpec& destination) {
    try {
        // The copy is what counts from now on, and the old content may go away.
        fCopyFile->Flush();
        fCopyFile->Close();
        if (fIsCopyTemporary) PutCopyInPlace(destination);
    } catch (...) {
        AbandonCopy();
        throw;
    }
    fFileSpec = destination;
    ForgetCopy();
}

void TDicomFile::PutCopyInPlace(const TFileSpec& destination) {
    const std::string temporary = fCopySpec.fPath;
    if (destination.fStorage == nullptr) {
        Platform::MoveFileReplacing(temporary, destination.fPath);
        return;
    }
    destination.fStorage->RemoveStream(fFileSpec.fPath);
    // From here on the temporary stream is all there is: should it keep its name, it stays.
    fCopySpec = TFileSpec();
    destination.fStorage->RenameStream(temporary, destination.fPath);
}

void TDicomFile::AbandonCopy() {
    fCopyFile.reset();
    RemoveFileAt(fCopySpec);
    ForgetCopy();
}

void TDicomFile::ForgetCopy() {
    fCopyFile.reset();
    fCopySpec = TFileSpec();
    fIsCopyTemporary = false;
    fCopyPosition = 0;
    fChunk = std::vector<uint8_t>();
}

// ---- Size and time ----

int64_t TDicomFile::GetHeaderSize() const {
    return fMetaDataSet == nullptr ? kMetaOffset : GetHeaderSizeWith(*fMetaDataSet);
}

int64_t TDicomFile::GetHeaderSizeWith(const TDicomDataSet& meta) {
    return kMetaOffset + meta.GetDataSetSize();
}

uint32_t TDicomFile::GetFileSizeKB() {
    // Held throughout, so that a file that is open is one that this thread has opened.
    const std::lock_guard<std::recursive_mutex> lock(fLock);
    const bool wasOpen = IsOpen();
    int64_t length = 0;
    try {
        OpenFile(Platform::FileAccess::kRead);
        length = fFile->GetLength();
    } catch (const std::exception&) {
        // A file that cannot be measured counts for nothing.
    }
    if (!wasOpen) CloseFile();
    const int64_t kilobytes = (length + 1) / kKilobyte;
    return static_cast<uint32_t>(std::min<int64_t>(kilobytes, std::numeric_limits<uint32_t>::max()));
}

void TDicomFile::UpdateModTime() {
    if (const auto time = Platform::GetLastWriteTime(fFileSpec.fPath)) fLastWriteTime = *time;
}

bool TDicomFile::IsCurrent() const {
    if (std::string_view(fFileSpec.fPath).size() <= kLongestPathWithoutFile) return true;
    return Platform::GetLastWriteTime(fFileSpec.fPath) == fLastWriteTime;
}

}  // namespace Vantor
