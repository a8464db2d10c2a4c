#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "dicom/TDicomDataSet.h"
#include "dicom/TFileSpec.h"
#include "dicom/TIODSource.h"
#include "platform/File.h"
#include "platform/FileSystem.h"

namespace Vantor {

// One DICOM Part 10 file: where it is, its file meta information (group 0002) and its main data set.
//
// Failures of the operating system pass as Platform::FileException; bytes that are no DICOM file are
// TException 102 "Invalid Dicom File".
//
// Each file has a lock that OpenFile enters and CloseFile leaves, so that two threads never have the same
// file open at once; the thread that opened it must close it.
class TDicomFile : public TIODSource {
  public:
    // How many bytes ReadMetaHeader looks at, and CopyNextChunk copies.
    static constexpr uint32_t kMetaHeaderReadSize = 1024;
    static constexpr uint32_t kChunkSize = 65536;

    TDicomFile();

    // `owner` and `context` are kept for the caller and not looked at; the context also goes to every data
    // set that the file makes. Nothing is opened.
    TDicomFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context);
    TDicomFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context, uintptr_t firstValue,
               uintptr_t secondValue);

    // A new file: see InitNewFile.
    TDicomFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context,
               std::unique_ptr<TDicomDataSet> dataSet, const char* sopClassUID, const char* sopInstanceUID,
               const char* transferSyntaxUID, const char* implementationClassUID, bool isBigEndian);

    // Closes the file if it is open.
    ~TDicomFile() override;

    // Also put the UID into the meta information and mark the file as modified.
    bool GetSOPClassUID(char* buffer) override;
    bool GetSOPInstanceUID(char* buffer) override;
    void SetSOPClassUID(const char* text) override;
    void SetSOPInstanceUID(const char* text) override;

    // Copies the file in chunks, for moving and rewriting files. BeginCopy creates the destination, opens
    // this file for reading, gives its size in bytes and 0. CopyNextChunk copies up to kChunkSize bytes and
    // gives the bytes that remain; callers repeat until 0. EndCopy with the destination commits: this object
    // then stands for the destination file. EndCopy with null abandons: the destination is removed.
    //
    // A destination that is this very file goes through a temporary file that replaces it on commit only; one
    // that is another file is emptied at once, and gone after an abandoned copy. Inside structured storage
    // the temporary is a stream named "Temp".
    //
    // BeginCopy and the commit throw FileException; then there is no copy under way and what it made is
    // removed. After a failed CopyNextChunk, which is also the answer to a file that became shorter than it
    // was, EndCopy ends the copy as ever. Outside a copy CopyNextChunk gives 0 and EndCopy does nothing. A
    // copy that is still under way when the object is destroyed, or when the next one begins, is abandoned.
    int32_t BeginCopy(const TFileSpec& destination, int64_t& size) override;
    int64_t CopyNextChunk() override;
    void EndCopy(const TFileSpec* destination) override;

    // Reads the first kMetaHeaderReadSize bytes of the open file and parses the meta information, not the
    // main data set. False when it lacks the transfer syntax. Throws TException 102 when it is no DICOM file,
    // lacks the SOP class, or has no element of the main data set within those bytes.
    virtual bool ReadMetaHeader();

    // Re-initialises this object for a new file with the given identity: creates or empties the file at the
    // path, makes the meta information, and takes `dataSet`, or makes an empty explicit data set in the given
    // byte order when it is null. Nothing is written until WriteFile. Throws FileException.
    void InitNewFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context,
                     std::unique_ptr<TDicomDataSet> dataSet, const char* sopClassUID,
                     const char* sopInstanceUID, const char* transferSyntaxUID,
                     const char* implementationClassUID, bool isBigEndian);

    // Opens the file, readable by others or (kReadWrite) alone, and notes its size. While another program or
    // thread holds it in a conflicting way, tries again at once for up to 50 seconds; what this thread has
    // open itself, as another object, is not waited for. Does nothing when this thread
    // has it open already. Throws FileException; the file is then closed and its lock free.
    void OpenFile(Platform::FileAccess access);

    // Closes the file and frees its lock; does nothing when this thread does not have it open. Reports no
    // failure.
    void CloseFile();
    bool IsOpen() const { return fFile != nullptr; }

    // Reads and parses the whole open file. False when the meta information lacks the transfer syntax; there
    // is then no data set. Throws TException 102 when it is no DICOM file, lacks the SOP class or has nothing
    // but meta information, and 0 "Can't get memory", also for a file beyond 2 GiB; the data set that was
    // there before stays then. Throws 100 when there is no memory for the new data set.
    bool ReadFile();

    // Writes a preamble of zeros, the meta information and the data set to the open file, and waits for the
    // medium. Failures name "image file". Throws TException 102, before the file is touched, when there is no
    // meta information or no data set.
    void WriteFile();

    // Bytes of the open file from where the last of these operations ended, at first its start: up to
    // `count`, fewer only at the end. Failures name "image data" and "image file".
    size_t ReadNext(void* buffer, size_t count) { return ReadBytes(OpenedFile(), buffer, count); }
    void WriteNext(const void* bytes, size_t count) { WriteBytes(OpenedFile(), bytes, count); }

    // Hands what was written to the open file to the medium; returns when it is there. Throws FileException.
    // StartFlush has the system begin with it, and does not wait.
    void Flush() { OpenedFile().Flush(); }
    void StartFlush() { OpenedFile().StartFlush(); }

    // Sets the transfer syntax flags of the main data set and creates or empties the file at the path.
    void CreateEmptyFile(bool isExplicit, bool isBigEndian);

    // Removes the file at the path, or the stream inside its storage, if there is a path. Reports no failure.
    void DeleteDiskFile();

    TFileSpec* GetFileSpec() { return &fFileSpec; }
    const TFileSpec* GetFileSpec() const { return &fFileSpec; }

    // In bytes, from the last time the file was opened or read.
    int64_t GetFileSize() const { return fFileSize; }

    // Opens the file to measure it and gives (length + 1) ÷ 1024 as a whole number, so that 1,023 bytes
    // count as 1 and 1,022 as 0; 0 on any failure. A file that is open stays open.
    uint32_t GetFileSizeKB();

    // The main data set's transfer syntax.
    bool IsExplicit() const { return fIsExplicit; }
    bool IsBigEndian() const { return fIsBigEndian; }

    // Notes the file's last-write time; nothing changes when there is no file.
    void UpdateModTime();

    // True when the file's last-write time is the one noted, or the path has 3 characters or fewer (no file
    // has been given). False when there is no file.
    bool IsCurrent() const;

    // The meta information, owned by this object; null when none was read or made.
    TDicomDataSet* GetMetaDataSet() { return fMetaDataSet.get(); }

    // How many bytes stand before the main data set in a file with this meta information: preamble, prefix
    // and the meta information itself.
    int64_t GetHeaderSize() const;

    // The values given at construction.
    uintptr_t GetOwner() const { return fOwner; }
    uintptr_t GetContext() const { return fContext; }
    uintptr_t GetFirstValue() const { return fValues[0]; }
    uintptr_t GetSecondValue() const { return fValues[1]; }

  protected:
    // Parses the meta information from a file's first bytes. Fills the UIDs, the transfer syntax flags and
    // the main data set's place, which needs fFileSize; false when the transfer syntax is absent, and then
    // flags and place stay as they were. Throws TException 102.
    bool ParseMetaHeader(const uint8_t* bytes, int64_t count);

    // Takes the main data set from a whole file's bytes, where ParseMetaHeader found it. False when there is
    // nothing to take.
    bool ParseDataSet(const uint8_t* bytes, int64_t count);

    // Throws TException 102 unless "DICM" stands where it belongs.
    static void CheckPrefix(const uint8_t* bytes, int64_t count);

    // Input and output on an open file, with failures named after what the bytes are: "image data" for
    // reading, "image file position" for seeking, "image file" for writing and the length.
    static size_t ReadBytes(Platform::File& file, void* buffer, size_t count);
    static void SeekTo(Platform::File& file, int64_t position);
    static void WriteBytes(Platform::File& file, const void* bytes, size_t count);
    static void SetFileLength(Platform::File& file, int64_t length);

    // Writes what every Part 10 file starts with: 128 zero bytes and "DICM".
    static void WritePreamble(Platform::File& file);

    // Writes a whole file from its start.
    static void WriteContent(Platform::File& file, const TDicomDataSet& meta, const TDicomDataSet& dataSet);

    // The meta information of a new file with this object's SOP class and instance.
    std::unique_ptr<TDicomDataSet> MakeMetaDataSet(const char* transferSyntaxUID,
                                                   const char* implementationClassUID) const;

    // As InitNewFile, for a file that is put in its place when it is written: none is created or emptied.
    void InitUnwrittenFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context,
                           std::unique_ptr<TDicomDataSet> dataSet, const char* sopClassUID,
                           const char* sopInstanceUID, const char* transferSyntaxUID,
                           const char* implementationClassUID, bool isBigEndian);

    // As GetHeaderSize, with this meta information.
    static int64_t GetHeaderSizeWith(const TDicomDataSet& meta);

    // For files that are changed by putting a new one in their place: OpenFile for writing keeps others who
    // do so away until the file is closed (Platform::OpenDiskFileToReplace).
    void SetIsReplaced(bool isReplaced) { fIsReplaced = isReplaced; }

    std::unique_ptr<TDicomDataSet> fMetaDataSet;
    uintptr_t fOwner = 0;
    bool fIsBigEndian = false;
    bool fIsExplicit = true;
    std::unique_ptr<Platform::File> fFile;  // null while closed
    uintptr_t fContext = 0;
    int64_t fDataOffset = 0;  // where the main data set starts in the file
    int64_t fDataLength = 0;
    TFileSpec fFileSpec;
    int64_t fFileSize = 0;
    std::unique_ptr<Platform::File> fCopyFile;  // the destination while a copy is under way
    int64_t fCopyPosition = 0;
    std::vector<uint8_t> fChunk;
    uintptr_t fValues[2] = {0, 0};
    Platform::FileTime fLastWriteTime;
    std::recursive_mutex fLock;

  private:
    // Opening and reading.
    std::unique_ptr<Platform::File> OpenWaitingForOthers(Platform::FileAccess access) const;
    Platform::File& OpenedFile();
    void ApplyTransferSyntax();

    // New files.
    void Reset();

    // Copying.
    bool IsThisFile(const TFileSpec& destination) const;
    void CreateCopyFile(const TFileSpec& destination);
    void PutCopyInPlace(const TFileSpec& destination);
    void CommitCopy(const TFileSpec& destination);
    void AbandonCopy();
    void ForgetCopy();

    bool fIsReplaced = false;
    TFileSpec fCopySpec;            // where the copy goes: the destination, or the temporary file or stream
    bool fIsCopyTemporary = false;  // the destination is this very file
};

}  // namespace Vantor
