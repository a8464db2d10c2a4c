#include "dicom/TSRFile.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Fault = MemoryStorage::Fault;

constexpr Tag kCreator{0x0021, 0x0010};
constexpr Tag kSecondCreator{0x0021, 0x0011};
constexpr Tag kReport{0x0021, 0x10A6};
constexpr Tag kReportOfSecondCreator{0x0021, 0x11A6};

class TSRFileTest : public testing::Test {
  protected:
    // A report file with these elements.
    TSRFile Report(const ElementBuilder& data) {
        FileBuilder file(Uids::kExplicitVRLittleEndian, Uids::kBasicTextSR);
        file.Data() = data;
        fStorage.SetContent("Report", file.Build());
        return TSRFile(5, TFileSpec("Report", &fStorage));
    }

    MemoryStorage fStorage;
    char fText[24] = "untouched";
    uint32_t fLength = 0;
};

TEST_F(TSRFileTest, ReadsItsDataSetOnceAndLeavesTheFileAsItWas) {
    TSRFile file = Report(ElementBuilder().Text(Tags::kModality, Vr::kCS, "SR"));
    EXPECT_EQ(file.GetKind(), TSRFile::kReportKind);
    TDicomDataSet* const dataSet = file.GetDataSet();
    ASSERT_NE(dataSet, nullptr);
    EXPECT_FALSE(file.IsOpen());
    fStorage.SetContent("Report", {});
    EXPECT_EQ(file.GetDataSet(), dataSet);
    TSRFile open = Report(ElementBuilder());
    open.OpenFile(Platform::FileAccess::kReadWrite);
    EXPECT_EQ(open.GetDataSet(), nullptr);
    EXPECT_TRUE(open.IsOpen());
}

TEST_F(TSRFileTest, WhatCannotBeReadAnswersNothing) {
    for (const Fault fault : {Fault::kNone, Fault::kRead}) {
        // An element in front leads outside the data set, or nothing is read at all.
        TSRFile file = Report(ElementBuilder().Header({0x0008, 0x0005}, Vr::kUT, 0x7FFFFFF0).Raw(Bytes(40)));
        fStorage.FailOn(fault);
        EXPECT_FALSE(file.GetQuantixReport(fText, sizeof(fText)));
        EXPECT_FALSE(file.CheckForQuantixReport());
        EXPECT_FALSE(file.IsSRModality());
        EXPECT_FALSE(file.GetContentDate(fText, sizeof(fText), 0));
        EXPECT_STREQ(fText, "untouched");
        EXPECT_EQ(file.GetDataSet() == nullptr, fault == Fault::kRead);
    }
}

// Only the second character is looked at: hosts rely on MR and CR passing as well.
TEST_F(TSRFileTest, AnyModalityWithRInSecondPlaceIsAReport) {
    const std::map<std::string, bool> cases = {{"SR", true},  {"MR", true},  {"XR DOUBLE TROUBLE", true},
                                               {"US", false}, {"RS", false}, {"", false},
                                               {"R", false},  {"Sr", false}, {" SR ", false}};
    for (const auto& [modality, isReport] : cases) {
        TSRFile file = Report(ElementBuilder().Text(Tags::kModality, Vr::kCS, modality));
        EXPECT_EQ(file.IsSRModality(), isReport) << modality;
    }
}

TEST_F(TSRFileTest, HandsOutTheReportOfTheBlockOfItsCreator) {
    TSRFile file = Report(ElementBuilder()
                              .Text(kCreator, Vr::kLO, "SOMEBODY ELSE")
                              .Text(kSecondCreator, Vr::kLO, "QUANTIX")
                              .Text(kReport, Vr::kOB, "not this one")
                              .Text(kReportOfSecondCreator, Vr::kOB, "the whole report"));
    ASSERT_TRUE(file.GetQuantixReportSize(fLength));
    EXPECT_EQ(fLength, 16U);
    EXPECT_TRUE(file.GetQuantixReport(fText, 3));
    EXPECT_STREQ(fText, "theouched") << "no more than there is room for";
    const ElementBuilder without[] = {
        ElementBuilder().Text(kReport, Vr::kOB, "no creator"),
        ElementBuilder().Text(kCreator, Vr::kLO, "QUANTIX"),
        ElementBuilder().Text(kCreator, Vr::kLO, "QUANTIX2").Text(kReport, Vr::kOB, "other creator"),
        ElementBuilder().Text(kCreator, Vr::kLO, "QUANTIX").Header(kReport, Vr::kOB, 50).Raw(Bytes(49)),
    };
    for (const ElementBuilder& data : without) EXPECT_FALSE(Report(data).GetQuantixReport(fText, 24));
}

TEST_F(TSRFileTest, CheckingForTheReportLetsGoOfTheDataSet) {
    TSRFile file =
        Report(ElementBuilder().Text(kCreator, Vr::kLO, "QUANTIX").Text(kReport, Vr::kUN, "short"));
    EXPECT_TRUE(file.CheckForQuantixReport());
    EXPECT_TRUE(file.HasQuantixReport());
    fStorage.FailOn(Fault::kRead);
    EXPECT_FALSE(file.GetQuantixReportSize(fLength)) << "the file is read anew";
    EXPECT_FALSE(file.CheckForQuantixReport());
    EXPECT_FALSE(file.HasQuantixReport());
}

TEST_F(TSRFileTest, GivesItsDateAndFlagsAsText) {
    TSRFile file = Report(ElementBuilder()
                              .Text(Tags::kContentDate, Vr::kDA, "20240315")
                              .Text(Tags::kReportStatus, Vr::kCS, "FINAL")
                              .Text(Tags::kCompletionFlag, Vr::kCS, "COMPLETE")
                              .Text(Tags::kVerificationFlag, Vr::kCS, "VERIFIED"));
    EXPECT_TRUE(file.GetContentDate(fText, 10, 1)) << "there is a date, if no room for it";
    EXPECT_STREQ(fText, "untouched");
    EXPECT_TRUE(file.GetContentDate(fText, 11, 1));
    EXPECT_STREQ(fText, "15/03/2024");
    EXPECT_TRUE(file.GetReportStatus(fText, 11));
    EXPECT_STREQ(fText, "FINAL ");
    EXPECT_TRUE(file.GetVerificationFlag(fText, 11));
    EXPECT_STREQ(fText, "VERIFIED");
    EXPECT_TRUE(file.GetCompletionFlag(fText, 5));
    EXPECT_STREQ(fText, "COMP");
    EXPECT_FALSE(Report(ElementBuilder()).GetCompletionFlag(fText, 5));
    EXPECT_STREQ(fText, "");
}

}  // namespace
