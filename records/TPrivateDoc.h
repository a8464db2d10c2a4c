#pragma once

#include "records/TLeafDoc.h"

namespace Vantor {

// A PRIVATE record, or one of a type that the library does not know: kept with the document that it belongs
// to.
class TPrivateDoc final : public TLeafDoc {
  public:
    static constexpr int32_t kDocType = kPrivate;

    TPrivateDoc();
    TPrivateDoc(const TDicomDataSet* record, TRecordDirectory* directory);
    TPrivateDoc(TStoredRecord record, TRecordDirectory* directory);

    // The record names the file that is registered with the new directory for this instance, or what it named
    // before.
    TDicomDoc* CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                               int32_t& error) override;

    // Also says whose definition of a private record this is: readers refuse a directory without.
    void CompleteRecord() override;

  protected:
    void MakeFile(const TFilePlaces& places) override;
    std::unique_ptr<TDicomDoc> MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) override;
};

}  // namespace Vantor
