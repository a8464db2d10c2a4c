#pragma once

#include <memory>
#include <string>

#include "cli/Command.h"
#include "cli/SeriesCopying.h"

namespace VantorCli {

class Directories;

// vantor copy: copies series from one directory into another.
class CopyCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    std::shared_ptr<VantorWrappers::DicomDirectory> MakeDestination(Directories& directories) const;

    std::string fSource;
    std::string fDestination;
    SeriesCopying fCopying;
    std::string fNewName;
};

}  // namespace VantorCli
