#pragma once

#include <cstdint>
#include <memory>

#include "dicom/TDicomDataSet.h"
#include "dicom/TFileSpec.h"
#include "dicom/TRefCount.h"
#include "dicom/Uids.h"

namespace Vantor {

// A UID as it is kept beside a data set: NUL-terminated text of at most kMaximumUidLength characters and
// its length.
struct TUidText {
    char fText[kMaximumUidLength + 1] = {};
    uint32_t fLength = 0;

    // Stores at most kMaximumUidLength characters up to the NUL.
    void Set(const char* text);
    void Clear() { *this = TUidText(); }

    // Copies the text and its terminator to a buffer of kMaximumUidLength + 1 characters. False, and no
    // copy, when the text is empty.
    bool CopyTo(char* buffer) const;
};

// The same for objects that many are made of: takes no room while it is empty.
class TKeptUid {
  public:
    void Set(const char* text);
    void Set(const TUidText& uid);

    // The UID; one without text while it is empty.
    const TUidText& Get() const;

  private:
    std::unique_ptr<const TUidText> fUid;  // null while empty
};

// The common base of everything that carries a DICOM data set with its SOP identity: files, and the record
// documents of a directory. Owns its data set.
class TIODSource : public TRefCount {
  public:
    TIODSource();
    virtual ~TIODSource();

    // The data set, owned by this object; null when there is none.
    virtual TDicomDataSet* GetDataSet();

    // Each copies a UID with its terminator to a buffer of kMaximumUidLength + 1 characters; false, and no
    // copy, when it is not known.
    virtual bool GetTransferSyntaxUID(char* buffer);
    virtual bool GetSOPClassUID(char* buffer);
    virtual bool GetSOPInstanceUID(char* buffer);

    // Each keeps at most kMaximumUidLength characters. The first two also put the element into the data
    // set, if there is one.
    virtual void SetSOPClassUID(const char* text);
    virtual void SetSOPInstanceUID(const char* text);
    virtual void SetTransferSyntaxUID(const char* text);

    // Copying in chunks, for sources that can: see TDicomFile. Here there is nothing to copy: BeginCopy
    // gives size 0 and −1, CopyNextChunk 0.
    virtual int32_t BeginCopy(const TFileSpec& destination, int64_t& size);
    virtual int64_t CopyNextChunk();
    virtual void EndCopy(const TFileSpec* destination);

    bool IsModified() const { return fIsModified; }
    void SetModified(bool isModified) { fIsModified = isModified; }

  protected:
    // Puts a UID of this source into one of its data sets.
    static void PutUid(TDicomDataSet* dataSet, Tag tag, const TUidText& uid);

    std::unique_ptr<TDicomDataSet> fDataSet;
    TKeptUid fTransferSyntaxUID;
    TKeptUid fSOPClassUID;
    TKeptUid fSOPInstanceUID;
    bool fIsModified = false;  // set whenever a file's SOP class or instance UID is set
};

}  // namespace Vantor
