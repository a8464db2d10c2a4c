#pragma once

#include <string>

#include "cli/Command.h"

namespace VantorCli {

// vantor dump: every element of a file.
class DumpCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    std::string fFile;
    std::string fDictionaryFile;
};

}  // namespace VantorCli
