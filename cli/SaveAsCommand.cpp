#include "cli/SaveAsCommand.h"

#include "cli/AttributeText.h"
#include "cli/Directories.h"
#include "cli/SeriesSaving.h"
#include "platform/CodePage.h"
#include "wrappers/PatientDirRec.h"
#include "wrappers/StudyDirRec.h"

namespace VantorCli {

namespace {

using namespace VantorWrappers;

constexpr wchar_t kAnonymousName[] = L"Anonymous";
constexpr wchar_t kAnonymousID[] = L"ANONYMOUS";

}  // namespace

CommandLine SaveAsCommand::AddTo(const CommandLine& program) {
    const CommandLine line =
        program.AddCommand("save-as", "Save a copy of the images of a series as a new series");
    line.AddArgument("PATH", fPath, "A DICOMDIR, a folder, or a DICOM file");
    line.AddOption("--series", "UID", fSeries, "The series to be copied").Require();
    line.AddOption("--to", "DESTINATION", fDestination,
                   "The DICOMDIR that takes the copy, or the folder that\nholds it; may be PATH")
        .Require();
    AddTexts(line);
    line.AddFlag("--new-study", fIsNewStudy, "Put the copy into a new study");
    const auto anonymous =
        line.AddFlag("--anonymous", fIsAnonymous, "Take out of the images who the patient is");
    line.AddFlag("--erase-physicians", fErasesPhysicians, "The names of physicians and operators as well")
        .Need(anonymous);
    line.AddFlag("--json", fIsJson, "One JSON object, with the UID of the new series");
    line.SetFooter(
        "The new series and its images have new UIDs; the UID of the series is printed. The images are\n"
        "numbered 1, 2, 3 ... in the order in which vantor tree lists them; their pixels are copied as they\n"
        "are. Reports and raw data of the series are not copied.\n"
        "\n"
        "Texts that are not given are those of the source; but for the study ID with --new-study, which the\n"
        "images have none of, and the DICOMDIR a new one. With --anonymous the name is \"Anonymous\", the "
        "ID\n"
        "\"ANONYMOUS\", and other texts that are not given are empty. Without --new-study an anonymous copy\n"
        "keeps the UID of the study, and the DICOMDIR its date and time as well.\n"
        "\n"
        "Texts of the source keep their character set. An image is not saved if a text that is given has\n"
        "letters that cannot stand beside its other texts: beside Latin-1 those of Latin-1 can, beside "
        "UTF-8\n"
        "all, beside other character sets those of ASCII.\n"
        "\n"
        "\"\" is an empty text; an empty name or ID leaves the images what they have, or with --anonymous\n"
        "nothing.\n"
        "\n"
        "Example:\n"
        "  vantor save-as EXAM --series 1.2.3.4 --to /media/usb --anonymous --new-study\n"
        "  vantor save-as EXAM --series 1.2.3.4 --to EXAM --series-description \"Best beats\"");
    return line;
}

void SaveAsCommand::AddTexts(const CommandLine& line) {
    const struct {
        const char* fName;
        Text& fText;
        const char* fHelp;
        std::string (*fProblemOf)(const std::string& text);
    } texts[] = {
        {"--patient-name", fPatientName, "The name in DICOM form:\nFAMILY^GIVEN^MIDDLE^PREFIX^SUFFIX",
         ProblemOfPersonName},
        {"--patient-id", fPatientID, "The patient's number", ProblemOfLongText},
        {"--accession", fAccession, "The accession number", ProblemOfShortText},
        {"--study-id", fStudyID, "The study ID", ProblemOfShortText},
        {"--study-description", fStudyDescription, "The study's description", ProblemOfLongText},
        {"--series-number", fSeriesNumber, "The series number", ProblemOfNumber},
        {"--series-description", fSeriesDescription, "The series' description", ProblemOfLongText},
    };
    for (const auto& text : texts) {
        const auto take = [&field = text.fText](const std::string& given) {
            field = Vantor::Platform::ToHostText(given);
        };
        line.AddOption(text.fName, "TEXT", take, text.fHelp).Check(text.fProblemOf);
    }
}

ExitStatus SaveAsCommand::Run(Console& console) {
    Directories directories;
    const auto source = directories.Open(fPath);
    SeriesSaving saving(*source, fSeries, console);
    SaveAsInfo info = MakeInfo(saving.GetSeries());
    info.SetDestinationDirectory(directories.OpenDicomdir(fDestination, "vantor create makes one"));
    HostString newUID;
    saving.Run([&](SeriesSaver& saver, auto& images, const auto& controls) {
        return saver.SaveAsSeries(&info, &images, &controls, &saving.GetSeries(), newUID);
    });
    const ExitStatus status = saving.Show(newUID, fIsJson);
    if (status == ExitStatus::kDone) saving.ReportOthers("they are not copied");
    return status;
}

SaveAsInfo SaveAsCommand::MakeInfo(const SeriesDirRec& series) const {
    SaveAsInfo info;
    info.SetNewStudyFlag(fIsNewStudy);
    info.SetMakeAnonymousFlag(fIsAnonymous);
    info.SetErasePhysicianNamesFlag(fErasesPhysicians);
    if (fIsAnonymous) {
        info.SetPatientName(VantorHost::PatientName(kAnonymousName));
        info.SetPatientNumber(kAnonymousID);
    } else {
        TakeSource(series, info);
    }
    TakeGiven(info);
    return info;
}

void SaveAsCommand::TakeSource(const SeriesDirRec& series, SaveAsInfo& info) const {
    StudyDirRec study;
    series.GetStudyDirRec(study);
    info.SetPatientName(VantorHost::PatientName(series.GetDicomPatientName()));
    info.SetPatientNumber(series.GetPatientNumber());
    info.SetAccessionNumber(study.GetAccessionNumber());
    if (!fIsNewStudy) info.SetStudyID(study.GetStudyID());
    info.SetStudyDescription(study.GetStudyDescription());
    info.SetSeriesNumber(series.GetSeriesNumber());
    info.SetSeriesDescription(series.GetSeriesDescription());
}

void SaveAsCommand::TakeGiven(SaveAsInfo& info) const {
    if (fPatientName) info.SetPatientName(VantorHost::PatientName(*fPatientName));
    if (fPatientID) info.SetPatientNumber(*fPatientID);
    if (fAccession) info.SetAccessionNumber(*fAccession);
    if (fStudyID) info.SetStudyID(*fStudyID);
    if (fStudyDescription) info.SetStudyDescription(*fStudyDescription);
    if (fSeriesNumber) info.SetSeriesNumber(*fSeriesNumber);
    if (fSeriesDescription) info.SetSeriesDescription(*fSeriesDescription);
}

}  // namespace VantorCli
