#pragma once

#include "cli/Command.h"

namespace VantorCli {

// vantor disc clear: removes all that is staged.
class DiscClearCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& disc) override;
    ExitStatus Run(Console& console) override;
};

}  // namespace VantorCli
