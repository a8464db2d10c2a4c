#pragma once

#include "records/TImageDoc.h"
#include "records/TParentDoc.h"
#include "records/TPrivateDoc.h"
#include "records/TRawDataDoc.h"
#include "records/TSR_Doc.h"

namespace Vantor {

class TPatientDoc;
class TStudyDoc;

// A SERIES record with its images, raw data and reports.
class TSeriesDoc final : public TParentDoc {
  public:
    static constexpr int32_t kDocType = kSeries;

    TSeriesDoc();
    TSeriesDoc(const TDicomDataSet* record, TRecordDirectory* directory);
    TSeriesDoc(TStoredRecord record, TRecordDirectory* directory);
    ~TSeriesDoc() override;

    // True for a series with the same Series Instance UID.
    bool IsSameRecord(TDicomDoc* other) override;
    std::string GetIdentity() const override;
    std::string GetHostKey() const override { return PeekHostText(Tags::kSeriesInstanceUID); }

    // Also gives a series without number the number 1. Throws TException 102 "No Modality Element" or "No
    // Series Instance UID".
    void CompleteRecord() override;

    bool GetSeriesUID(char* buffer, uint32_t size) const;
    bool GetSeriesNumber(char* buffer, uint32_t size) const;
    bool GetModality(char* buffer, uint32_t size) const;
    bool GetSeriesDesc(char* buffer, uint32_t size) const;

    // The whole Series Instance UID, for callers who take the organisation's root from it.
    bool GetManufacturerOrgID(char* buffer, uint32_t size) const;

    // A null UID is written as "VANTxxxxUID".
    void SetSeriesUID(const char* uid);
    void SetSeriesNumber(const char* text);
    void SetModality(const char* text);
    void SetSeriesDesc(const char* text);

    TListOf<TImageDoc>* GetImageDocs() { return &fImages.GetDocs(); }
    TListOf<TRawDataDoc>* GetRawDataDocs() { return &fRawData.GetDocs(); }
    TListOf<TSR_Doc>* GetSR_Docs() { return &fReports.GetDocs(); }
    TListOf<TPrivateDoc>* GetPrivateDocs() { return &fPrivateDocs.GetDocs(); }
    TImageDoc* GetFirstImage();

    // Null when the documents above are none of these.
    TStudyDoc* GetStudy() const;
    TPatientDoc* GetPatient() const;

    // True for a series of more than one image whose first one's file has QMAG in its path, in any case.
    bool CheckSequoiaLoRes();

    // True when a report of the series is one of the reporting product. `pathOut`, a buffer of
    // TFileSpec::kPathSize characters or null, gets the path of the first such one.
    bool HasQuantix4Report(char* pathOut);

  protected:
    std::unique_ptr<TDicomDoc> MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) override;
    ChildLists GetChildLists() override;

  private:
    TDocList<TPrivateDoc> fPrivateDocs;
    TDocList<TImageDoc> fImages;
    TDocList<TRawDataDoc> fRawData;
    TDocList<TSR_Doc> fReports;
};

}  // namespace Vantor
