#pragma once

#include "records/TParentDoc.h"
#include "records/TPrivateDoc.h"

namespace Vantor {

// An IMAGE record. Its SOP class and instance are those of the file that it names.
class TImageDoc final : public TParentDoc {
  public:
    static constexpr int32_t kDocType = kImage;

    TImageDoc();

    // The image setting goes to the image file, which is made but not read.
    TImageDoc(const TDicomDataSet* record, TRecordDirectory* directory, uint32_t imageSetting);
    TImageDoc(TStoredRecord record, TRecordDirectory* directory, uint32_t imageSetting);
    ~TImageDoc() override;

    bool GetSOPClassUID(char* buffer) override;
    bool GetSOPInstanceUID(char* buffer) override;
    void SetSOPClassUID(const char* text) override;
    void SetSOPInstanceUID(const char* text) override;

    // The record names the file that is registered with the new directory for this instance, or, without one,
    // ReferencedFile::kNotCopied.
    TDicomDoc* CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                               int32_t& error) override;

    // False only for another image document that does not have the same class and instance: nothing, and
    // documents of other types, count as the same. Hosts rely on it.
    bool IsSameRecord(TDicomDoc* other) override;
    void CompleteRecord() override;

    // Instance Number; 0 when it is absent or no number.
    int32_t GetImageNumber();
    void SetImageNumber(int32_t number);

    TListOf<TPrivateDoc>* GetPrivateDocs() { return &fPrivateDocs.GetDocs(); }
    uint32_t GetImageSetting() const { return fImageSetting; }

  protected:
    void MakeFile() override;
    std::unique_ptr<TDicomDoc> MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) override;
    ChildLists GetChildLists() override { return {&fPrivateDocs}; }

  private:
    TDocList<TPrivateDoc> fPrivateDocs;
    uint32_t fImageSetting = 0;
};

}  // namespace Vantor
