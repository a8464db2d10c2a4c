#pragma once

#include <string>

#include "records/TInstanceDoc.h"

namespace Vantor {

// What a list shows of an image: its UIDs, "" when absent, its number and the full path of its file.
struct TImageOutline {
    std::string fSOPClassUID;
    std::string fSOPInstanceUID;
    int32_t fImageNumber = 0;
    std::string fFilePath;
};

// An IMAGE record.
class TImageDoc final : public TInstanceDoc {
  public:
    static constexpr int32_t kDocType = kImage;

    TImageDoc();

    // The image setting goes to the image file, which is made but not read.
    TImageDoc(const TDicomDataSet* record, TRecordDirectory* directory, uint32_t imageSetting);
    TImageDoc(TStoredRecord record, TRecordDirectory* directory, uint32_t imageSetting);

    void CompleteRecord() override;

    // Instance Number; 0 when it is absent or no number.
    int32_t GetImageNumber();
    void SetImageNumber(int32_t number);

    // The same as the getters give, in one walk through the record.
    TImageOutline GetOutline();

    uint32_t GetImageSetting() const { return fImageSetting; }

  protected:
    void MakeFile(const TFilePlaces& places) override;
    std::unique_ptr<TDicomDoc> MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) override;
    const char* GetFallbackFileID() const override;

  private:
    uint32_t fImageSetting = 0;
};

}  // namespace Vantor
