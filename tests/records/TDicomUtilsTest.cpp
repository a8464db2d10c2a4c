#include "records/TDicomUtils.h"

#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"
#include "tests/records/FakeDirectory.h"
#include "tests/support/TestClock.h"

namespace VantorTest {

const TDicomUtils kUtils;

TEST(TDicomUtils, StudiesAreNamedAfterTheTimeAndTheSeedsFirstComponents) {
    EXPECT_EQ(kUtils.GetRootUID(true) + kUtils.GetRootUID(false), "1.2.840.990017.990017");
    const TestClock none(std::nullopt);
    EXPECT_EQ(kUtils.CreateNewStudyUID("") + TStudyDoc::MakeStudyID(), "1.2.840.990017.990017.1000.1000001");
    const TestClock may(Platform::LocalTime{2009, 5, 3, 9, 5, 7, 42});
    EXPECT_EQ(kUtils.CreateNewStudyUID(""), "1.2.840.990017.990017.1503.190507");
    EXPECT_EQ(TStudyDoc::MakeStudyID(), "090503.090507042");
    const TestClock november(Platform::LocalTime{2024, 11, 15, 10, 30, 57, 0});
    EXPECT_EQ(kUtils.CreateNewStudyUID(""), "1.2.840.990017.990017.1115.103057");
    // Seeds and what becomes of them. Where a dot follows at once there is no way on: what is there counts.
    std::istringstream cases(
        "17 1.2.840.990017. 1.2.3.4.56 1.2.840.990017. 1.2.3.4.5.6 1.2.3.4.5. 12345678.1 1.2.840.990017. "
        "123456789.1 123456789. .1.2.840.10008 1.2.840.990017. 1..2.840.10008.1 1.2.840.990017. "
        "1.2.840.10008..3.4 1.2.840.10008. 1.2.840.10008. 1.2.840.10008. 1.2.840.113619.123456 "
        "1.2.840.113619. "
        "1.2.840.113619.1234567 1.2.840.113619.123456. 1.2.840.113619.12345.7 1.2.840.113619.12345. "
        "1.2.840.113619.0123456 1.2.840.113619.112345. 1.2.840.990017.990017.1.1 1.2.840.990017.990017. ");
    for (std::string seed, prefix; cases >> seed >> prefix;) {
        EXPECT_EQ(kUtils.CreateNewStudyUID(seed), prefix + "990017.1115.103057") << seed;
    }
}

TEST(TDicomUtils, LeadingZerosBecomeOnesAndTheLastComponentIsANumber) {
    std::istringstream cases(
        "1.2.0.3 1.2.0.3 3  1.2.03 1.2.13 3  1.2.0 1.2.0 0  1.2.00 1.2.10 0  1.05.0315 1.15.1315 315  "
        "1.00.0.007 1.10.0.107 7  05.10.10 05.10.10 10  1.2.3.17 1.2.3.17 17  17 17 0  .17 .17 0  1.x 1.x 0");
    for (std::string uid, fixed, last; cases >> uid >> fixed >> last;) {
        EXPECT_EQ(kUtils.FixLeadingZeros(uid), fixed);
        EXPECT_EQ(std::to_string(kUtils.GetLastComponent(uid)), last) << uid;
    }
}

TEST(TDicomUtils, SeriesAndImagesAreNumberedAboveTheHighest) {
    const std::string full = "1.345678901234567890123456789012345678901234567890123456789.1234";
    // "none" cannot be read. Of one beyond 64 characters both ends stay.
    const std::array<std::string, 3> cases[] = {
        {"1.2.3", "1.2.3.1 1.2.3.5 1.2.3.3", "1.2.3.6"},
        {"1.2.3", "none 9.8 none 17", "1.2.3.9"},
        {"1.02.3", "1.09", "1.12.3.10"},
        {"", "1.2147483647", ".2147483648"},
        {full.substr(0, 62), "1.-5", full.substr(0, 62) + ".1"},
        {full.substr(0, 63), "", full.substr(0, 30) + full.substr(35, 28) + ".1"},
        {full, "1.11", full.substr(0, 30) + full.substr(37, 27) + ".12"}};
    for (const auto& [parent, below, expected] : cases) {
        TStudyDoc study(nullptr, nullptr);
        TSeriesDoc series(nullptr, nullptr);
        study.SetStudyUID(parent.c_str());
        series.SetSeriesUID(parent.c_str());
        std::istringstream uids(below);
        for (std::string uid; uids >> uid;) {
            const Texts none,
                one = {{Tags::kReferencedSOPInstanceUIDInFile, uid}, {Tags::kSeriesInstanceUID, uid}};
            AddDoc<TSeriesDoc>(study, uid == "none" ? none : one);
            AddDoc<TImageDoc>(series, uid == "none" ? none : one);
        }
        EXPECT_EQ(kUtils.CreateNewSeriesUID(study), expected);
        EXPECT_EQ(kUtils.CreateNewImageUID(series), expected);
    }
}

}  // namespace VantorTest
