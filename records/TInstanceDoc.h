#pragma once

#include "records/TParentDoc.h"
#include "records/TPrivateDoc.h"

namespace Vantor {

// A record of an instance that may have private records below it. Its SOP class and instance are those of the
// file that it names: the UIDs of a TIODSource stand in the record's referenced ones.
class TInstanceDoc : public TParentDoc {
  public:
    bool GetSOPClassUID(char* buffer) override;
    bool GetSOPInstanceUID(char* buffer) override;
    void SetSOPClassUID(const char* text) override;
    void SetSOPInstanceUID(const char* text) override;

    // The record names the file that is registered with the new directory for this instance. Without one, an
    // image names ReferencedFile::kNotCopied, and a report what it named before.
    TDicomDoc* CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                               int32_t& error) override;

    // False only for another document of this type that does not have the same class and instance: nothing,
    // and documents of other types, count as the same. Hosts rely on it.
    bool IsSameRecord(TDicomDoc* other) override;
    std::string GetIdentity() const override;
    std::string GetHostKey() const override { return PeekHostText(Tags::kReferencedSOPInstanceUIDInFile); }

    TListOf<TPrivateDoc>* GetPrivateDocs() { return &fPrivateDocs.GetDocs(); }

  protected:
    using TParentDoc::TParentDoc;

    ChildLists GetChildLists() override { return {&fPrivateDocs}; }

    // The file ID of a copy whose file is not registered; null for the one that it had.
    virtual const char* GetFallbackFileID() const = 0;

  private:
    bool PeekUid(Tag tag, char* buffer) const;

    TDocList<TPrivateDoc> fPrivateDocs;
};

}  // namespace Vantor
