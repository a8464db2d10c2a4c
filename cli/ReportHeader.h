#pragma once

#include <optional>

#include "cli/Text.h"
#include "sr/SRType.h"

namespace VantorWrappers {
class DicomFileInfo;
class StructuredReport;
}  // namespace VantorWrappers

namespace VantorCli {

// What a structured report tells about itself beside its content. Texts are trimmed; "" when absent.
struct ReportHeader {
    // Of a valid report.
    explicit ReportHeader(const VantorWrappers::StructuredReport& report);

    // Of a file that is no valid report: its identity, as far as it is not damaged itself.
    explicit ReportHeader(const VantorWrappers::DicomFileInfo& info);

    HostString fTitle;
    VantorWrappers::SRType fType = VantorWrappers::SRType::Unknown;
    HostString fCompletion;
    HostString fVerification;
    std::optional<HostDateTime> fDateTime;
    HostString fInstanceNumber;
    HostString fStudyUID;
    HostString fSeriesUID;
    HostString fUID;
    HostString fPatientName;  // as hosts show it
    HostString fPatientNumber;
};

}  // namespace VantorCli
