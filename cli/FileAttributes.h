#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/Text.h"
#include "wrappers/DicomFileInfo.h"

namespace VantorCli {

// A date or time as a host meets it: there, absent, or a text that is none.
struct MomentAttribute {
    std::optional<HostDateTime> fMoment;
    std::string fProblem;  // 8-bit text; empty when there is none
};

// Everything that DicomFileInfo tells about a file, asked for at once: a file that turns out damaged half way
// is a file that cannot be read, not half a result.
struct FileAttributes {
    // Throws as DicomFileInfo does, but for FormatError, which becomes the problem of one attribute.
    explicit FileAttributes(const HostString& path);

    bool fIsSR = false;
    bool fIsImage = false;
    HostString fUID;
    HostString fSeriesUID;
    HostString fSeriesDescription;
    int32_t fSeriesNumber = 0;
    HostString fStudyID;
    HostString fStudyUID;
    HostString fStudyDescription;
    MomentAttribute fStudyDate;
    MomentAttribute fStudyTime;
    MomentAttribute fPatientBirthDate;
    HostString fAccessionNumber;
    HostString fReferringPhysician;
    HostString fModality;
    int32_t fImageNumber = 0;
    int32_t fNumberOfFrames = 0;
    HostString fPatientName;
    HostString fPatientId;
    MomentAttribute fContentDate;
    MomentAttribute fContentTime;
    std::vector<HostString> fSourceImageClassUIDs;
    std::vector<HostString> fSourceImageInstanceUIDs;
};

}  // namespace VantorCli
