#include "cli/ReportHeader.h"

#include <memory>
#include <string>

#include "dicom/TException.h"
#include "host/PatientName.h"
#include "sr/StructuredReport.h"
#include "wrappers/DicomFileInfo.h"
#include "wrappers/ValueText.h"

namespace VantorCli {

namespace {

using VantorWrappers::DicomFileInfo;
using VantorWrappers::StructuredReport;
using VantorWrappers::StructuredReportIOD;

// Damage in one attribute does not hide those in front of it.
template <typename Value>
Value AskOr(const DicomFileInfo& info, Value (DicomFileInfo::*getter)() const, Value otherwise) {
    try {
        return (info.*getter)();
    } catch (Vantor::TException* thrown) {
        const std::unique_ptr<Vantor::TException> error(thrown);
        return otherwise;
    }
}

HostString Ask(const DicomFileInfo& info, HostString (DicomFileInfo::*getter)() const) {
    return Trimmed(AskOr(info, getter, HostString()));
}

HostString ImageNumberOf(const DicomFileInfo& info) {
    constexpr int32_t kNone = VantorWrappers::kNoInteger;
    const int32_t number = AskOr(info, &DicomFileInfo::GetImageNumber, kNone);
    return number == kNone ? HostString() : std::to_wstring(number);
}

std::optional<HostDateTime> DateTimeOf(const StructuredReport& report) {
    const HostDateTime moment = report.GetSRDateTime();
    return moment == StructuredReportIOD::kMinimumDate ? std::nullopt : std::optional(moment);
}

}  // namespace

ReportHeader::ReportHeader(const StructuredReport& report)
    : fTitle(report.GetSRDocumentTitle()),
      fType(report.GetSRType()),
      fCompletion(report.GetCompletionFlag()),
      fVerification(report.GetVerificationFlag()),
      fDateTime(DateTimeOf(report)),
      fInstanceNumber(report.GetSRInstanceNumber()),
      fStudyUID(report.GetStudyUID()),
      fSeriesUID(report.GetSeriesUID()),
      fUID(report.GetSRUID()),
      fPatientName(report.GetIOD()->GetPatientName()),
      fPatientNumber(report.GetIOD()->GetPatientNumber()) {}

ReportHeader::ReportHeader(const DicomFileInfo& info)
    : fInstanceNumber(ImageNumberOf(info)),
      fStudyUID(Ask(info, &DicomFileInfo::GetStudyUID)),
      fSeriesUID(Ask(info, &DicomFileInfo::GetSeriesUID)),
      fUID(Ask(info, &DicomFileInfo::GetUID)),
      fPatientName(
          VantorHost::PatientName(Ask(info, &DicomFileInfo::GetPatientName)).GetDisplayablePatientName()),
      fPatientNumber(Ask(info, &DicomFileInfo::GetPatientId)) {}

}  // namespace VantorCli
