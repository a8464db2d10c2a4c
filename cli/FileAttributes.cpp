#include "cli/FileAttributes.h"

namespace VantorCli {

namespace {

using VantorWrappers::DicomFileInfo;

MomentAttribute Ask(const DicomFileInfo& info, std::optional<HostDateTime> (DicomFileInfo::*getter)() const) {
    try {
        return {(info.*getter)(), ""};
    } catch (const VantorWrappers::FormatError& error) {
        return {std::nullopt, error.what()};
    }
}

}  // namespace

FileAttributes::FileAttributes(const HostString& path) {
    DicomFileInfo info(path);
    info.Read();
    fIsSR = info.IsSR();
    fIsImage = info.IsImage();
    fUID = info.GetUID();
    fSeriesUID = info.GetSeriesUID();
    fSeriesDescription = info.GetSeriesDescription();
    fSeriesNumber = info.GetSeriesNumber();
    fStudyID = info.GetStudyID();
    fStudyUID = info.GetStudyUID();
    fStudyDescription = info.GetStudyDescription();
    fStudyDate = Ask(info, &DicomFileInfo::GetStudyDate);
    fStudyTime = Ask(info, &DicomFileInfo::GetStudyTime);
    fPatientBirthDate = Ask(info, &DicomFileInfo::GetPatientBirthDate);
    fAccessionNumber = info.GetAccessionNumber();
    fReferringPhysician = info.GetReferringPhysician();
    fModality = info.GetModality();
    fImageNumber = info.GetImageNumber();
    fNumberOfFrames = info.GetNumberOfFrames();
    fPatientName = info.GetPatientName();
    fPatientId = info.GetPatientId();
    fContentDate = Ask(info, &DicomFileInfo::GetContentDate);
    fContentTime = Ask(info, &DicomFileInfo::GetContentTime);
    fSourceImageClassUIDs = info.GetSourceImageClassUIDs();
    fSourceImageInstanceUIDs = info.GetSourceImageInstanceUIDs();
}

}  // namespace VantorCli
