#pragma once

#include <string>
#include <vector>

#include "cli/Command.h"

namespace VantorCli {

// vantor delete: deletes series with their files.
class DeleteCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    std::string fPath;
    std::vector<std::string> fSeries;
    bool fIsJson = false;
};

}  // namespace VantorCli
