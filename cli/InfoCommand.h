#pragma once

#include <string>
#include <vector>

#include "cli/Command.h"
#include "cli/Text.h"

namespace VantorCli {

// vantor info: the identifying attributes of files.
class InfoCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    bool RunOnFile(const HostString& path, Console& console);

    std::vector<std::string> fFiles;
    bool fIsJson = false;
    bool fHasPrinted = false;
};

}  // namespace VantorCli
