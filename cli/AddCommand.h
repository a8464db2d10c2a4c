#pragma once

#include <string>
#include <vector>

#include "cli/Command.h"

namespace VantorCli {

// vantor add: enters files into a DICOMDIR.
class AddCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    std::string fPath;
    std::vector<std::string> fFiles;
    bool fIsJson = false;
};

}  // namespace VantorCli
