#pragma once

#include <string>

#include "records/TParentDoc.h"
#include "records/TPrivateDoc.h"

namespace Vantor {

class TSeriesDoc;

// A STUDY record with its series.
class TStudyDoc final : public TParentDoc {
  public:
    static constexpr int32_t kDocType = kStudy;

    // A Study ID for a study without one, from the local date and time: YYMMDD.HHMMSSmmm; "1" when there is
    // none.
    static std::string MakeStudyID();

    TStudyDoc();
    TStudyDoc(const TDicomDataSet* record, TRecordDirectory* directory);
    TStudyDoc(TStoredRecord record, TRecordDirectory* directory);
    ~TStudyDoc() override;

    // True for a study with the same Study Instance UID.
    bool IsSameRecord(TDicomDoc* other) override;
    std::string GetIdentity() const override;
    std::string GetHostKey() const override { return PeekHostText(Tags::kStudyInstanceUID); }

    // Also gives a study without Study ID one. Throws TException 102 "No Study Date" or "No Study Time".
    void CompleteRecord() override;

    bool GetStudyUID(char* buffer, uint32_t size) const;
    bool GetStudyID(char* buffer, uint32_t size) const;
    bool GetStudyName(char* buffer, uint32_t size) const;
    bool GetAccessionNum(char* buffer, uint32_t size) const;
    bool GetReferringPhysician(char* buffer, uint32_t size) const;

    // Study Date in a format of TVRUtil, and Study Time as HH:MM. True when the element is there, also when
    // nothing is written: without a value, or when the buffer is too small (TVRUtil).
    bool GetStudyDate(char* buffer, uint32_t size, int32_t format) const;
    bool GetStudyTime(char* buffer, uint32_t size) const;

    // A null UID is written as "VANT.ERROR.UID".
    void SetStudyUID(const char* uid);
    void SetStudyDate(const char* text);
    void SetStudyTime(const char* text);
    void SetStudyID(const char* text);
    void SetStudyName(const char* text);
    void SetAccessionNum(const char* text);

    // Written with VR SH, as readers of these records have always seen it.
    void SetReferringPhysician(const char* text);

    // The patient's; false without a patient.
    bool GetPatientName(char* buffer, uint32_t size) const;
    bool GetPatientNumber(char* buffer, uint32_t size) const;

    TListOf<TSeriesDoc>* GetSeriesDocs() { return &fSeries.GetDocs(); }
    TListOf<TPrivateDoc>* GetPrivateDocs() { return &fPrivateDocs.GetDocs(); }
    TSeriesDoc* GetFirstSeries();

    // The modalities of the series from the last to the first, in one text without separators; "UK" when
    // there are none but UK and SR. A modality that is among the last two of the text, told by two characters
    // each, is not added again. False, and an empty text, without series.
    bool GetStudyModality(char* buffer, uint32_t size);

    // All direct children, so that the study's private records count as series: hosts rely on it.
    int32_t GetSeriesCount();
    int32_t GetImageCount();

    // Counted when the first of them is asked for, and never again, whatever changes below.
    int32_t GetSRCount();
    int32_t GetQuantixSRCount();
    bool HasQuantixSR();

  protected:
    std::unique_ptr<TDicomDoc> MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) override;
    ChildLists GetChildLists() override;

  private:
    class ModalityText;

    void CountReports();

    bool fHasCountedReports = false;
    int32_t fSRCount = 0;
    bool fHasQuantixSR = false;
    int32_t fQuantixSRCount = 0;
    TDocList<TPrivateDoc> fPrivateDocs;
    TDocList<TSeriesDoc> fSeries;
};

}  // namespace Vantor
