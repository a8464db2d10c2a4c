#pragma once

#include <string>

#include "cli/Command.h"

namespace VantorCli {

// vantor save: saves the images of a series in place, numbered anew.
class SaveCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    std::string fPath;
    std::string fSeries;
    bool fHasNewUIDs = false;
    bool fIsJson = false;
};

}  // namespace VantorCli
