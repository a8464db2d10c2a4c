#pragma once

#include "cli/Command.h"

namespace VantorCli {

// vantor disc status: whether discs can be burned, and what is staged.
class DiscStatusCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& disc) override;
    ExitStatus Run(Console& console) override;

  private:
    bool fIsJson = false;
};

}  // namespace VantorCli
