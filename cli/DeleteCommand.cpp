#include "cli/DeleteCommand.h"

#include "cli/Console.h"
#include "cli/Directories.h"
#include "cli/Failure.h"
#include "cli/Json.h"
#include "cli/Progress.h"
#include "cli/SeriesChoice.h"

namespace VantorCli {

namespace {

using VantorWrappers::LuminaError;

Json ToJson(const HostString& uid, const LuminaError& error) {
    Json object;
    object["series"] = ToUtf8(uid);
    object["result"] = ResultName(error);
    return object;
}

std::string ToText(const std::string& uid, const LuminaError& error) {
    return (error.IsSuccess() ? "deleted  " : "failed   ") + uid;
}

}  // namespace

CommandLine DeleteCommand::AddTo(const CommandLine& program) {
    const CommandLine line = program.AddCommand("delete", "Delete series with their files");
    line.AddArgument("PATH", fPath, "A DICOMDIR, a folder, or a DICOM file");
    line.AddOption("--series", "UID", fSeries, "The series to be deleted").Require();
    line.AddFlag("--json", fIsJson, "One JSON object a line for each series");
    line.SetFooter(
        "The files are removed from the disk, and studies and patients that are empty then from the "
        "DICOMDIR.\n"
        "Nothing is deleted when one of the series is not there. vantor tree tells the UIDs of series.\n"
        "\n"
        "Example:\n"
        "  vantor delete EXAM --series 1.2.3.4 1.2.3.5");
    return line;
}

ExitStatus DeleteCommand::Run(Console& console) {
    Directories directories;
    const auto directory = directories.Open(fPath);
    RequireWhole(*directory);
    const auto series = ChooseSeries(*directory, fSeries, console);
    if (!series) return ExitStatus::kFailed;
    ExitStatus status = ExitStatus::kDone;
    Progress progress(console, series->size(), "series");
    const size_t width = WidthOfUIDs(*series);
    for (size_t i = 0; i < series->size(); ++i) {
        const HostString& uid = (*series)[i].GetSeriesUID();
        const LuminaError error = directory->DeleteSeries((*series)[i]);
        console.Print(fIsJson ? ToLine(ToJson(uid, error))
                              : ToText(PadRight(ToPrintable(uid), width), error) + "  (" +
                                    PlaceOf(i, series->size()) + ")");
        if (!error.IsSuccess()) {
            console.Report("series " + ToPrintable(uid) + ": " + ReasonOf(error));
            status = ExitStatus::kFailed;
        }
        progress.SetDone(i + 1);
    }
    return status;
}

}  // namespace VantorCli
