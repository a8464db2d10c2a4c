#pragma once

#include <cstdint>
#include <memory>

#include "dicom/Tags.h"
#include "sr/SRType.h"
#include "sr/StructuredReportIOD.h"
#include "wrappers/HostDateTime.h"
#include "wrappers/HostString.h"

namespace Vantor {
class TDicomDataSet;
class TDicomDirectory;
class TSRFile;
}  // namespace Vantor

namespace VantorWrappers {

class StructReportDirRec;

// A structured report file: its header, its template, its content tree, and the report that the reporting
// product keeps in it.
//
//     StructuredReport report(record);
//     if (report.IsValid()) Show(report.GetSRDocumentTitle(), *report.GetIOD());
//
// The file is read whole when this object is made, and is closed again. Nothing is thrown: a file that cannot
// be read or is no report is not valid, and says why in the trace of structured reports. One thread at a
// time.
class StructuredReport {
  public:
    // The file behind a record. Without its directory a record leads nowhere, and the report is not valid.
    explicit StructuredReport(const StructReportDirRec& record);

    // Addition for hosts: a file that no directory knows.
    explicit StructuredReport(const HostString& path);

    // Releases all of it.
    ~StructuredReport();
    StructuredReport(const StructuredReport&) = delete;
    StructuredReport& operator=(const StructuredReport&) = delete;

    // True for a file whose data set is a report.
    bool IsValid() const { return fSrIod != nullptr && fSrIod->IsValid(); }

    // True for a report without content, and for what is not valid.
    bool IsEmpty() const { return !IsValid() || fSrIod->IsEmpty(); }

    // The parsed report, owned by this object; null when it is not valid.
    const StructuredReportIOD* GetIOD() const { return IsValid() ? fSrIod.get() : nullptr; }

    // As StructuredReportIOD has them; Unknown, "" and StructuredReportIOD::kMinimumDate when not valid.
    SRType GetSRType() const;
    HostString GetSRDocumentTitle() const;
    HostDateTime GetSRDateTime() const;

    // Attributes of the header, trimmed; "" when absent or not valid.
    HostString GetCompletionFlag() const;    // "COMPLETE" or "PARTIAL"
    HostString GetVerificationFlag() const;  // "VERIFIED" or "UNVERIFIED"
    HostString GetSRInstanceNumber() const;
    HostString GetStudyUID() const;
    HostString GetSeriesUID() const;

    // The instance UID, also of a file that is no valid report; "" when absent.
    HostString GetSRUID() const;

    // The document that the reporting product keeps in the file, a PDF, read anew by each call. True when
    // there is one; else `buffer` is null and `length` 0. The buffer belongs to this object until the next
    // call of either, Dispose, or its end.
    bool GetQuantixReport(const uint8_t*& buffer, uint32_t& length);

    // The same; the length is kept for GetPdfQuantixReportSize, which gives 0 at first.
    bool GetPdfQuantixReport(const uint8_t*& buffer);
    uint32_t GetPdfQuantixReportSize() const { return fPdfReportSize; }

    // Releases the document's buffer. May be called twice; the destructor does it too.
    void Dispose();

  private:
    void Open();
    HostString GetHeaderText(Vantor::Tag tag, uint32_t maxLength) const;

    HostString f_strPath;
    uint32_t fPdfReportSize = 0;
    Vantor::TDicomDirectory* f_umSrcDir = nullptr;  // not owned; null for a file that no directory knows
    std::unique_ptr<uint8_t[]> fPdfBuffer;
    uint32_t fPdfBufLen = 0;
    std::unique_ptr<Vantor::TSRFile> f_umSrFile;
    Vantor::TDicomDataSet* f_umSrIod = nullptr;  // the file's
    std::unique_ptr<StructuredReportIOD> fSrIod;
};

}  // namespace VantorWrappers
