// What hosts see of the records of a directory, and what becomes of it.

#include "tests/wrappers/Workstation.h"
#include "wrappers/ImageDirRec.h"
#include "wrappers/PrivateDirRec.h"
#include "wrappers/RawDataDirRec.h"
#include "wrappers/StructReportDirRec.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using namespace VantorWrappers;

constexpr char kClass[] = "1.2.840.10008.5.1.4.1.1.3.1";

HostString Text(const HostString& text) { return text + L"|"; }
HostString Text(int32_t number) { return std::to_wstring(number) + L"|"; }
template <typename... Values>
HostString Show(const Values&... values) {
    return (Text(values) + ...);
}

// Records as a host holds them.
struct Records {
    explicit Records(const DicomDirectory& directory)
        : fPatient(directory.GetPatientList().at(0)),
          fStudy(directory.GetStudyList().at(0)),
          fSeries(directory.GetSeriesList().at(0)) {
        Fill();
        fImage = fImages.at(0);
        fRaw = fRawData.at(0);
        fReport = fReports.at(0);
    }
    void Fill() {
        fSeries.GetImages(fImages);
        fSeries.GetRawDataObjects(fRawData);
        fSeries.GetPrivateDicom(fPrivate);
        fSeries.GetSRs(fReports);
    }
    PatientDirRec fPatient;
    StudyDirRec fStudy;
    SeriesDirRec fSeries;
    std::vector<ImageDirRec> fImages;
    std::vector<RawDataDirRec> fRawData;
    std::vector<PrivateDirRec> fPrivate;
    std::vector<StructReportDirRec> fReports;
    ImageDirRec fImage;
    RawDataDirRec fRaw;
    StructReportDirRec fReport;
};

class RecordsTest : public Workstation {
  protected:
    RecordsTest() {
        FileBuilder report = FileOf({7, 2, "", "ID1", kReportClass});
        report.Data().Text({0x0021, 0x0010}, Vr::kLO, "QUANTIX").Text({0x0021, 0x10A6}, Vr::kOB, "report");
        fFolder.WriteFile("C/IMAGES/7", report.Build());
        fFolder.WriteFile("C/QMAG/3", Bytes(5000));
        fFolder.WriteFile("C/IMAGES/5", Bytes(20500));
        Open("20240229");
    }

    // A study with everything, and one with next to nothing.
    void Open(const char* date) {
        DirectoryBuilder media;
        const int patient = media.Add(DirectoryBuilder::kRoot, "PATIENT ");
        media.Keys(patient)
            .Text(Tags::kPatientName, Vr::kPN, " M\xFCller^Anna^^Dr.")
            .Text(Tags::kPatientID, Vr::kLO, " ID 1");
        const int study = media.Add(patient, "STUDY ");
        media.Keys(study)
            .Text(Tags::kStudyDate, Vr::kDA, date)
            .Text(Tags::kStudyTime, Vr::kTM, "101500")
            .Text(Tags::kAccessionNumber, Vr::kSH, " A 7")
            .Text(Tags::kReferringPhysicianName, Vr::kPN, "Ref^Paul")
            .Text(Tags::kStudyDescription, Vr::kLO, " Heart ")
            .Text(Tags::kStudyInstanceUID, Vr::kUI, "1.2.3.1.1")
            .Text(Tags::kStudyID, Vr::kSH, " S1 ");
        const int series = media.AddSeries(study, 2);
        media.Keys(series).Text(Tags::kSeriesDescription, Vr::kLO, " 4CH ");
        media.Keys(media.Add(series, "IMAGE "))
            .Text(Tags::kReferencedFileID, Vr::kCS, "QMAG\\3")
            .Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, kClass)
            .Text(Tags::kReferencedSOPInstanceUIDInFile, Vr::kUI, "1.2.3.3.3")
            .Text(Tags::kInstanceNumber, Vr::kIS, "3");
        int number = 4;
        for (const char* type : {"IMAGE ", "RAW DATA", "PRIVATE ", "SR DOCUMENT "}) {
            media.AddInstance(series, number++, type);
        }
        media.AddSeries(study, 9, "MR");
        media.Add(media.Add(patient, "STUDY "), "SERIES");
        fFolder.WriteFile("C/DICOMDIR", media.Build());
        Reopen();
    }
    void Reopen() {
        fDirectory.reset();
        fDirectory = Start().OpenDirectory(PathOf("C/DICOMDIR"));
        fTrace.Take();
    }

    std::shared_ptr<DicomDirectory> fDirectory;
};

TEST_F(RecordsTest, TellWhatTheDirectoryKnows) {
    Records all(*fDirectory);
    const PatientDirRec& patient = all.fPatient;
    EXPECT_EQ(Show(patient.GetPatientName(), patient.GetDicomPatientName(), patient.GetPatientNumber(),
                   patient.GetStudyCount(), patient.GetSeriesCount(), patient.GetImageCount()),
              L"M\xFCller, Dr. Anna|M\xFCller^Anna^^Dr.|ID 1|2|3|2|");
    const StudyDirRec& study = all.fStudy;
    EXPECT_EQ(Show(study.GetPatientName(), study.GetDicomPatientName(), study.GetPatientNumber(),
                   study.GetStudyDescription(), study.GetStudyDate(), study.GetStoredStudyDate(),
                   study.GetStudyTime(), study.GetAccessionNumber(), study.GetReferringPhysician(),
                   study.GetModalities(), study.GetStudyUID(), study.GetStudyID(), study.GetImageCount(),
                   study.GetSeriesCount(), study.GetSRCount(), study.GetQuantixReportCount()),
              L"M\xFCller, Dr. Anna|M\xFCller^Anna^^Dr.|ID 1|Heart|2024-2-29|20240229|10:15|A 7|Ref, Paul|"
              L"MRUS|1.2.3.1.1|S1|2|2|1|1|");
    SeriesDirRec& series = all.fSeries;
    EXPECT_EQ(Show(series.GetPatientName(), series.GetDicomPatientName(), series.GetReferringPhysician(),
                   series.GetPatientNumber(), series.GetStudyDescription(), series.GetStudyDate(),
                   series.GetStudyTime(), series.GetModality(), series.GetSeriesUID(),
                   series.GetSeriesNumber(), series.GetSeriesDescription(), series.GetManufacturerOrgID(),
                   series.GetNumberDicomObjects(), series.GetNumberSRs(), series.CheckSequoiaLoRes(),
                   series.GetDiskSpace(), all.fImage.GetDiskSpaceInKBytes(), all.fRaw.GetDiskSpaceInKBytes()),
              L"M\xFCller, Dr. Anna|M\xFCller^Anna^^Dr.|Ref, Paul|ID 1|Heart|2024-2-29|10:15|US|1.2.3.2.2|2|"
              L"4CH|1.2.3.2.2|4|1|1|24|4|20|");
    const HostString report = PathOf("C/IMAGES/7");
    EXPECT_EQ(series.GetSRfilePath(), L"");
    EXPECT_TRUE(series.HasQuantixReport() && all.fReport.IsQuantixReport());
    EXPECT_FALSE(SeriesDirRec(fDirectory->GetSeriesList().at(1)).HasQuantixReport());
    EXPECT_EQ(Show(series.GetSRfilePath(), all.fReport.GetSRPath(), all.fReport.GetInstanceUID(),
                   all.fReport.GetClassUID()),
              Show(report, report, L"1.2.3.3.7", Wide(kClass)));
    // The study UID is the class, by which hosts tell what can be shown together. Private objects have always
    // been without UIDs of their own here.
    const auto show = [](const InstanceDirRec& record, const HostString& path) {
        return Show(record.GetInstanceUID(), record.GetClassUID(), record.GetSeriesUID(),
                    record.GetStudyUID(), record.GetPatientName(), record.GetPatientID(), path);
    };
    const HostString above =
        L"|1.2.840.10008.5.1.4.1.1.3.1|1.2.3.2.2|1.2.840.10008.5.1.4.1.1.3.1| "
        L"M\xFCller^Anna^^Dr. |ID 1|";
    EXPECT_EQ(show(all.fImage, all.fImage.GetImagePath()), L"1.2.3.3.3" + above + Show(PathOf("C/QMAG/3")));
    EXPECT_EQ(show(all.fRaw, all.fRaw.GetRawDataPath()), L"1.2.3.3.5" + above + Show(PathOf("C/IMAGES/5")));
    EXPECT_EQ(show(all.fPrivate.at(0), all.fPrivate.at(0).GetDicomFile()),
              L"||1.2.3.2.2|| M\xFCller^Anna^^Dr. |ID 1|" + Show(PathOf("C/IMAGES/6")));
    EXPECT_EQ(all.fImage.GetImageNumber(), 3);
    EXPECT_EQ(fTrace.Take(), Lines());
}

TEST_F(RecordsTest, AreFoundFromOneAnother) {
    Records all(*fDirectory);
    PatientDirRec patient, samePatient;
    StudyDirRec study;
    EXPECT_TRUE(all.fSeries.GetStudyDirRec(study) && study.GetPatientDirRec(patient) &&
                all.fSeries.GetPatientDirRec(samePatient));
    EXPECT_EQ(Show(patient.GetPatientNumber(), samePatient.GetPatientNumber(), study.GetStudyID()),
              L"ID 1|ID 1|S1|");
    std::vector<StudyDirRec> studies(7);
    fTrace.SetLevel(VantorHost::TraceLevel::kInfo);
    patient.GetStudies(studies);
    EXPECT_EQ(fTrace.Take(), (Lines{"info: Entering", "info: Exiting"}));
    std::vector<SeriesDirRec> series(7);
    studies.at(0).GetSeries(series);
    ASSERT_EQ(studies.size() * series.size(), 4U);
    EXPECT_TRUE(series[0] == all.fSeries && series[0].GetHashCode() == all.fSeries.GetHashCode());
    fFolder.WriteFile("D/COPY/DICOMDIR", ReadWholeFile(fFolder.PathOf("C/DICOMDIR")));
    const auto other = Workstation::Open("D/COPY/DICOMDIR");
    EXPECT_FALSE(series[0] == series[1] || series[0] == other->GetSeriesList().at(0));
    Records others(*other);
    EXPECT_TRUE(all.fImage.IsSameSeries(others.fRaw) && all.fImage.IsSamePatient(others.fImage));
    others.fImage.SetClassUID(L"1.9");
    others.fPatient.SetPatientNumber(L"ID 2");
    others.fImage.UpdateFields(other->GetUmImage(others.fImage.GetInstanceUID()));
    EXPECT_FALSE(all.fImage.IsSameStudy(others.fImage) || all.fImage.IsSamePatient(others.fImage));
}

// A record holds 64 bytes; its object must find it by what it holds.
TEST_F(RecordsTest, SetsNoMoreThanARecordHolds) {
    PatientDirRec patient = Records(*fDirectory).fPatient;
    patient.SetPatientName(HostString(70, L'N'));
    patient.SetPatientNumber(HostString(70, L'7'));
    EXPECT_EQ(patient.GetDicomPatientName() + patient.GetPatientNumber(),
              HostString(64, L'N') + HostString(64, L'7'));
    std::vector<StudyDirRec> studies;
    patient.GetStudies(studies);
    EXPECT_EQ(studies.size(), 2U);
    EXPECT_EQ(fTrace.Take(), Lines());
}

TEST_F(RecordsTest, AnUnreadableDateIsThatOfTheFirstDay) {
    for (const char* date : {"20230229", "", "2024031", "2024.03.15"}) {
        Open(date);
        EXPECT_EQ(fDirectory->GetStudyList().at(0).GetStudyDate(), L"1-1-1") << date;
        EXPECT_EQ(fDirectory->GetSeriesList().at(0).GetStudyDate(), L"1-1-1") << date;
    }
}

TEST_F(RecordsTest, OfNothingOrWithoutAncestorsSayWhatIsMissing) {
    DicomDirectory& directory = *fDirectory;
    EXPECT_EQ(
        Show(PatientDirRec(nullptr, directory).GetPatientName(),
             StudyDirRec(nullptr, directory).GetStudyDate(), ImageDirRec(nullptr, directory).GetImagePath(),
             RawDataDirRec(nullptr, directory).GetRawDataPath(),
             PrivateDirRec(nullptr, directory).GetDicomFile(),
             StructReportDirRec(nullptr, directory).GetSRPath()),
        L"||||||");
    const std::string ending = ", initialization can't be completed";
    EXPECT_EQ(fTrace.Take(), Lines(6, "warning: No pointer to unmanaged object" + ending));
    TSeriesDoc seriesDoc(nullptr, nullptr);
    seriesDoc.SetModality("CT");
    EXPECT_EQ(SeriesDirRec(nullptr, directory).GetModality(), L"");
    EXPECT_EQ(SeriesDirRec(&seriesDoc, directory).GetModality(), L"CT");
    EXPECT_EQ(fTrace.Take(), (Lines{"warning: No pointer to unmanaged series object" + ending,
                                    "warning: No pointer to unmanaged study object" + ending}));
    Records all(directory);
    TImageDoc image(nullptr, nullptr, 0);
    image.SetSOPClassUID("1.2");
    all.fImage.UpdateFields(&image);
    EXPECT_EQ(Show(all.fImage.GetClassUID(), all.fImage.GetSeriesUID(), all.fImage.GetStudyUID(),
                   all.fImage.GetPatientName(), all.fImage.GetPatientID(), all.fImage.GetImagePath()),
              L"1.2||||||");
}

struct Setter {
    const char* fWarning;
    void (*fSet)(Records& records, const HostString& text);
    HostString (*fGet)(const Records& records);
    const wchar_t* fSaved;  // what is found later when L"1" has been set and saved
};

template <auto kRecord, auto kSet, auto kGet>
Setter Of(const char* warning, const wchar_t* saved = L"1") {
    return {
        warning,
        [](Records& records, const HostString& text) {
            std::invoke(kSet, std::invoke(kRecord, records), text);
        },
        [](const Records& records) { return HostString(std::invoke(kGet, std::invoke(kRecord, records))); },
        saved};
}

using R = Records;
using Patient = PatientDirRec;
using Study = StudyDirRec;
using Series = SeriesDirRec;
using Image = ImageDirRec;
using Report = StructReportDirRec;

const std::vector<Setter> kSetters = {
    Of<&R::fPatient, &Patient::SetPatientName, &Patient::GetDicomPatientName>("Patient, new patient name"),
    Of<&R::fPatient, &Patient::SetPatientNumber, &Patient::GetPatientNumber>("Patient, new patient number"),
    Of<&R::fStudy, &Study::SetStudyDescription, &Study::GetStudyDescription>("Study, new Study Description"),
    Of<&R::fStudy, &Study::SetStudyUID, &Study::GetStudyUID>("Study, new Study UID"),
    Of<&R::fStudy, &Study::SetStudyID, &Study::GetStudyID>("Study, new Study ID"),
    Of<&R::fSeries, &Series::SetSeriesUID, &Series::GetSeriesUID>("Series, new Series UID"),
    Of<&R::fSeries, &Series::SetModality, &Series::GetModality>("Series, new Modality"),
    Of<&R::fSeries, &Series::SetSeriesNumber, &Series::GetSeriesNumber>("Series, new Series Number"),
    Of<&R::fSeries, &Series::SetSeriesDescription, &Series::GetSeriesDescription>(
        "Series, new Series Description"),
    Of<&R::fImage, &Image::SetInstanceUID, &Image::GetInstanceUID>("Image, new Image Instance UID"),
    Of<&R::fImage, &Image::SetClassUID, &Image::GetClassUID>("Image, new Image Class UID"),
    {"Image, new Image Number", [](R& records, const HostString&) { records.fImage.SetImageNumber(1); },
     [](const R& records) { return std::to_wstring(records.fImage.GetImageNumber()); }, L"1"},
    Of<&R::fRaw, &RawDataDirRec::SetInstanceUID, &RawDataDirRec::GetInstanceUID>(
        "Raw Data, new Instance UID", L"1.2.3.3.5"),  // raw data keep it in memory only
    Of<&R::fReport, &Report::SetInstanceUID, &Report::GetInstanceUID>("SR, new SR Instance UID"),
    Of<&R::fReport, &Report::SetClassUID, &Report::GetClassUID>("SR, new SR Class UID"),
};

TEST_F(RecordsTest, SettersChangeTheRecordAndNothingOnDiskBeforeItIsSaved) {
    const Bytes before = ReadWholeFile(fFolder.PathOf("C/DICOMDIR"));
    for (const Setter& setter : kSetters) {
        SCOPED_TRACE(setter.fWarning);
        fFolder.WriteFile("C/DICOMDIR", before);
        Reopen();
        Records records(*fDirectory);
        setter.fSet(records, L" \t1 ");
        EXPECT_EQ(setter.fGet(records), L"1");
        EXPECT_EQ(ReadWholeFile(fFolder.PathOf("C/DICOMDIR")), before);
        setter.fSet(records, L"1");
        fDirectory->Save();
        EXPECT_EQ(fTrace.Take(), Lines()) << "found by its new text as well";
        Reopen();
        EXPECT_EQ(setter.fGet(Records(*fDirectory)), setter.fSaved);
    }
}

// Hosts keep records in their windows while media come and go.
TEST_F(RecordsTest, OutliveTheDirectoryAndFindNothingThen) {
    for (const std::string way : {"refreshed", "disposed", "dropped", "released", "unmanaged"}) {
        SCOPED_TRACE(way);
        Open("20240229");
        Records records(*fDirectory);
        if (way == "refreshed") {
            fFolder.WriteFile("C/DICOMDIR", DirectoryBuilder().Build());
            std::filesystem::last_write_time(fFolder.PathOf("C/DICOMDIR"), {});
            fDirectory->UpdateDirRecs();
        } else if (way == "disposed") {
            fDirectory->Dispose();
        } else {
            fManager->DeleteDirectory(fDirectory);
            if (way != "dropped") fDirectory.reset();
            if (way == "unmanaged") fManager.reset();
        }
        for (const Setter& setter : kSetters) {
            std::string warning = setter.fWarning;
            warning.insert(warning.find(','), " Object");
            const HostString before = setter.fGet(records);
            setter.fSet(records, L"1");
            EXPECT_EQ(setter.fGet(records), before);
            EXPECT_EQ(fTrace.Take(), Lines{"warning: Failed to find unmanaged " + warning + " not set."});
        }
        std::vector<StudyDirRec> studies(1);
        records.fPatient.GetStudies(studies);
        EXPECT_EQ(fTrace.Take(), Lines{way == "refreshed" ? "warning: Failed to create a TPatientDoc object"
                                                          : "warning: Invalid fDicomDirectory detected"});
        std::vector<SeriesDirRec> series(1);
        records.fStudy.GetSeries(series);
        records.Fill();
        EXPECT_EQ(studies.size() + series.size() + records.fImages.size() + records.fReports.size() +
                      records.fRawData.size() + records.fPrivate.size(),
                  0U);
        EXPECT_FALSE(records.fStudy.GetPatientDirRec(records.fPatient) ||
                     records.fSeries.GetPatientDirRec(records.fPatient) ||
                     records.fSeries.GetStudyDirRec(records.fStudy) || records.fSeries.HasQuantixReport() ||
                     records.fReport.IsQuantixReport());
        EXPECT_EQ(Show(records.fSeries.GetDiskSpace(), records.fImage.GetDiskSpaceInKBytes(),
                       records.fRaw.GetDiskSpaceInKBytes()),
                  L"0|0|0|");
    }
}

TEST_F(RecordsTest, AreFoundByTheTextsThatHostsHave) {
    const std::tuple<const wchar_t*, const wchar_t*, bool> patients[] = {
        {L"M\xFCller^Anna^^Dr.", L"ID 1", true},
        {L" M\xFCller^Anna^^Dr.^^ ", L"ID 1 ", true},
        {L"m\xFCller^Anna^^Dr.", L"ID 1", false},
        {L"M\xFCller^Anna^^Dr.", L"ID", false},
        {L"M\x201Cller^Anna^^Dr.", L"ID 1", false}};
    for (const auto& [name, id, isFound] : patients) {
        EXPECT_EQ(fDirectory->GetUmPatient(name, id) != nullptr, isFound) << name << id;
    }
    const DicomDirectory& found = *fDirectory;
    EXPECT_TRUE(found.IsSeriesInDirectory(L"1.2.3.2.2") && found.GetUmStudy(L"1.2.3.1.1") &&
                found.GetUmImage(L"1.2.3.3.4") && found.GetUmRawData(L"1.2.3.3.5") &&
                found.GetUmSR(L"1.2.3.3.7"));
    EXPECT_FALSE(found.IsSeriesInDirectory(L"1.2.3.2.2 ") || found.GetUmStudy(L"1.2.3.1") ||
                 found.GetUmImage(L"1.2.3.3.5") || found.GetUmRawData(L"1.2.3.3.7") ||
                 found.GetUmSR(L"1.2.3.3.4"));
}

}  // namespace
