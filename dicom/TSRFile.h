#pragma once

#include <cstdint>
#include <string>

#include "dicom/TDicomFile.h"

namespace Vantor {

// The file of a structured report. It is read whole when its data set is first asked for. Questions that the
// file cannot answer, because it is damaged or an element is absent, are answered with false.
class TSRFile : public TDicomFile {
  public:
    // What kind of file a directory takes it for: files of this kind get the names of reports.
    static constexpr int32_t kReportKind = 2;

    TSRFile();
    TSRFile(uintptr_t owner, const TFileSpec& fileSpec);

    // The data set, read on the first call; null when the file cannot be read. A file that was open stays
    // open.
    TDicomDataSet* GetDataSet() override;

    // The report of the reporting product, kept whole in a private element. Get copies at most `bufferSize`
    // bytes; GetSize gives its length. False when there is none, or when the file breaks off inside it.
    bool GetQuantixReport(void* buffer, uint32_t bufferSize);
    bool GetQuantixReportSize(uint32_t& length);

    // Looks whether there is such a report, keeps the answer for HasQuantixReport, and lets go of the data
    // set, so that asking costs no memory. A later question reads the file again.
    bool CheckForQuantixReport();
    bool HasQuantixReport() const { return fHasReport; }

    // For who knows the answer already.
    void SetHasQuantixReport(bool hasReport) { fHasReport = hasReport; }

    // True when the second character of Modality is 'R'. The first is not looked at: hosts rely on MR and CR
    // passing as well.
    bool IsSRModality();

    // Content Date as text, in a format of TVRUtil. False when absent. An outputSize that is too small for
    // the text writes nothing and still answers true.
    bool GetContentDate(char* output, uint32_t outputSize, int32_t format);

    // Each copies at most outputSize − 1 characters and a NUL. False, and an empty text, when absent.
    bool GetCompletionFlag(char* output, uint32_t outputSize);
    bool GetVerificationFlag(char* output, uint32_t outputSize);
    bool GetReportStatus(char* output, uint32_t outputSize);

    // kReportKind for a report of a directory; 0 for one made without a file spec.
    int32_t GetKind() const { return fKind; }

  private:
    bool FindReport(uint32_t& length, void* buffer, uint32_t bufferSize);
    bool ReadText(Tag tag, char* output, uint32_t outputSize);

    int32_t fKind = 0;
    [[maybe_unused]] int32_t fSecondValue = 0;  // kept beside the kind for the directory; not looked at
    std::string fText;                          // likewise
    bool fHasReport = false;
};

}  // namespace Vantor
