#include "cli/SaveCommand.h"

#include "cli/Directories.h"
#include "cli/SeriesSaving.h"

namespace VantorCli {

using VantorWrappers::SeriesSaver;

CommandLine SaveCommand::AddTo(const CommandLine& program) {
    const CommandLine line =
        program.AddCommand("save", "Save the images of a series in place, numbered anew");
    line.AddArgument("PATH", fPath, "A DICOMDIR, or the folder that holds it");
    line.AddOption("--series", "UID", fSeries, "The series to be saved").Require();
    line.AddFlag("--new-uids", fHasNewUIDs, "Give each image a new SOP instance UID");
    line.AddFlag("--json", fIsJson, "One JSON object");
    line.SetFooter(
        "The images get the numbers 1, 2, 3 ... in the order in which vantor tree lists them, in their "
        "files\n"
        "and in the DICOMDIR. All else in the files stays as it is, but for references from one of them to\n"
        "another when the UIDs are new. A file is replaced when its new form is complete, and stays as it "
        "is\n"
        "when that fails; the others are saved all the same.\n"
        "\n"
        "Example:\n"
        "  vantor save EXAM --series 1.2.3.4\n"
        "  vantor save EXAM --series 1.2.3.4 --new-uids --json");
    return line;
}

ExitStatus SaveCommand::Run(Console& console) {
    Directories directories;
    const auto directory = directories.Open(fPath);
    RequireWhole(*directory);
    SeriesSaving saving(*directory, fSeries, console);
    VantorWrappers::SaveInfo info;
    info.SetAssignNewUIDsFlag(fHasNewUIDs);
    saving.Run([&](SeriesSaver& saver, auto& images, const auto& controls) {
        return saver.SaveSeries(&info, &images, &controls, &saving.GetSeries());
    });
    const ExitStatus status = saving.Show(saving.GetSeries().GetSeriesUID(), fIsJson);
    if (fHasNewUIDs && status == ExitStatus::kDone)
        saving.ReportOthers("they keep their UIDs and references");
    return status;
}

}  // namespace VantorCli
