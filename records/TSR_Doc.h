#pragma once

#include "dicom/TSRFile.h"
#include "records/TInstanceDoc.h"

namespace Vantor {

// An SR DOCUMENT record.
class TSR_Doc final : public TInstanceDoc {
  public:
    static constexpr int32_t kDocType = kSR;

    TSR_Doc();

    // Reads the file once, to know whether it holds a report of the reporting product, and lets go of it.
    TSR_Doc(const TDicomDataSet* record, TRecordDirectory* directory);

    void CompleteRecord() override;

    // True when the file held a report of the reporting product.
    bool IsQuantixReport();

    // The document's file as a report; null when it names none.
    TSRFile* GetSRFile() { return dynamic_cast<TSRFile*>(GetDicomFile()); }

  protected:
    void MakeFile(const TFilePlaces& places) override;
    std::unique_ptr<TDicomDoc> MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) override;
    const char* GetFallbackFileID() const override { return nullptr; }
};

}  // namespace Vantor
