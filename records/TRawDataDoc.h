#pragma once

#include "records/TLeafDoc.h"

namespace Vantor {

// A RAW DATA record. Unlike the other instances it keeps its UIDs itself, and in its record's SOP Class UID
// and SOP Instance UID as well as in the referenced ones.
class TRawDataDoc final : public TLeafDoc {
  public:
    static constexpr int32_t kDocType = kRawData;

    TRawDataDoc();
    TRawDataDoc(const TDicomDataSet* record, TRecordDirectory* directory);

    // As TInstanceDoc::CopyToDirectory of an image.
    TDicomDoc* CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                               int32_t& error) override;
    void CompleteRecord() override;
    std::string GetHostKey() const override;

  protected:
    void MakeFile(const TFilePlaces& places) override;
    std::unique_ptr<TDicomDoc> MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) override;
};

}  // namespace Vantor
