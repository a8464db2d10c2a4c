#pragma once

#include <string>
#include <string_view>

#include "records/TParentDoc.h"
#include "records/TPrivateDoc.h"

namespace Vantor {

class TStudyDoc;

// A PATIENT record with its studies.
class TPatientDoc final : public TParentDoc {
  public:
    static constexpr int32_t kDocType = kPatient;

    TPatientDoc();
    TPatientDoc(const TDicomDataSet* record, TRecordDirectory* directory);
    TPatientDoc(TStoredRecord record, TRecordDirectory* directory);
    ~TPatientDoc() override;

    // True for a patient with the same Patient ID and the same Patient's Name; or the ID alone, when neither
    // has a name.
    bool IsSameRecord(TDicomDoc* other) override;
    std::string GetIdentity() const override;
    std::string GetHostKey() const override;

    // The host key of the patient of that name and number: blanks around them and carets at the end of the
    // name make no difference.
    static std::string MakeHostKey(std::string_view name, std::string_view number);

    // In an exam layout, a study's companion goes with it: to the directory, which keeps it until it is read
    // again.
    void RemoveChild(TDicomDoc* child) override;

    // Throws TException 102 "No Patient ID".
    void CompleteRecord() override;

    bool GetPatientNumber(char* buffer, uint32_t size) const;
    bool GetPatientName(char* buffer, uint32_t size) const;
    void SetPatientNumber(const char* text);
    void SetPatientName(const char* text);

    TListOf<TStudyDoc>* GetStudyDocs() { return &fStudies.GetDocs(); }
    TListOf<TPrivateDoc>* GetPrivateDocs() { return &fPrivateDocs.GetDocs(); }

    // Counted anew on each call; private records are not among them.
    int32_t GetStudyCount();
    int32_t GetSeriesCount();
    int32_t GetImageCount();

  protected:
    std::unique_ptr<TDicomDoc> MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) override;
    ChildLists GetChildLists() override;

  private:
    void RemoveCompanion(const TDicomDoc* companion, TRecordDirectory& directory);

    TDocList<TPrivateDoc> fPrivateDocs;
    TDocList<TStudyDoc> fStudies;
};

}  // namespace Vantor
