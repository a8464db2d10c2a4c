#include "wrappers/StructReportDirRec.h"

#include "records/TSR_Doc.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/NativeText.h"
#include "wrappers/RecordChange.h"

namespace VantorWrappers {

using Vantor::TSR_Doc;

StructReportDirRec::StructReportDirRec(TSR_Doc* report, DicomDirectory& directory) : DirRec(directory) {
    UpdateFields(report);
}

void StructReportDirRec::UpdateFields(TSR_Doc* report) {
    if (report == nullptr) return TraceWarning(kNoNativeObject);
    fInstanceUID = ReadUid(*report, &TSR_Doc::GetSOPInstanceUID);
    fClassUID = ReadUid(*report, &TSR_Doc::GetSOPClassUID);
    fSRPath = ReadFilePath(*report);
}

TSR_Doc* StructReportDirRec::FindDoc() const {
    DicomDirectory* const directory = GetDicomDirectory();
    return directory == nullptr ? nullptr : directory->GetUmSR(fInstanceUID);
}

bool StructReportDirRec::IsQuantixReport() const {
    TSR_Doc* const report = FindDoc();
    return report != nullptr && report->IsQuantixReport();
}

void StructReportDirRec::SetInstanceUID(const HostString& uid) {
    const char* const warning = "Failed to find unmanaged SR Object, new SR Instance UID not set.";
    const auto text = ChangeRecord(FindDoc(), warning, uid, &TSR_Doc::SetSOPInstanceUID);
    if (text) fInstanceUID = *text;
}

void StructReportDirRec::SetClassUID(const HostString& uid) {
    const char* const warning = "Failed to find unmanaged SR Object, new SR Class UID not set.";
    const auto text = ChangeRecord(FindDoc(), warning, uid, &TSR_Doc::SetSOPClassUID);
    if (text) fClassUID = *text;
}

}  // namespace VantorWrappers
