#include "cli/InfoCommand.h"

#include <cstdint>
#include <optional>

#include "cli/Columns.h"
#include "cli/Console.h"
#include "cli/Failure.h"
#include "cli/FileAttributes.h"
#include "cli/Json.h"
#include "cli/Progress.h"
#include "platform/CodePage.h"
#include "wrappers/ValueText.h"

namespace VantorCli {

namespace {

// ---- JSON ----

const char* KindOf(const FileAttributes& file) {
    if (file.fIsSR) return "sr";
    return file.fIsImage ? "image" : "other";
}

Json DateOrNull(const MomentAttribute& attribute) {
    return attribute.fMoment ? Json(IsoDate(*attribute.fMoment)) : Json();
}

Json DateTimeOrNull(const MomentAttribute& attribute) {
    return attribute.fMoment ? Json(IsoDateTime(*attribute.fMoment)) : Json();
}

Json ToJson(const HostString& path, const FileAttributes& file) {
    Json object;
    object["path"] = ToUtf8(path);
    object["kind"] = KindOf(file);
    object["uid"] = ToUtf8(file.fUID);
    object["seriesUID"] = ToUtf8(file.fSeriesUID);
    object["seriesDescription"] = ToUtf8(file.fSeriesDescription);
    object["seriesNumber"] = file.fSeriesNumber;
    object["studyID"] = ToUtf8(file.fStudyID);
    object["studyUID"] = ToUtf8(file.fStudyUID);
    object["studyDescription"] = ToUtf8(file.fStudyDescription);
    object["studyDate"] = DateOrNull(file.fStudyDate);
    object["studyTime"] = DateTimeOrNull(file.fStudyTime);
    object["patientBirthDate"] = DateOrNull(file.fPatientBirthDate);
    object["accessionNumber"] = ToUtf8(file.fAccessionNumber);
    object["referringPhysician"] = ToUtf8(file.fReferringPhysician);
    object["modality"] = ToUtf8(file.fModality);
    object["imageNumber"] = file.fImageNumber;
    object["numberOfFrames"] = file.fNumberOfFrames;
    object["patientName"] = ToUtf8(file.fPatientName);
    object["patientId"] = ToUtf8(file.fPatientId);
    object["contentDate"] = DateOrNull(file.fContentDate);
    object["contentTime"] = DateTimeOrNull(file.fContentTime);
    object["sourceImageClassUIDs"] = ListOf(file.fSourceImageClassUIDs);
    object["sourceImageInstanceUIDs"] = ListOf(file.fSourceImageInstanceUIDs);
    return object;
}

Json ToJson(const HostString& path, const std::string& error) {
    Json object;
    object["path"] = ToUtf8(path);
    object["error"] = error;
    return object;
}

// ---- Text ----

const char* ReadableKind(const FileAttributes& file) {
    if (file.fIsSR) return "structured report";
    return file.fIsImage ? "image" : "other DICOM object";
}

std::string ReadableNumber(int32_t number) {
    return number == VantorWrappers::kNoInteger ? "" : std::to_string(number);
}

std::string ReadableProblem(const MomentAttribute& attribute) {
    return attribute.fProblem.empty() ? "" : "(" + ToPrintable(attribute.fProblem) + ")";
}

std::string Readable(const MomentAttribute& date) {
    return date.fMoment ? ReadableDate(*date.fMoment) : ReadableProblem(date);
}

std::string Readable(const MomentAttribute& date, const MomentAttribute& dateTime) {
    if (!date.fMoment) return ReadableProblem(date);
    if (dateTime.fMoment) return ReadableDate(*dateTime.fMoment) + ", " + ReadableTime(*dateTime.fMoment);
    if (dateTime.fProblem.empty()) return ReadableDate(*date.fMoment);
    return ReadableDate(*date.fMoment) + " " + ReadableProblem(dateTime);
}

void AddSourceImages(Columns& columns, const FileAttributes& file) {
    for (const HostString& uid : file.fSourceImageInstanceUIDs) {
        columns.Add("Source image", uid);
    }
    for (const HostString& uid : file.fSourceImageClassUIDs) {
        columns.Add("Source image class", uid);
    }
}

Columns ToColumns(const HostString& path, const FileAttributes& file) {
    const std::string studyMoment = Readable(file.fStudyDate, file.fStudyTime);
    const std::string contentMoment = Readable(file.fContentDate, file.fContentTime);
    Columns columns(path);
    columns.AddLine("Kind", ReadableKind(file));
    columns.Add("Modality", file.fModality);
    columns.Add("Patient name", file.fPatientName);
    columns.Add("Patient ID", file.fPatientId);
    columns.AddLine("Date of birth", Readable(file.fPatientBirthDate));
    columns.AddLine("Study date", studyMoment);
    columns.Add("Study description", file.fStudyDescription);
    columns.Add("Study ID", file.fStudyID);
    columns.Add("Accession number", file.fAccessionNumber);
    columns.Add("Referring physician", file.fReferringPhysician);
    columns.AddLine("Series number", ReadableNumber(file.fSeriesNumber));
    columns.Add("Series description", file.fSeriesDescription);
    columns.AddLine("Image number", ReadableNumber(file.fImageNumber));
    columns.AddLine("Frames", ReadableNumber(file.fNumberOfFrames));
    // A file without a content date has the study's, which stands above already.
    if (contentMoment != studyMoment) columns.AddLine("Content date", contentMoment);
    columns.Add("Study UID", file.fStudyUID);
    columns.Add("Series UID", file.fSeriesUID);
    columns.Add("Instance UID", file.fUID);
    AddSourceImages(columns, file);
    return columns;
}

}  // namespace

CommandLine InfoCommand::AddTo(const CommandLine& program) {
    const CommandLine line = program.AddCommand("info", "Show the identifying attributes of DICOM files");
    line.AddArgument("FILE", fFiles, "DICOM files");
    line.AddFlag("--json", fIsJson, "One JSON object a line for each file");
    line.SetFooter(
        "Only attributes that a file has are shown. A file that cannot be read is reported, the others are\n"
        "shown all the same, and the exit status is 1.\n"
        "\n"
        "Example:\n"
        "  vantor info EXAM/IMAGE0001.dcm EXAM/IMAGE0002.dcm\n"
        "  vantor info --json EXAM/*.dcm > exam.jsonl");
    return line;
}

ExitStatus InfoCommand::Run(Console& console) {
    ExitStatus status = ExitStatus::kDone;
    Progress progress(console, fFiles.size(), "files");
    uint64_t done = 0;
    for (const std::string& file : fFiles) {
        if (!RunOnFile(Vantor::Platform::ToHostText(file), console)) status = ExitStatus::kFailed;
        progress.SetDone(++done);
    }
    return status;
}

bool InfoCommand::RunOnFile(const HostString& path, Console& console) {
    std::optional<FileAttributes> file;
    const std::optional<std::string> failure = FailureOf(path, [&] { file.emplace(path); });
    if (fIsJson) console.Print(ToLine(failure ? ToJson(path, *failure) : ToJson(path, *file)));
    if (failure) {
        console.Report(ToPrintable(path) + ": " + *failure);
    } else if (!fIsJson) {
        if (fHasPrinted) console.Print("");
        ToColumns(path, *file).Print(console);
        fHasPrinted = true;
    }
    return !failure;
}

}  // namespace VantorCli
