#include "wrappers/RawDataDirRec.h"

#include "records/TRawDataDoc.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/NativeText.h"
#include "wrappers/RecordChange.h"

namespace VantorWrappers {

using Vantor::TRawDataDoc;

RawDataDirRec::RawDataDirRec(TRawDataDoc* rawData, DicomDirectory& directory) : InstanceDirRec(directory) {
    UpdateFields(rawData);
}

void RawDataDirRec::UpdateFields(TRawDataDoc* rawData) {
    if (rawData == nullptr) return TraceWarning(kNoNativeObject);
    TakeFields(*rawData);
    fRawDataPath = ReadFilePath(*rawData);
}

TRawDataDoc* RawDataDirRec::FindDoc() const {
    DicomDirectory* const directory = GetDicomDirectory();
    return directory == nullptr ? nullptr : directory->GetUmRawData(fInstanceUID);
}

int32_t RawDataDirRec::GetDiskSpaceInKBytes() const {
    TRawDataDoc* const rawData = FindDoc();
    return rawData == nullptr ? 0 : rawData->GetDiskSpace();
}

void RawDataDirRec::SetInstanceUID(const HostString& uid) {
    const char* const warning = "Failed to find unmanaged Raw Data Object, new Instance UID not set.";
    const auto text = ChangeRecord(FindDoc(), warning, uid, &TRawDataDoc::SetSOPInstanceUID);
    if (text) fInstanceUID = *text;
}

}  // namespace VantorWrappers
