#include "cli/TreeText.h"

#include <string_view>

#include "cli/Console.h"
#include "cli/Directories.h"
#include "cli/Instances.h"
#include "cli/Paths.h"
#include "cli/Table.h"

namespace VantorCli {

namespace {

using namespace VantorWrappers;

constexpr auto kLeft = Table::Align::kLeft;
constexpr auto kRight = Table::Align::kRight;

// How far the levels stand in.
constexpr size_t kStudyIndent = 2;
constexpr size_t kSeriesIndent = 4;
constexpr size_t kInstanceIndent = 6;

// Eight digits as 2004-01-19, any other text as it is.
std::string ReadableStoredDate(const HostString& date) {
    constexpr size_t kDigits = 8, kYear = 4, kMonth = 2;
    const bool isDate = date.size() == kDigits && date.find_first_not_of(L"0123456789") == HostString::npos;
    if (!isDate) return ToPrintable(date);
    return ToPrintable(date.substr(0, kYear) + L"-" + date.substr(kYear, kMonth) + L"-" +
                       date.substr(kYear + kMonth));
}

// Those that are not empty, with a separator between them.
std::string Joined(const std::vector<std::string>& texts, std::string_view separator) {
    std::string joined;
    for (const std::string& text : texts) {
        if (!joined.empty() && !text.empty()) joined += separator;
        joined += text;
    }
    return joined;
}

const char* ReadableKind(const DicomDirectory& directory) {
    if (HasDicomdir(directory)) return "DICOMDIR";
    return IsFolder(directory.GetFullPath()) ? "folder" : "file";
}

// The text, or what stands in its column when there is none.
std::string ReadableOrNone(const HostString& text) { return text.empty() ? "-" : ToPrintable(text); }

// "ID 4711", or nothing for an empty text.
std::string Labelled(const char* label, const HostString& text) {
    return text.empty() ? "" : std::string(label) + " " + ToPrintable(text);
}

std::string HeadlineOf(const PatientDirRec& patient) {
    const std::string name = ToPrintable(patient.GetPatientName());
    return Joined({name.empty() ? "(no name)" : name, Labelled("ID", patient.GetPatientNumber())}, "  ");
}

std::string HeadlineOf(const StudyDirRec& study) {
    const std::string moment = Joined(
        {ReadableStoredDate(study.GetStoredStudyDate()), ToPrintable(Trimmed(study.GetStudyTime()))}, " ");
    return Joined({moment.empty() ? "(no date)" : moment, ToPrintable(study.GetStudyDescription()),
                   Labelled("ID", study.GetStudyID()), Labelled("accession", study.GetAccessionNumber())},
                  "  ");
}

// How many instances of each kind there are.
class KindCounts {
  public:
    void Add(std::string_view kind) {
        for (Count& each : fCounts) {
            if (kind == each.fKind) ++each.fNumber;
        }
    }

    std::string ToText() const {
        std::vector<std::string> texts;
        for (const Count& each : fCounts) {
            if (each.fNumber > 0) texts.push_back(Counted(each.fNumber, each.fOne, each.fMany));
        }
        return texts.empty() ? "empty" : Joined(texts, ", ");
    }

  private:
    struct Count {
        const char* fKind;
        const char* fOne;
        const char* fMany;
        uint64_t fNumber = 0;
    };
    Count fCounts[4] = {{"image", "image", "images"},
                        {"sr", "report", "reports"},
                        {"raw", "raw data object", "raw data objects"},
                        {"private", "private object", "private objects"}};
};

}  // namespace

TreeText::TreeText(const DicomDirectory& directory, Console& console)
    : fDirectory(directory), fConsole(console), fRoot(directory.GetRootPath()) {}

void TreeText::Print() {
    fConsole.Print(ToPrintable(Trimmed(fDirectory.GetDisplayName())) + "  (" + ReadableKind(fDirectory) +
                   ")");
    fConsole.Print(ToPrintable(fDirectory.GetFullPath()));
    for (const PatientDirRec& patient : fDirectory.GetPatientList()) {
        PrintPatient(patient);
    }
    PrintTotals();
}

void TreeText::PrintPatient(const PatientDirRec& patient) {
    fConsole.Print("");
    fConsole.Print(HeadlineOf(patient));
    std::vector<StudyDirRec> studies;
    patient.GetStudies(studies);
    for (const StudyDirRec& study : studies) {
        PrintStudy(study);
    }
    fStudies += studies.size();
}

void TreeText::PrintStudy(const StudyDirRec& study) {
    fConsole.Print(std::string(kStudyIndent, ' ') + HeadlineOf(study));
    std::vector<SeriesDirRec> list;
    study.GetSeries(list);
    Table headlines(kSeriesIndent, {kLeft, kRight, kLeft, kLeft, kLeft});
    std::vector<std::string> contents;
    for (const SeriesDirRec& series : list) {
        SeriesContent content = ContentOf(series);
        headlines.AddRow("series", ReadableOrNone(series.GetSeriesNumber()),
                         ReadableOrNone(series.GetModality()), content.fCounts,
                         ToPrintable(series.GetSeriesDescription()));
        contents.push_back(std::move(content.fText));
    }
    const std::vector<std::string> lines = headlines.ToLines();
    for (size_t i = 0; i < list.size(); ++i) {
        fConsole.Print(lines[i]);
        fConsole.PrintPart(contents[i]);
    }
    fSeries += list.size();
}

TreeText::SeriesContent TreeText::ContentOf(const SeriesDirRec& series) {
    KindCounts counts;
    Table instances(kInstanceIndent, {kLeft, kRight, kLeft});
    fWalk.ForEach(series, [&](const Instance& instance) {
        counts.Add(instance.fKind);
        instances.AddRow(instance.fKind, instance.fNumber ? std::to_string(*instance.fNumber) : "",
                         ToPrintable(RelativeTo(fRoot, instance.fPath)));
        ++fInstances;
    });
    // How other commands are told which series is meant.
    const std::string uid = std::string(kInstanceIndent, ' ') + Labelled("UID", series.GetSeriesUID());
    return {uid + '\n' + instances.ToText(), counts.ToText()};
}

void TreeText::PrintTotals() {
    fConsole.Print("");
    fConsole.Print(Joined({Counted(fDirectory.GetPatientList().size(), "patient", "patients"),
                           Counted(fStudies, "study", "studies"), Counted(fSeries, "series", "series"),
                           Counted(fInstances, "instance", "instances")},
                          ", "));
}

}  // namespace VantorCli
