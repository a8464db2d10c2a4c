#pragma once

#include "cli/Command.h"

namespace VantorCli {

// vantor dirs: the directories that a workstation has at hand.
class DirsCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    bool fIsJson = false;
};

}  // namespace VantorCli
