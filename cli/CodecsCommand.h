#pragma once

#include "cli/Command.h"

namespace VantorCli {

// vantor codecs: lists the compressors that movies can be made with.
class CodecsCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    bool fIsJson = false;
};

}  // namespace VantorCli
