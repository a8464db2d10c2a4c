#include "cli/TreeCommand.h"

#include "cli/Console.h"
#include "cli/Directories.h"
#include "cli/TreeJson.h"
#include "cli/TreeText.h"

namespace VantorCli {

CommandLine TreeCommand::AddTo(const CommandLine& program) {
    const CommandLine line =
        program.AddCommand("tree", "Show the patients, studies, series and instances of a directory");
    line.AddArgument("PATH", fPath, "A DICOMDIR, a folder, or a DICOM file");
    line.AddFlag("--json", fIsJson, "One JSON object");
    line.SetFooter(
        "Of a folder, the DICOMDIR in it is shown; when there is none, the DICOM files in it and in the "
        "folders\n"
        "below it.\n"
        "\n"
        "Example:\n"
        "  vantor tree /media/cdrom\n"
        "  vantor tree --json EXAM/DICOMDIR");
    return line;
}

ExitStatus TreeCommand::Run(Console& console) {
    Directories directories;
    const auto directory = directories.Open(fPath);
    if (fIsJson) {
        PrintTreeAsJson(*directory, console);
    } else {
        TreeText(*directory, console).Print();
    }
    const std::string loss = FindLoss(*directory);
    if (loss.empty()) return ExitStatus::kDone;
    console.Report(loss);
    return ExitStatus::kFailed;
}

}  // namespace VantorCli
