#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "cli/Text.h"
#include "wrappers/ImageDirRec.h"
#include "wrappers/PrivateDirRec.h"
#include "wrappers/RawDataDirRec.h"
#include "wrappers/SeriesDirRec.h"
#include "wrappers/StructReportDirRec.h"

namespace VantorCli {

// One instance of a series, whatever its kind.
struct Instance {
    const char* fKind;  // as scripts know it: "image", "sr", "raw" or "private"
    const HostString& fUID;
    const HostString& fClassUID;
    const HostString& fPath;
    std::optional<int32_t> fNumber;  // images only
};

// Goes through the instances of series, one after the other. Keeps its lists from one to the next: a large
// directory has thousands.
class Instances {
  public:
    // Calls with each instance of a series: images, reports, raw data, private ones.
    void ForEach(const VantorWrappers::SeriesDirRec& series,
                 const std::function<void(const Instance& instance)>& visit);

  private:
    std::vector<VantorWrappers::ImageDirRec> fImages;
    std::vector<VantorWrappers::StructReportDirRec> fReports;
    std::vector<VantorWrappers::RawDataDirRec> fRawData;
    std::vector<VantorWrappers::PrivateDirRec> fPrivate;
};

}  // namespace VantorCli
