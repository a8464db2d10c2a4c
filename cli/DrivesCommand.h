#pragma once

#include "cli/Command.h"

namespace VantorCli {

// vantor drives: the drives of this computer.
class DrivesCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    bool fIsJson = false;
};

}  // namespace VantorCli
