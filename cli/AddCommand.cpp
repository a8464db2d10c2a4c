#include "cli/AddCommand.h"

#include <filesystem>

#include "cli/Console.h"
#include "cli/Directories.h"
#include "cli/EnteredFiles.h"
#include "cli/Paths.h"

namespace VantorCli {

CommandLine AddCommand::AddTo(const CommandLine& program) {
    const CommandLine line = program.AddCommand("add", "Enter files into a DICOMDIR");
    line.AddArgument("PATH", fPath, "A DICOMDIR, or the folder that holds it");
    line.AddArgument("FILE", fFiles, "DICOM files in the DICOMDIR's folder or below it");
    line.AddFlag("--json", fIsJson, "One JSON object");
    line.SetFooter(
        "A file whose instance is there already counts as entered. A file that cannot be entered is "
        "reported,\n"
        "the others are entered all the same, and the exit status is 1.\n"
        "\n"
        "Example:\n"
        "  vantor add EXAM EXAM/NEW/IMAGE0003 EXAM/NEW/IMAGE0004");
    return line;
}

ExitStatus AddCommand::Run(Console& console) {
    std::vector<std::filesystem::path> paths;
    for (const std::string& file : fFiles) {
        paths.push_back(ToAbsolutePath(file));
    }
    Directories directories;
    const auto directory = directories.OpenDicomdir(fPath, "vantor create makes one");
    const EnteredFiles files(*directory, paths, console);
    console.Print(fIsJson ? ToLine(files.ToJson()) : files.ToText());
    for (const EnteredFiles::Skipped& skipped : files.GetSkipped()) {
        console.Report(ToPrintable(skipped.fPath) + ": " + skipped.fReason);
    }
    return files.GetSkipped().empty() ? ExitStatus::kDone : ExitStatus::kFailed;
}

}  // namespace VantorCli
