#pragma once

#include "cli/Command.h"

namespace VantorCli {

// vantor disc burn: writes what is staged to a disc.
class DiscBurnCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& disc) override;
    ExitStatus Run(Console& console) override;
};

}  // namespace VantorCli
