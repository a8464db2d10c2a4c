#pragma once

#include <string>

#include "cli/Command.h"

namespace VantorCli {

// vantor disc viewer: puts a player into the staging area.
class DiscViewerCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& disc) override;
    ExitStatus Run(Console& console) override;

  private:
    std::string fRoot;
};

}  // namespace VantorCli
