#pragma once

#include <filesystem>
#include <string>

#include "cli/Command.h"

namespace VantorCli {

class EnteredFiles;

// vantor create: a new DICOMDIR over the files of a folder.
class CreateCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    void Show(const EnteredFiles& files, const std::filesystem::path& folder, Console& console) const;

    std::string fFolder;
    std::string fName;
    bool fIsForced = false;
    bool fIsJson = false;
};

}  // namespace VantorCli
