#include "records/TPatientDoc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"
#include "tests/records/FakeDirectory.h"
#include "tests/support/FileBuilder.h"

namespace VantorTest {

using P = TPatientDoc;
using S = TStudyDoc;
using R = TSeriesDoc;
using I = TImageDoc;

// How completing goes, the record type that it leaves, and how long the element is that it may have added.
template <typename T>
std::string Completed(const Texts& texts, Tag added = Tags::kLowerLevelOffset) {
    const std::unique_ptr<TDicomDoc> doc(NewDoc<T>(nullptr, texts));
    const std::string thrown = ThrownBy([&] { doc->CompleteRecord(); });
    const TDicomDataSet& record = *doc->GetDataSet();
    return TextOf(record, Tags::kDirectoryRecordType) + thrown + std::to_string(TextOf(record, added).size());
}

TEST(Attributes, CompletingARecordWritesItsTypeAndSaysWhatIsMissing) {
    const Texts::value_type date(Tags::kStudyDate, "20240509"), time(Tags::kStudyTime, "0930");
    const Texts::value_type modality(Tags::kModality, "US"), uid(Tags::kSeriesInstanceUID, "1.2");
    EXPECT_EQ(Completed<P>({}), "PATIENT 102 No Patient ID4");
    EXPECT_EQ(Completed<S>({time}), "STUDY 102 No Study Date4");
    EXPECT_EQ(Completed<S>({date}), "STUDY 102 No Study Time4");
    EXPECT_EQ(Completed<S>({date, time, {Tags::kStudyID, ""}}, Tags::kStudyID), "STUDY nothing16");
    EXPECT_EQ(Completed<R>({uid}), "SERIES102 No Modality Element4");
    EXPECT_EQ(Completed<R>({modality}), "SERIES102 No Series Instance UID4");
    EXPECT_EQ(Completed<R>({modality, uid}, Tags::kSeriesNumber), "SERIESnothing2");
    EXPECT_EQ(Completed<I>({}, Tags::kInstanceNumber), "IMAGE nothing0");
    EXPECT_EQ(Completed<TSR_Doc>({}), "SR DOCUMENT nothing4");
    EXPECT_EQ(Completed<TPrivateDoc>({{Tags::kLowerLevelOffset, "123456"}}), "PRIVATE nothing6");
}

TEST(Attributes, StudyModalityShowsTheSeriesFromTheLastWithoutNearRepeats) {
    // Two letters a series, and what is shown of them: only the two before are looked at.
    std::istringstream cases("CTMRCT CTMR CTUSMRCT CTMRUSCT USSR US SRUK UK CTMRXAUSNM NMUSXAMR");
    for (std::string modalities, shown; cases >> modalities >> shown;) {
        S study(nullptr, nullptr);
        char text[9] = "";
        EXPECT_FALSE(study.GetStudyModality(text, 9));
        for (; !modalities.empty(); modalities.erase(0, 2)) {
            AddDoc<R>(study)->SetModality(modalities.substr(0, 2).c_str());
        }
        EXPECT_TRUE(study.GetStudyModality(text, 9) && text == shown) << text;
    }
}

TEST(Attributes, CountsAndReports) {
    FakeDirectory directory;
    FileBuilder report;
    report.Data().Text({0x0021, 0x0010}, Vr::kLO, "QUANTIX").Text({0x0021, 0x10A6}, Vr::kOB, "report");
    for (const char* name : {"R1", "R2"}) directory.fStorage.SetContent(name, report.Build());
    P patient(nullptr, &directory);
    auto* const study = AddDoc<S>(patient);
    auto* const series = AddDoc<R>(*study);
    AddDoc<TPrivateDoc>(*study);
    AddDoc<I>(*series, {{Tags::kReferencedFileID, "qMag\\1"}});
    EXPECT_FALSE(series->CheckSequoiaLoRes()) << "one image only";
    AddDoc<I>(*series);
    char path[TFileSpec::kPathSize] = "";
    EXPECT_TRUE(series->CheckSequoiaLoRes() && !series->HasQuantix4Report(path));
    for (const char* name : {"GONE", "R1", "R2"}) AddDoc<TSR_Doc>(*series, {{Tags::kReferencedFileID, name}});
    EXPECT_TRUE(series->HasQuantix4Report(path) && path == std::string("R1")) << "the first";
    EXPECT_EQ(study->GetSeriesCount(), 2) << "private records count as series here";
    EXPECT_EQ(patient.GetStudyCount() * 100 + patient.GetSeriesCount() * 10 + patient.GetImageCount(), 112);
    EXPECT_EQ(study->GetImageCount() * 10 + study->GetQuantixSRCount(), 22);
    AddDoc<TSR_Doc>(*series);
    EXPECT_EQ(study->GetSRCount(), 3) << "counted once, whatever comes later";
    EXPECT_TRUE(study->HasQuantixSR() && series->GetStudy() == study && series->GetPatient() == &patient);
}

template <typename T, typename U = T>
bool AreSame(const Texts& mine, const Texts& others) {
    const std::unique_ptr<TDicomDoc> doc(NewDoc<T>(nullptr, mine)), other(NewDoc<U>(nullptr, others));
    return doc->IsSameRecord(other.get());
}

TEST(Attributes, TellWhatIsTheSameRecord) {
    const Texts::value_type id(Tags::kPatientID, "17"), name(Tags::kPatientName, "AB");
    EXPECT_TRUE(AreSame<P>({name, id}, {name, id}) && AreSame<P>({id}, {id}) && !AreSame<P>({name}, {name}));
    for (const Texts& texts : {Texts{id}, {name}, {name, {id.first, "177"}}, {id, {name.first, "Ab"}}}) {
        EXPECT_FALSE(AreSame<P>({name, id}, texts) || AreSame<P>(texts, {name, id}));
    }
    const Texts study = {{Tags::kStudyInstanceUID, "1.2"}}, series = {{Tags::kSeriesInstanceUID, "1.2"}};
    EXPECT_TRUE(AreSame<S>(study, study) && AreSame<R>(series, series));
    EXPECT_FALSE((AreSame<S>(series, series) || AreSame<R>(study, study) || AreSame<S, R>(study, study)));
    const Texts kind = {{Tags::kReferencedSOPClassUIDInFile, "1"}};
    const Texts uid = {{Tags::kReferencedSOPInstanceUIDInFile, "1.3"}}, one = {kind[0], uid[0]};
    EXPECT_TRUE(AreSame<I>(one, one) && AreSame<TSR_Doc>(one, one) && !AreSame<TRawDataDoc>(one, one));
    EXPECT_FALSE(AreSame<I>(one, {kind[0], {uid[0].first, "1.33"}}) || AreSame<I>(uid, uid));
    EXPECT_TRUE((AreSame<I, TSR_Doc>({}, {})) && I().IsSameRecord(nullptr)) << "hosts rely on it";
}

TEST(Attributes, NumbersUidsAndDates) {
    I image(NewDataSet().get(), nullptr, 0);  // an empty record has room
    image.SetImageNumber(-0x7fffffff - 1);
    EXPECT_EQ(image.GetImageNumber(), -0x7fffffff - 1);
    PutText(*image.GetDataSet(), Tags::kInstanceNumber, Vr::kIS, "x1");
    EXPECT_EQ(image.GetImageNumber(), 0);
    R series(nullptr, nullptr);
    S study(nullptr, nullptr);
    series.SetSeriesUID(nullptr);
    study.SetStudyUID(nullptr);
    EXPECT_STREQ(TextOf(*series.GetDataSet(), Tags::kSeriesInstanceUID).c_str(), "VANTxxxxUID");
    EXPECT_EQ(TextOf(*study.GetDataSet(), Tags::kStudyInstanceUID), "VANT.ERROR.UID");
    study.SetStudyDate("20240503");
    study.SetStudyTime("093015.123");
    char text[12] = {};
    EXPECT_TRUE(study.GetStudyDate(text, 11, 1) && study.GetStudyDate(text, 10, 3));
    EXPECT_STREQ(text, "03/05/2024") << "there is a date, if no room for it";
    EXPECT_TRUE(study.GetStudyTime(text, 6) && text == std::string("09:30"));
    study.SetReferringPhysician(std::string(70, 'x').c_str());
    VrCode vr = 0;
    EXPECT_EQ(TextOf(*study.GetDataSet(), Tags::kReferringPhysicianName), std::string(64, 'x'));
    EXPECT_TRUE(study.GetDataSet()->FindElement(Tags::kReferringPhysicianName, &vr) && vr == Vr::kSH);
}

}  // namespace VantorTest
