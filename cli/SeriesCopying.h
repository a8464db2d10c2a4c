#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/CommandLine.h"
#include "cli/ExitStatus.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/SeriesDirRec.h"

namespace VantorCli {

class Console;

// What the commands that copy series have in common.
class SeriesCopying {
  public:
    // Which series, and the form of what is told of them. This object must outlive the command line.
    void AddOptions(const CommandLine& line);

    // The series that are asked for. None when one of them is not there: each that is not is reported. Ends
    // the command when there are no series at all.
    std::optional<std::vector<VantorWrappers::SeriesDirRec>> Choose(
        const VantorWrappers::DicomDirectory& source, Console& console) const;

    // Copies them, with a line for each, and a bar that shows how far the one at hand is.
    ExitStatus CopyInto(VantorWrappers::DicomDirectory& destination,
                        const std::vector<VantorWrappers::SeriesDirRec>& series, Console& console) const;

  private:
    std::vector<std::string> fSeries;
    bool fIsAll = false;
    bool fIsJson = false;
};

}  // namespace VantorCli
