#include "dicom/TSRFile.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/dicom/DataSetTestSupport.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr Tag kCreator{0x0021, 0x0010};
constexpr Tag kSecondCreator{0x0021, 0x0011};
constexpr Tag kReport{0x0021, 0x10A6};
constexpr Tag kReportOfSecondCreator{0x0021, 0x11A6};
constexpr char kReportText[] = "the whole report";
constexpr uint32_t kReportLength = 16;

class TSRFileTest : public testing::Test {
  protected:
    // A report file with the elements of a builder's data set.
    void Write(const ElementBuilder& data) {
        FileBuilder file(Uids::kExplicitVRLittleEndian, Uids::kBasicTextSR);
        file.Data() = data;
        fStorage.SetContent("Report", file.Build());
    }

    TSRFile Report() { return TSRFile(5, TFileSpec("Report", &fStorage)); }

    MemoryStorage fStorage;
};

TEST_F(TSRFileTest, IsOfTheKindOfReports) {
    Write(ElementBuilder());
    EXPECT_EQ(Report().GetKind(), TSRFile::kReportKind);
    EXPECT_EQ(Report().GetOwner(), 5U);
    EXPECT_EQ(TSRFile().GetKind(), 0);
    EXPECT_FALSE(Report().HasQuantixReport());
}

TEST_F(TSRFileTest, ReadsItsDataSetOnceAndCloses) {
    Write(ElementBuilder().Text(Tags::kModality, Vr::kCS, "SR"));
    TSRFile file = Report();
    TDicomDataSet* dataSet = file.GetDataSet();
    ASSERT_NE(dataSet, nullptr);
    EXPECT_FALSE(file.IsOpen());
    Write(ElementBuilder().Text(Tags::kModality, Vr::kCS, "US"));
    EXPECT_EQ(file.GetDataSet(), dataSet);
    EXPECT_TRUE(file.IsSRModality());
}

TEST_F(TSRFileTest, AFileThatIsOpenStaysOpen) {
    Write(ElementBuilder().Text(Tags::kModality, Vr::kCS, "SR"));
    TSRFile file = Report();
    file.OpenFile(Platform::FileAccess::kReadWrite);
    EXPECT_NE(file.GetDataSet(), nullptr);
    EXPECT_TRUE(file.IsOpen());
}

TEST_F(TSRFileTest, WhatCannotBeReadAnswersNothing) {
    const struct {
        const char* fName;
        Bytes fContent;
        MemoryStorage::Fault fFault;
    } cases[] = {
        {"no DICOM file", Bytes(500, 0), MemoryStorage::Fault::kNone},
        {"empty", {}, MemoryStorage::Fault::kNone},
        {"device fails", FileBuilder().Build(), MemoryStorage::Fault::kRead},
    };
    for (const auto& [name, content, fault] : cases) {
        SCOPED_TRACE(name);
        fStorage.SetContent("Report", content);
        fStorage.FailOn(fault);
        TSRFile file = Report();
        char text[20] = "untouched";
        uint32_t length = 0;
        EXPECT_EQ(file.GetDataSet(), nullptr);
        EXPECT_FALSE(file.IsOpen());
        EXPECT_FALSE(file.GetQuantixReport(text, sizeof(text)));
        EXPECT_FALSE(file.GetQuantixReportSize(length));
        EXPECT_FALSE(file.CheckForQuantixReport());
        EXPECT_FALSE(file.IsSRModality());
        EXPECT_FALSE(file.GetContentDate(text, sizeof(text), 0));
        EXPECT_STREQ(text, "untouched");
        EXPECT_FALSE(file.GetCompletionFlag(text, sizeof(text)));
        EXPECT_STREQ(text, "");
    }
    TSRFile missing(0, TFileSpec("Missing", &fStorage));
    EXPECT_EQ(missing.GetDataSet(), nullptr);
    EXPECT_EQ(TSRFile().GetDataSet(), nullptr);
}

// Elements in front that lead outside the data set must not come out as exceptions.
TEST_F(TSRFileTest, ADamagedDataSetAnswersNothing) {
    Write(ElementBuilder().Header({0x0008, 0x0005}, Vr::kUT, 0x7FFFFFF0).Raw(Bytes(40, ' ')));
    TSRFile file = Report();
    ASSERT_NE(file.GetDataSet(), nullptr);
    char text[20] = "untouched";
    EXPECT_FALSE(file.IsSRModality());
    EXPECT_FALSE(file.GetContentDate(text, sizeof(text), 0));
    EXPECT_FALSE(file.GetQuantixReport(text, sizeof(text)));
    EXPECT_STREQ(text, "untouched");
    EXPECT_FALSE(file.GetReportStatus(text, sizeof(text)));
    EXPECT_STREQ(text, "");
}

// Only the second character is looked at: hosts rely on MR and CR passing as well.
TEST_F(TSRFileTest, AnyModalityWithRInSecondPlaceIsAReport) {
    const struct {
        const char* fModality;
        bool fIsReport;
    } cases[] = {{"SR", true},  {"MR", true},    {"CR", true},    {"XR DOUBLE TROUBLE", true},
                 {"US", false}, {"RS", false},   {"", false},     {"R", false},
                 {"Sr", false}, {" SR ", false}, {"OTHER", false}};
    for (const auto& [modality, isReport] : cases) {
        Write(ElementBuilder().Text(Tags::kModality, Vr::kCS, modality));
        EXPECT_EQ(Report().IsSRModality(), isReport) << modality;
    }
    Write(ElementBuilder().Text(Tags::kPatientName, Vr::kPN, "Doe"));
    EXPECT_FALSE(Report().IsSRModality());
}

TEST_F(TSRFileTest, HandsOutTheWholeReport) {
    Write(ElementBuilder()
              .Text(kCreator, Vr::kLO, "SOMEBODY ELSE")
              .Text(kSecondCreator, Vr::kLO, "QUANTIX")
              .Text(kReport, Vr::kOB, "not this one")
              .Text(kReportOfSecondCreator, Vr::kOB, kReportText)
              .Text(Tags::kCompletionFlag, Vr::kCS, "PARTIAL"));
    TSRFile file = Report();
    uint32_t length = 0;
    ASSERT_TRUE(file.GetQuantixReportSize(length));
    EXPECT_EQ(length, kReportLength);
    char report[kReportLength + 1] = {};
    EXPECT_TRUE(file.GetQuantixReport(report, kReportLength));
    EXPECT_STREQ(report, kReportText);
    char beginning[9] = {};
    EXPECT_TRUE(file.GetQuantixReport(beginning, 8));
    EXPECT_STREQ(beginning, "the whol");
}

TEST_F(TSRFileTest, CheckingForTheReportLetsGoOfTheDataSet) {
    Write(ElementBuilder().Text(kCreator, Vr::kLO, "QUANTIX").Text(kReport, Vr::kUN, kReportText));
    TSRFile file = Report();
    TDicomDataSet* const first = file.GetDataSet();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(file.CheckForQuantixReport());
    EXPECT_TRUE(file.HasQuantixReport());
    // The next question reads the file as it is by then.
    Write(ElementBuilder().Text(kCreator, Vr::kLO, "QUANTIX").Text(kReport, Vr::kUN, "short"));
    uint32_t length = 0;
    EXPECT_TRUE(file.GetQuantixReportSize(length));
    EXPECT_EQ(length, 6U);
}

TEST_F(TSRFileTest, WithoutTheCreatorThereIsNoReport) {
    const Tag inOtherGroup{0x0023, 0x10A6};
    const struct {
        const char* fName;
        ElementBuilder fData;
    } cases[] = {
        {"no creator", ElementBuilder().Text(kReport, Vr::kOB, kReportText)},
        {"no element", ElementBuilder().Text(kCreator, Vr::kLO, "QUANTIX")},
        {"other creator",
         ElementBuilder().Text(kCreator, Vr::kLO, "QUANTIX 2").Text(kReport, Vr::kOB, kReportText)},
        {"longer creator",
         ElementBuilder().Text(kCreator, Vr::kLO, "QUANTIX2").Text(kReport, Vr::kOB, kReportText)},
        {"other group", ElementBuilder()
                            .Text({0x0023, 0x0010}, Vr::kLO, "QUANTIX")
                            .Text(inOtherGroup, Vr::kOB, kReportText)},
        {"breaks off", ElementBuilder()
                           .Text(kCreator, Vr::kLO, "QUANTIX")
                           .Header(kReport, Vr::kOB, 5000)
                           .Raw(Bytes(100, 'x'))},
    };
    for (const auto& [name, data] : cases) {
        SCOPED_TRACE(name);
        Write(data);
        TSRFile file = Report();
        char buffer[kReportLength] = {};
        EXPECT_FALSE(file.GetQuantixReport(buffer, sizeof(buffer)));
        EXPECT_FALSE(file.CheckForQuantixReport());
        EXPECT_FALSE(file.HasQuantixReport());
    }
}

TEST_F(TSRFileTest, ALaterCheckTakesTheAnswerBack) {
    Write(ElementBuilder().Text(kCreator, Vr::kLO, "QUANTIX").Text(kReport, Vr::kOB, kReportText));
    TSRFile file = Report();
    ASSERT_TRUE(file.CheckForQuantixReport());
    fStorage.FailOn(MemoryStorage::Fault::kRead);
    EXPECT_FALSE(file.CheckForQuantixReport());
    EXPECT_FALSE(file.HasQuantixReport());
}

TEST_F(TSRFileTest, GivesTheContentDateInTheWantedFormat) {
    Write(ElementBuilder().Text(Tags::kContentDate, Vr::kDA, "20240315"));
    const struct {
        uint32_t fSize;
        int32_t fFormat;
        const char* fText;
    } cases[] = {
        {11, 0, "03/15/2024"},
        {11, 1, "15/03/2024"},
        {11, 3, "20240315"},
        {11, 9, "03/15/2024"},
        {10, 0, "untouched"},  // too small: nothing is written, and the date is there
                               // all the same
        {0, 0, "untouched"},
    };
    TSRFile file = Report();
    for (const auto& [size, format, text] : cases) {
        char output[12] = "untouched";
        EXPECT_TRUE(file.GetContentDate(output, size, format));
        EXPECT_STREQ(output, text);
    }
    Write(ElementBuilder().Text(Tags::kModality, Vr::kCS, "SR"));
    char output[12] = "untouched";
    EXPECT_FALSE(Report().GetContentDate(output, sizeof(output), 0));
    EXPECT_STREQ(output, "untouched");
}

TEST_F(TSRFileTest, GivesItsFlagsAsText) {
    Write(ElementBuilder()
              .Text(Tags::kReportStatus, Vr::kCS, "FINAL")
              .Text(Tags::kCompletionFlag, Vr::kCS, "COMPLETE")
              .Text(Tags::kVerificationFlag, Vr::kCS, "VERIFIED"));
    TSRFile file = Report();
    char text[20];
    std::memset(text, 'x', sizeof(text));
    EXPECT_TRUE(file.GetReportStatus(text, sizeof(text)));
    EXPECT_STREQ(text, "FINAL ");
    EXPECT_TRUE(file.GetCompletionFlag(text, sizeof(text)));
    EXPECT_STREQ(text, "COMPLETE");
    EXPECT_TRUE(file.GetVerificationFlag(text, sizeof(text)));
    EXPECT_STREQ(text, "VERIFIED");
    std::memset(text, 'x', sizeof(text));
    EXPECT_TRUE(file.GetCompletionFlag(text, 5));
    EXPECT_STREQ(text, "COMP");
    EXPECT_EQ(text[5], 'x');
    EXPECT_TRUE(file.GetCompletionFlag(text, 1));
    EXPECT_STREQ(text, "");
    EXPECT_FALSE(file.GetCompletionFlag(text, 0));
}

TEST_F(TSRFileTest, AbsentFlagsGiveTheEmptyText) {
    Write(ElementBuilder().Text(Tags::kModality, Vr::kCS, "SR"));
    TSRFile file = Report();
    for (const auto get :
         {&TSRFile::GetCompletionFlag, &TSRFile::GetVerificationFlag, &TSRFile::GetReportStatus}) {
        char text[20] = "untouched";
        EXPECT_FALSE((file.*get)(text, sizeof(text)));
        EXPECT_STREQ(text, "");
    }
}

}  // namespace
