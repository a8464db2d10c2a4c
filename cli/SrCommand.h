#pragma once

#include <string>

#include "cli/Command.h"
#include "cli/Text.h"

namespace VantorCli {

// vantor sr: a structured report's header, template and content.
class SrCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    bool PrintReport(const HostString& path, Console& console) const;

    std::string fFile;
    bool fIsJson = false;
    bool fIsWithCodes = false;
};

}  // namespace VantorCli
