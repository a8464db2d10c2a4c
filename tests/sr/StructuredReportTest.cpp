// Report files as hosts open them: behind records of a directory and by path, with the document that the
// reporting product keeps in them. Hunts exceptions that reach the host and buffers that outlive their file.

#include "sr/StructuredReport.h"

#include "platform/File.h"
#include "tests/support/ReportBuilder.h"
#include "tests/wrappers/Workstation.h"
#include "wrappers/SeriesDirRec.h"
#include "wrappers/StructReportDirRec.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using namespace VantorWrappers;

class StructuredReportTest : public Workstation {
  protected:
    StructuredReportTest() {
        DirectoryBuilder media;
        media.AddInstance(media.AddSeries(media.AddStudy(media.AddPatient(1), 1), 1, "SR"), 7,
                          "SR DOCUMENT ");
        fFolder.WriteFile("C/DICOMDIR", media.Build());
        fDirectory = Start().OpenDirectory(PathOf("C/DICOMDIR"));
    }

    // The record of the file.
    StructReportDirRec Record() const {
        std::vector<StructReportDirRec> records;
        SeriesDirRec(fDirectory->GetSeriesList().at(0)).GetSRs(records);
        return records.at(0);
    }

    // Writes the file, with a document unless it is "".
    void Write(std::string_view document, const char* transferSyntax = Uids::kExplicitVRLittleEndian,
               const char* valueType = "CONTAINER") const {
        ReportBuilder report(valueType, {"125200", "DCM", "Echo"});
        report.Below({ReportBuilder("TEXT")})
            .Text(Tags::kSOPClassUID, Vr::kUI, Uids::kComprehensiveSR)
            .Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3.4")
            .Text(Tags::kContentDate, Vr::kDA, "20240315")
            .Text(Tags::kContentTime, Vr::kTM, "101501")
            .Text(Tags::kStudyInstanceUID, Vr::kUI, "1.2")
            .Text(Tags::kSeriesInstanceUID, Vr::kUI, "1.2.3")
            .Text(Tags::kInstanceNumber, Vr::kIS, " 7 ")
            .Text(Tags::kCompletionFlag, Vr::kCS, "COMPLETE")
            .Text(Tags::kVerificationFlag, Vr::kCS, "VERIFIED");
        if (valueType[0] == '\0') report.Without(Tags::kValueType);
        if (!document.empty()) {
            report.Text({0x0021, 0x0010}, Vr::kLO, "QUANTIX").Text({0x0021, 0x10A6}, Vr::kOB, document);
        }
        Write(report, transferSyntax);
    }
    void Write(const ReportBuilder& report, const char* transferSyntax) const {
        FileBuilder file(transferSyntax, Uids::kComprehensiveSR);
        file.Data().Raw(report.Encode(transferSyntax));
        fFolder.WriteFile("C/IMAGES/7", file.Build());
    }

    static void ExpectNothing(StructuredReport&& report, const HostString& uid = L"") {
        EXPECT_TRUE(!report.IsValid() && report.IsEmpty() && report.GetIOD() == nullptr);
        EXPECT_EQ(report.GetSRType(), SRType::Unknown);
        EXPECT_EQ(report.GetSRDateTime(), StructuredReportIOD::kMinimumDate);
        EXPECT_EQ(report.GetSRDocumentTitle() + report.GetCompletionFlag() + report.GetVerificationFlag() +
                      report.GetSRInstanceNumber() + report.GetStudyUID() + report.GetSeriesUID(),
                  L"");
        EXPECT_EQ(report.GetSRUID(), uid);
        uint8_t byte = 0;
        const uint8_t* buffer = &byte;
        uint32_t length = 5;
        EXPECT_FALSE(report.GetQuantixReport(buffer, length) || report.GetPdfQuantixReport(buffer));
        EXPECT_EQ(buffer, nullptr);
        EXPECT_EQ(length + report.GetPdfQuantixReportSize(), 0U);
    }

    std::shared_ptr<DicomDirectory> fDirectory;
    TraceLines fLines{VantorHost::TraceArea::kStructuredReport, VantorHost::TraceLevel::kInfo};
};

TEST_F(StructuredReportTest, TellsWhatItsFileHolds) {
    const std::string path = fFolder.PathOf("C/IMAGES/7");
    for (const Encoding& encoding : kEncodings) {
        Write("", encoding.fTransferSyntax);
        fLines.Take();
        const StructuredReport report(Record());
        const Lines start = {"info: ;;",
                             "info: New StructuredReport instance being created from SR file: " + path,
                             "info: New StructuredReportIOD instance being created for Patient: ",
                             "info: Parsing of Structured Report Content Tree started for Patient: "};
        Lines lines = fLines.Take();
        lines.resize(start.size());
        EXPECT_EQ(lines, start);
        ASSERT_TRUE(report.IsValid() && !report.IsEmpty());
        EXPECT_EQ(report.GetIOD()->GetContentItemCount(), 1);
        EXPECT_EQ(report.GetSRType(), SRType::USAdultCardiacSR);
        EXPECT_EQ(report.GetSRDocumentTitle(), L"Echo");
        const auto day = std::chrono::local_days(std::chrono::year(2024) / 3 / 15);
        EXPECT_EQ(report.GetSRDateTime(), day + std::chrono::seconds(36901));
        EXPECT_EQ(report.GetCompletionFlag(), L"COMPLETE");
        EXPECT_EQ(report.GetVerificationFlag(), L"VERIFIED");
        EXPECT_EQ(report.GetSRInstanceNumber(), L"7");
        EXPECT_EQ(report.GetStudyUID(), L"1.2");
        EXPECT_EQ(report.GetSeriesUID(), L"1.2.3");
        EXPECT_EQ(report.GetSRUID(), L"1.2.3.4");
        EXPECT_NO_THROW(Platform::OpenDiskFile(path, Platform::FileAccess::kReadWrite)) << "it is closed";
        EXPECT_TRUE(StructuredReport(Wide(path)).IsValid());
    }
}

TEST_F(StructuredReportTest, HeaderTextsAreCutAtTheirLimits) {
    const std::tuple<Tag, VrCode, HostString (StructuredReport::*)() const, size_t> cases[] = {
        {Tags::kStudyInstanceUID, Vr::kUI, &StructuredReport::GetStudyUID, 65},
        {Tags::kSeriesInstanceUID, Vr::kUI, &StructuredReport::GetSeriesUID, 65},
        {Tags::kSOPInstanceUID, Vr::kUI, &StructuredReport::GetSRUID, 65},
        {Tags::kCompletionFlag, Vr::kCS, &StructuredReport::GetCompletionFlag, 32},
        {Tags::kVerificationFlag, Vr::kCS, &StructuredReport::GetVerificationFlag, 32},
        {Tags::kInstanceNumber, Vr::kIS, &StructuredReport::GetSRInstanceNumber, 32}};
    ReportBuilder wide("CONTAINER");
    for (const auto& [tag, vr, getter, limit] : cases) wide.Text(tag, vr, std::string(80, '1'));
    Write(wide, Uids::kExplicitVRLittleEndian);
    const StructuredReport report(Record());
    for (const auto& [tag, vr, getter, limit] : cases) {
        EXPECT_EQ((report.*getter)(), HostString(limit, L'1')) << tag.fElement;
    }
}

TEST_F(StructuredReportTest, WhatCannotBeReadIsNotValidAndSaysWhy) {
    ExpectNothing(StructuredReport(StructReportDirRec()));
    EXPECT_EQ(fLines.Take(),
              (Lines{"info: ;;", "info: New StructuredReport instance being created from SR file: ",
                     "error: Not able to get DICOM Directory object."}));
    fLines.SetLevel(VantorHost::TraceLevel::kError);
    for (const std::string& path : {fFolder.PathOf("C/IMAGES/7"), fFolder.PathOf("C"), std::string()}) {
        ExpectNothing(StructuredReport(Wide(path)));
        EXPECT_EQ(fLines.Take(), Lines{"error: Not able to read SR file: " + path});
    }
    ExpectNothing(StructuredReport(HostString(5000, L'x')));
    EXPECT_EQ(fLines.Take().size(), 1U);
    fFolder.WriteFile("C/IMAGES/7", "no DICOM file");
    ExpectNothing(StructuredReport(Record()));
    Write("", Uids::kExplicitVRLittleEndian, "");
    ExpectNothing(StructuredReport(Record()), L"1.2.3.4");
}

TEST_F(StructuredReportTest, HandsOutTheDocumentUntilItIsReleased) {
    constexpr std::string_view kDocument("%PDF-1.4\0 and all behind it.", 28);
    for (const Encoding& encoding : kEncodings) {
        Write(kDocument, encoding.fTransferSyntax);
        StructuredReport report(Record());
        const uint8_t* buffer = nullptr;
        uint32_t length = 0;
        const auto document = [&] { return std::string_view(reinterpret_cast<const char*>(buffer), length); };
        fLines.Take();
        for (int times = 0; times < 2; ++times) {
            ASSERT_TRUE(report.GetQuantixReport(buffer, length));
            EXPECT_EQ(document(), kDocument);
            EXPECT_EQ(fLines.Take(),
                      Lines{"info: Quantix report detected in SR file: " + fFolder.PathOf("C/IMAGES/7")});
        }
        EXPECT_EQ(report.GetPdfQuantixReportSize(), 0U) << "kept by the other operation only";
        report.Dispose();
        report.Dispose();
        EXPECT_TRUE(report.IsValid()) << "only the document goes";
        buffer = nullptr;
        ASSERT_TRUE(report.GetPdfQuantixReport(buffer));
        EXPECT_EQ(document(), kDocument);
        EXPECT_EQ(report.GetPdfQuantixReportSize(), kDocument.size());
        Write("");
        EXPECT_FALSE(report.GetPdfQuantixReport(buffer)) << "it is read anew";
        EXPECT_EQ(buffer, nullptr);
        EXPECT_EQ(report.GetPdfQuantixReportSize(), 0U);
    }
}

}  // namespace
