#pragma once

#include <string>

#include "cli/Command.h"

namespace VantorCli {

// vantor tree: the patients, studies, series and instances of a directory.
class TreeCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    std::string fPath;
    bool fIsJson = false;
};

}  // namespace VantorCli
