#pragma once

#include <optional>
#include <string>
#include <vector>

#include "wrappers/DicomDirectory.h"
#include "wrappers/SeriesDirRec.h"

namespace VantorCli {

class Console;

// The series with these UIDs, in their order. None when one of them is not in the directory: each that is not
// is reported.
std::optional<std::vector<VantorWrappers::SeriesDirRec>> ChooseSeries(
    const VantorWrappers::DicomDirectory& directory, const std::vector<std::string>& uids, Console& console);

// The one with this UID. Ends the command when it is not in the directory.
VantorWrappers::SeriesDirRec ChooseOneSeries(const VantorWrappers::DicomDirectory& directory,
                                             const std::string& uid);

// Where a series stands among those that are worked on: "2 of 5".
std::string PlaceOf(size_t index, size_t count);

// The width of the longest UID.
size_t WidthOfUIDs(const std::vector<VantorWrappers::SeriesDirRec>& series);

}  // namespace VantorCli
