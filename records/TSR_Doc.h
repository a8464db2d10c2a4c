#pragma once

#include "dicom/TSRFile.h"
#include "records/TParentDoc.h"
#include "records/TPrivateDoc.h"

namespace Vantor {

// An SR DOCUMENT record. Its SOP class and instance are those of the file that it names.
class TSR_Doc final : public TParentDoc {
  public:
    static constexpr int32_t kDocType = kSR;

    TSR_Doc();

    // Reads the file once, to know whether it holds a report of the reporting product, and lets go of it.
    TSR_Doc(const TDicomDataSet* record, TRecordDirectory* directory);
    ~TSR_Doc() override;

    bool GetSOPClassUID(char* buffer) override;
    bool GetSOPInstanceUID(char* buffer) override;
    void SetSOPClassUID(const char* text) override;
    void SetSOPInstanceUID(const char* text) override;

    // The record names the file that is registered with the new directory for this instance, or, without one,
    // what it named before.
    TDicomDoc* CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                               int32_t& error) override;

    // As TImageDoc::IsSameRecord: nothing, and documents of other types, count as the same.
    bool IsSameRecord(TDicomDoc* other) override;
    void CompleteRecord() override;

    // True when the file held a report of the reporting product.
    bool IsQuantixReport();

    // The document's file as a report; null when it names none.
    TSRFile* GetSRFile() { return dynamic_cast<TSRFile*>(GetDicomFile()); }

    TListOf<TPrivateDoc>* GetPrivateDocs() { return &fPrivateDocs.GetDocs(); }

  protected:
    std::unique_ptr<TDicomDoc> MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) override;
    ChildLists GetChildLists() override { return {&fPrivateDocs}; }

  private:
    TDocList<TPrivateDoc> fPrivateDocs;
};

}  // namespace Vantor
