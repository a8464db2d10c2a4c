#pragma once

#include <string>

#include "cli/Command.h"
#include "cli/SeriesCopying.h"

namespace VantorCli {

// vantor disc stage: copies series into the staging area.
class DiscStageCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& disc) override;
    ExitStatus Run(Console& console) override;

  private:
    std::string fPath;
    SeriesCopying fCopying;
};

}  // namespace VantorCli
