#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "dicom/TDicomFile.h"
#include "dicom/TIODSource.h"
#include "records/TDicomDoc.h"

namespace Vantor {

class TDicomDirectory;

// Takes one document with its files into a directory, in steps of limited time. The files are copied byte for
// byte under new names; at the end the records are entered into the directory's tree, with its DICOMDIR open
// for updating.
class TSeriesTransfer {
  public:
    // `destination` must outlive this object. Throws TException 100 "Can not allocate transfer memory".
    TSeriesTransfer(TDicomDirectory& destination, uint32_t bufferSize);

    // Closes what is open and gives the documents back.
    ~TSeriesTransfer();
    TSeriesTransfer(const TSeriesTransfer&) = delete;
    TSeriesTransfer& operator=(const TSeriesTransfer&) = delete;

    // Ends what is under way and starts anew with a document, which is counted, and all below it, until it is
    // done or this object is reset. Those above it are the caller's to keep.
    void SetDoc(TDicomDoc* doc);

    // Closes the files of a copy under way and forgets the document. What was copied stays on disk.
    void Reset();

    // Works for about `timeBudget` milliseconds; true when the document is done. The rest is that of
    // TDicomDirectory::ImportDocs.
    bool Step(int32_t timeBudget, int32_t& doneKB, int32_t& totalKB, char* message);

  private:
    enum class State { kStart, kOpenFile, kCopying, kFinish };

    void Start(int32_t& doneKB, int32_t& totalKB);
    void OpenNextFile();
    void Copy(int32_t timeBudget, int32_t& doneKB);
    void CopyChunk(int32_t& doneKB);
    template <typename Operation>
    void OnCopy(Operation operation);
    void EndFile();
    void GoOn();
    void Finish(char* message);
    void CloseFiles();

    void RepairStudyID();
    TDicomDoc& FiledDoc() const { return *fFiled[fFileIndex]; }
    void Collect(TDicomDoc& doc);
    bool OpenSource();
    void CreateCopy(const TFileSpec& fileSpec);
    bool HoldsInstance();
    void MoveOntoSource();
    bool HasMoved();
    TDicomDoc* AddCopy(TDicomDoc& source, TDicomDoc& target, int32_t& stop);
    void AddMissingDocs(TDicomDoc& source, TDicomDoc& target, int32_t& stop);

    TDicomDoc* fDoc = nullptr;
    std::vector<TDicomDoc*> fDocs;   // the document and all below it, counted
    std::vector<TDicomDoc*> fFiled;  // those of them that have a file
    State fState = State::kStart;
    size_t fFileIndex = 0;                // of the document at hand among them
    std::unique_ptr<TDicomFile> fSource;  // its file as it is read; hosts may do otherwise with their own
    std::unique_ptr<TDicomFile> fCopy;
    TDicomDirectory& fDestination;
    int64_t fBytesCopied = 0;
    std::vector<uint8_t> fBuffer;
    int64_t fFileSize = 0;
    TUidText fLastStudyUID;
};

}  // namespace Vantor
