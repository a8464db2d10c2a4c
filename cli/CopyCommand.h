#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/Command.h"

namespace VantorWrappers {
class DicomDirectory;
class SeriesDirRec;
}  // namespace VantorWrappers

namespace VantorCli {

class Directories;

// vantor copy: copies series from one directory into another.
class CopyCommand : public Command {
  public:
    CLI::App* AddTo(CLI::App& program) override;
    ExitStatus Run(Console& console) override;

  private:
    std::shared_ptr<VantorWrappers::DicomDirectory> MakeDestination(Directories& directories) const;
    ExitStatus CopyInto(VantorWrappers::DicomDirectory& destination,
                        const std::vector<VantorWrappers::SeriesDirRec>& series, Console& console) const;

    std::string fSource;
    std::string fDestination;
    std::vector<std::string> fSeries;
    bool fIsAll = false;
    std::string fNewName;
    bool fIsJson = false;
};

}  // namespace VantorCli
