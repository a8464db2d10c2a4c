#include "cli/SrCommand.h"

#include <chrono>
#include <optional>

#include "cli/Console.h"
#include "cli/Failure.h"
#include "cli/Json.h"
#include "cli/ReportHeader.h"
#include "cli/ReportJson.h"
#include "cli/ReportText.h"
#include "host/DateAndTime.h"
#include "host/LongTime.h"
#include "host/ShortDate.h"
#include "platform/CodePage.h"
#include "platform/Console.h"
#include "sr/StructuredReport.h"
#include "wrappers/DicomFileInfo.h"

namespace VantorCli {

namespace {

using Vantor::Platform::ToHostText;
using VantorWrappers::DicomFileInfo;
using VantorWrappers::SRContentItem;
using VantorWrappers::StructuredReport;

// Lines that are kept in a file or read by a program are as long as those of most terminals.
constexpr size_t kStandardWidth = 80;

// Has the library show dates and times as one of the two forms of output has them, whatever the user has
// chosen in the system.
void SetDateFormats(bool isJson) {
    VantorHost::ShortDate::SetFormatter([isJson](std::chrono::year_month_day date) {
        const HostDateTime moment = std::chrono::local_days(date);
        return ToHostText(isJson ? IsoDate(moment) : ReadableDate(moment));
    });
    VantorHost::LongTime::SetFormatter(
        [](std::chrono::seconds timeOfDay) { return ToHostText(ReadableTime(HostDateTime(timeOfDay))); });
    VantorHost::DateAndTime::SetFormatter([isJson](HostDateTime moment) {
        return ToHostText(isJson ? IsoDateTime(moment) : ReadableDate(moment) + ", " + ReadableTime(moment));
    });
}

// What a file is to those who expect a report in it.
struct FileIdentity {
    explicit FileIdentity(const DicomFileInfo& info)
        : fHeader(info), fIsImage(info.IsImage()), fIsReport(info.IsSR()) {}

    const char* ProblemAsReport() const {
        if (fIsReport) return "this is a structured report, but its content is damaged or missing";
        return fIsImage ? "this is an image, not a structured report" : "this is not a structured report";
    }

    ReportHeader fHeader;
    bool fIsImage;
    bool fIsReport;
};

// The file is let go of: there may be a long report in it, which is then read as such.
FileIdentity Identify(const HostString& path) {
    DicomFileInfo info(path);
    info.Read();
    return FileIdentity(info);
}

void PrintErrorAsJson(const HostString& path, const std::string& error, Console& console) {
    Json object;
    object["path"] = ToUtf8(path);
    object["error"] = error;
    console.Print(ToLine(object));
}

}  // namespace

CommandLine SrCommand::AddTo(const CommandLine& program) {
    const CommandLine line =
        program.AddCommand("sr", "Show a structured report: header, template and content");
    line.AddArgument("FILE", fFile, "A DICOM structured report");
    line.AddFlag("--json", fIsJson, "One JSON object");
    line.AddFlag("--codes", fIsWithCodes, "Show node numbers and the codes behind names and values as well");
    line.SetFooter(
        "Items stand below the one they belong to. Those that describe it, such as the site or the method "
        "of\n"
        "a measurement, are marked with \"-\", and those that it was derived from with \"from\". When an "
        "item was\n"
        "observed is shown where it differs from the item above. References to images, waveforms and places\n"
        "in them are left out; they keep their node numbers.\n"
        "\n"
        "Example:\n"
        "  vantor sr EXAM/REPORT01.dcm\n"
        "  vantor sr --codes EXAM/REPORT01.dcm\n"
        "  vantor sr --json EXAM/REPORT01.dcm > report.json");
    return line;
}

ExitStatus SrCommand::Run(Console& console) {
    SetDateFormats(fIsJson);
    const HostString path = ToHostText(fFile);
    std::optional<FileIdentity> file;
    if (const auto failure = FailureOf(path, [&] { file = Identify(path); })) {
        if (fIsJson) PrintErrorAsJson(path, *failure, console);
        console.Report(ToPrintable(path) + ": " + *failure);
        return ExitStatus::kFailed;
    }
    // Pixels are not read, of which there may be a lot.
    if (!file->fIsImage && PrintReport(path, console)) return ExitStatus::kDone;
    if (fIsJson) PrintReportAsJson(path, file->fHeader, nullptr, console);
    console.Report(ToPrintable(path) + ": " + file->ProblemAsReport());
    return ExitStatus::kFailed;
}

// False, and nothing is printed, when the file is no valid report.
bool SrCommand::PrintReport(const HostString& path, Console& console) const {
    const StructuredReport report(path);
    if (!report.IsValid()) return false;
    const ReportHeader header(report);
    const SRContentItem& root = *report.GetIOD()->GetRootContentItem();
    if (fIsJson) {
        PrintReportAsJson(path, header, &root, console);
    } else {
        const size_t width = Vantor::Platform::GetOutputWidth();
        ReportText(header, root, width > 0 ? width : kStandardWidth, fIsWithCodes, console).Print();
    }
    return true;
}

}  // namespace VantorCli
