#include "cli/TreeCommand.h"

#include <CLI/CLI.hpp>

#include "cli/Console.h"
#include "cli/Directories.h"
#include "cli/TreeJson.h"
#include "cli/TreeText.h"

namespace VantorCli {

CLI::App* TreeCommand::AddTo(CLI::App& program) {
    CLI::App* app =
        program.add_subcommand("tree", "Show the patients, studies, series and instances of a directory");
    app->add_option("PATH", fPath, "A DICOMDIR, a folder, or a DICOM file")->required()->type_name("");
    app->add_flag("--json", fIsJson, "One JSON object");
    app->footer(
        "Of a folder, the DICOMDIR in it is shown; when there is none, the DICOM files in it and in the "
        "folders\n"
        "below it.\n"
        "\n"
        "Example:\n"
        "  vantor tree /media/cdrom\n"
        "  vantor tree --json EXAM/DICOMDIR");
    return app;
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
