// Files of every kind, encoding and state of health, read through the class that hosts use for single files.
// Hunts wrong elements behind getters, texts taken for numbers, dates and times that are none, and what is
// left behind after a failure.

#include "wrappers/DicomFileInfo.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dicom/TException.h"
#include "dicom/Tags.h"
#include "dicom/Uids.h"
#include "dicom/Vr.h"
#include "platform/CodePage.h"
#include "platform/File.h"
#include "platform/FileException.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/TestFolder.h"

namespace {

namespace Tags = Vantor::Tags;
namespace Uids = Vantor::Uids;
namespace Vr = Vantor::Vr;
using Vantor::Tag;
using Vantor::TException;
using Vantor::VrCode;
using Vantor::Platform::FileException;
using Vantor::Platform::ToHostText;
using VantorTest::Bytes;
using VantorTest::ElementBuilder;
using VantorTest::FileBuilder;
using VantorTest::TestFolder;
using VantorWrappers::DicomFileInfo;
using VantorWrappers::FormatError;
using VantorWrappers::HostDateTime;
using VantorWrappers::HostString;
using namespace std::chrono_literals;

constexpr int32_t kNothingThrown = -1;
constexpr char kCTImage[] = "1.2.840.10008.5.1.4.1.1.2";
constexpr char kJpegBaseline[] = "1.2.840.10008.1.2.4.50";
const std::vector<const char*> kTransferSyntaxes = {
    Uids::kImplicitVRLittleEndian, Uids::kExplicitVRLittleEndian, Uids::kExplicitVRBigEndian, kJpegBaseline};

HostDateTime Moment(int year, unsigned month, unsigned day, std::chrono::seconds timeOfDay = 0s) {
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                           std::chrono::day(day)};
    return std::chrono::local_days(date) + timeOfDay;
}

int32_t ErrorNumberOf(const std::function<void()>& work) {
    try {
        work();
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        return error->GetErrorNumber();
    }
    return kNothingThrown;
}

class DicomFileInfoTest : public ::testing::Test {
  protected:
    HostString Write(const Bytes& content) { return ToHostText(fFolder.WriteFile("FILE.DCM", content)); }

    // Reads a file of these bytes.
    DicomFileInfo& Read(const Bytes& content) {
        fInfo = std::make_unique<DicomFileInfo>(Write(content));
        fInfo->Read();
        return *fInfo;
    }
    DicomFileInfo& Read(const FileBuilder& file) { return Read(file.Build()); }

    // Reads a file that has these elements only.
    struct Element {
        Tag fTag;
        VrCode fVr;
        std::string_view fText;
    };
    DicomFileInfo& ReadElements(const std::vector<Element>& elements) {
        FileBuilder file;
        for (const Element& element : elements) {
            file.Data().Text(element.fTag, element.fVr, element.fText);
        }
        return Read(file);
    }

    TestFolder fFolder;
    std::unique_ptr<DicomFileInfo> fInfo;
};

// ---- Texts ----

struct TextGetter {
    Tag fTag;
    VrCode fVr;
    size_t fLimit;
    HostString (DicomFileInfo::*fGet)() const;
};

// In the order of the tags.
const std::vector<TextGetter> kTextGetters = {
    {Tags::kSOPInstanceUID, Vr::kUI, 64, &DicomFileInfo::GetUID},
    {Tags::kAccessionNumber, Vr::kSH, 16, &DicomFileInfo::GetAccessionNumber},
    {Tags::kModality, Vr::kCS, 16, &DicomFileInfo::GetModality},
    {Tags::kReferringPhysicianName, Vr::kPN, 64, &DicomFileInfo::GetReferringPhysician},
    {Tags::kStudyDescription, Vr::kLO, 64, &DicomFileInfo::GetStudyDescription},
    {Tags::kSeriesDescription, Vr::kLO, 64, &DicomFileInfo::GetSeriesDescription},
    {Tags::kPatientName, Vr::kPN, 64, &DicomFileInfo::GetPatientName},
    {Tags::kPatientID, Vr::kLO, 64, &DicomFileInfo::GetPatientId},
    {Tags::kStudyInstanceUID, Vr::kUI, 64, &DicomFileInfo::GetStudyUID},
    {Tags::kSeriesInstanceUID, Vr::kUI, 64, &DicomFileInfo::GetSeriesUID},
    {Tags::kStudyID, Vr::kSH, 16, &DicomFileInfo::GetStudyID},
};

TEST_F(DicomFileInfoTest, EachTextIsReadFromItsOwnElementInEveryEncoding) {
    for (const char* transferSyntax : kTransferSyntaxes) {
        FileBuilder file(transferSyntax);
        for (const TextGetter& getter : kTextGetters) {
            file.Data().Text(getter.fTag, getter.fVr, std::to_string(getter.fTag.fElement));
        }
        const DicomFileInfo& info = Read(file);
        for (const TextGetter& getter : kTextGetters) {
            HostString text = (info.*getter.fGet)();
            if (text.ends_with(L' ')) text.pop_back();
            EXPECT_EQ(text, std::to_wstring(getter.fTag.fElement)) << transferSyntax;
        }
    }
}

TEST_F(DicomFileInfoTest, TextsAreCutAtTheirLimitsAndNotTrimmed) {
    const std::string longText = " " + std::string(80, 'x');
    for (const TextGetter& getter : kTextGetters) {
        const DicomFileInfo& info = ReadElements({{getter.fTag, getter.fVr, longText}});
        EXPECT_EQ((info.*getter.fGet)(), L" " + HostString(getter.fLimit - 1, L'x'));
    }
    EXPECT_EQ(ReadElements({{Tags::kPatientName, Vr::kPN, "  A^B "}}).GetPatientName(), L"  A^B ");
}

TEST_F(DicomFileInfoTest, TextsEndAtANul) {
    EXPECT_EQ(ReadElements({{Tags::kSOPInstanceUID, Vr::kUI, "1.2.3"}}).GetUID(), L"1.2.3");
    const std::string_view twoParts("AB\0CD", 5);
    EXPECT_EQ(ReadElements({{Tags::kPatientID, Vr::kLO, twoParts}}).GetPatientId(), L"AB");
}

// Cut in two, the last character would make the whole name unreadable as UTF-8.
TEST_F(DicomFileInfoTest, TextsAreNotCutInsideACharacter) {
    const std::vector<const char*> characters = {"\xC3\xA9", "\xE5\xB1\xB1", "\xF0\x9F\x98\x80"};
    for (const char* character : characters) {
        const size_t size = std::string_view(character).size();
        for (size_t inside = 1; inside < size; ++inside) {
            const std::string name = std::string(64 - inside, 'A') + character + "^Name";
            const DicomFileInfo& info = ReadElements({{Tags::kPatientName, Vr::kPN, name}});
            EXPECT_EQ(info.GetPatientName(), HostString(64 - inside, L'A')) << name;
        }
    }
}

// ---- Numbers ----

struct NumberCase {
    std::string_view fText;
    int32_t fNumber;
};

TEST_F(DicomFileInfoTest, NumbersAreReadFromTheirText) {
    const std::vector<NumberCase> cases = {
        {"12", 12},
        {"      12", 12},
        {"\t8", 8},
        {"-3 ", -3},
        {"+7", 7},
        {"0007", 7},
        {"12abc ", 12},
        {"1\\2", 1},
        {"1.5 ", 1},
        {"2147483647", 2147483647},
        {"-2147483648 ", -2147483647 - 1},
        {"", -1},
        {"    ", -1},
        {"abc ", -1},
        {"- 5 ", -1},
        {"+-5 ", -1},
        {"--5 ", -1},
        {"2147483648", -1},
        {"99999999999999999999", -1},
    };
    for (const NumberCase& number : cases) {
        const DicomFileInfo& info = ReadElements({{Tags::kSeriesNumber, Vr::kIS, number.fText}});
        EXPECT_EQ(info.GetSeriesNumber(), number.fNumber) << number.fText;
    }
}

TEST_F(DicomFileInfoTest, EachNumberIsReadFromItsOwnElement) {
    const DicomFileInfo& info = ReadElements({{Tags::kSeriesNumber, Vr::kIS, "1"},
                                              {Tags::kInstanceNumber, Vr::kIS, "2"},
                                              {Tags::kNumberOfFrames, Vr::kIS, "3"}});
    EXPECT_EQ(info.GetSeriesNumber(), 1);
    EXPECT_EQ(info.GetImageNumber(), 2);
    EXPECT_EQ(info.GetNumberOfFrames(), 3);
}

TEST_F(DicomFileInfoTest, DigitsBehindTheLimitDoNotCount) {
    const std::string text = std::string(254, ' ') + "1234";
    EXPECT_EQ(ReadElements({{Tags::kSeriesNumber, Vr::kIS, text}}).GetSeriesNumber(), 12);
}

// ---- Dates and times ----

TEST_F(DicomFileInfoTest, DatesAreReadFromEightDigits) {
    const std::vector<std::pair<std::string_view, HostDateTime>> cases = {
        {"20240315", Moment(2024, 3, 15)},          {"20240315  ", Moment(2024, 3, 15)},
        {"20240229", Moment(2024, 2, 29)},          {"00010101", Moment(1, 1, 1)},
        {"99991231", Moment(9999, 12, 31)},         {"19541231", Moment(1954, 12, 31)},
        {"20240315-20240401", Moment(2024, 3, 15)}, {"20240315\\19991231", Moment(2024, 3, 15)},
    };
    for (const auto& [text, date] : cases) {
        EXPECT_EQ(ReadElements({{Tags::kStudyDate, Vr::kDA, text}}).GetStudyDate(), date) << text;
    }
}

TEST_F(DicomFileInfoTest, TextsThatAreNoDatesThrow) {
    const std::vector<std::string_view> texts = {"2024.03.15", "2024-03-15", "20241301", "20240001",
                                                 "20240231",   "20230229",   "20240400", "2024",
                                                 "2024031",    "2024 315",   "00000101", "Tuesday "};
    for (const std::string_view text : texts) {
        const DicomFileInfo& info = ReadElements({{Tags::kStudyDate, Vr::kDA, text}});
        EXPECT_THROW(info.GetStudyDate(), FormatError) << text;
        EXPECT_THROW(info.GetContentDate(), FormatError) << text;
        EXPECT_THROW(info.GetStudyTime(), FormatError) << text;
    }
}

TEST_F(DicomFileInfoTest, AFormatErrorQuotesTheText) {
    const DicomFileInfo& info = ReadElements({{Tags::kPatientBirthDate, Vr::kDA, "1954.01.31"}});
    try {
        info.GetPatientBirthDate();
        FAIL() << "no error";
    } catch (const FormatError& error) {
        EXPECT_STREQ(error.what(), "not a date: 1954.01.31");
    }
}

TEST_F(DicomFileInfoTest, EmptyDatesAreNone) {
    for (const std::string_view text :
         {std::string_view(), std::string_view("        "), std::string_view("\0\0\0\0\0\0\0\0", 8)}) {
        const DicomFileInfo& info = ReadElements({{Tags::kStudyDate, Vr::kDA, text},
                                                  {Tags::kStudyTime, Vr::kTM, "1435"},
                                                  {Tags::kPatientBirthDate, Vr::kDA, text}});
        EXPECT_EQ(info.GetStudyDate(), std::nullopt);
        EXPECT_EQ(info.GetStudyTime(), std::nullopt);
        EXPECT_EQ(info.GetPatientBirthDate(), std::nullopt);
    }
}

TEST_F(DicomFileInfoTest, TimesAreReadPartByPart) {
    const std::vector<std::pair<std::string_view, std::chrono::seconds>> cases = {
        {"14", 14h},
        {"1435", 14h + 35min},
        {"143512", 14h + 35min + 12s},
        {"143512.987654", 14h + 35min + 12s},
        {"143 ", 14h},
        {"14351 ", 14h + 35min},
        {"1435  ", 14h + 35min},
        {"14            ", 14h},
        {"000000", 0s},
        {"235959", 23h + 59min + 59s},
        {"235960", 23h + 59min + 59s},
    };
    for (const auto& [text, time] : cases) {
        const DicomFileInfo& info =
            ReadElements({{Tags::kStudyDate, Vr::kDA, "20240315"}, {Tags::kStudyTime, Vr::kTM, text}});
        EXPECT_EQ(info.GetStudyTime(), Moment(2024, 3, 15, time)) << text;
    }
}

TEST_F(DicomFileInfoTest, TextsThatAreNoTimesThrow) {
    for (const std::string_view text :
         {"14:35:12", "1 ", "24", "1460", "143561", "14 5", "1435 1", "noon", "-1"}) {
        const DicomFileInfo& info =
            ReadElements({{Tags::kStudyDate, Vr::kDA, "20240315"}, {Tags::kStudyTime, Vr::kTM, text}});
        EXPECT_THROW(info.GetStudyTime(), FormatError) << text;
        EXPECT_EQ(info.GetStudyDate(), Moment(2024, 3, 15)) << text;
    }
}

TEST_F(DicomFileInfoTest, ATimeNeedsADateAndAText) {
    EXPECT_EQ(ReadElements({{Tags::kStudyTime, Vr::kTM, "1435"}}).GetStudyTime(), std::nullopt);
    EXPECT_EQ(ReadElements({{Tags::kStudyDate, Vr::kDA, "20240315"}}).GetStudyTime(), std::nullopt);
    const std::vector<Element> emptyTime = {{Tags::kStudyDate, Vr::kDA, "20240315"},
                                            {Tags::kStudyTime, Vr::kTM, ""}};
    EXPECT_EQ(ReadElements(emptyTime).GetStudyTime(), std::nullopt);
}

TEST_F(DicomFileInfoTest, ContentDateAndTimeAreTheStudysWhenThereAreNone) {
    const Element studyDate{Tags::kStudyDate, Vr::kDA, "20240315"};
    const Element contentDate{Tags::kContentDate, Vr::kDA, "20240401"};
    const Element noContentDate{Tags::kContentDate, Vr::kDA, ""};
    const Element studyTime{Tags::kStudyTime, Vr::kTM, "10"};
    const Element contentTime{Tags::kContentTime, Vr::kTM, "11"};
    const HostDateTime study = Moment(2024, 3, 15);
    const HostDateTime content = Moment(2024, 4, 1);

    const DicomFileInfo& own = ReadElements({studyDate, contentDate, studyTime, contentTime});
    EXPECT_EQ(own.GetContentDate(), content);
    EXPECT_EQ(own.GetContentTime(), content + 11h);

    const DicomFileInfo& withoutDate = ReadElements({studyDate, studyTime, contentTime});
    EXPECT_EQ(withoutDate.GetContentDate(), study);
    EXPECT_EQ(withoutDate.GetContentTime(), study + 10h);

    const DicomFileInfo& emptyDate = ReadElements({studyDate, noContentDate, studyTime, contentTime});
    EXPECT_EQ(emptyDate.GetContentDate(), study);
    EXPECT_EQ(emptyDate.GetContentTime(), study + 10h);

    const DicomFileInfo& withoutTime = ReadElements({studyDate, contentDate, studyTime});
    EXPECT_EQ(withoutTime.GetContentDate(), content);
    EXPECT_EQ(withoutTime.GetContentTime(), study + 10h);
}

// ---- Source images ----

Bytes SourceImage(const char* transferSyntax, std::string_view classUID, std::string_view instanceUID) {
    ElementBuilder item(transferSyntax);
    if (!classUID.empty()) item.Text(Tags::kReferencedSOPClassUID, Vr::kUI, classUID);
    if (!instanceUID.empty()) item.Text(Tags::kReferencedSOPInstanceUID, Vr::kUI, instanceUID);
    return item.GetBytes();
}

TEST_F(DicomFileInfoTest, SourceImagesAreListedAndWhatAnItemLacksIsLeftOut) {
    using Uids = std::vector<HostString>;
    for (const char* transferSyntax : kTransferSyntaxes) {
        for (const auto lengths : {ElementBuilder::Lengths::kDefined, ElementBuilder::Lengths::kUndefined}) {
            FileBuilder file(transferSyntax);
            file.Data()
                .Sequence(Tags::kSourceImageSequence,
                          {SourceImage(transferSyntax, "1.1", "2.1"), SourceImage(transferSyntax, "", "2.2"),
                           SourceImage(transferSyntax, "1.3", "2.3")},
                          lengths)
                .Text(Tags::kPatientID, Vr::kLO, "BEHIND");
            const DicomFileInfo& info = Read(file);
            EXPECT_EQ(info.GetSourceImageClassUIDs(), (Uids{L"1.1", L"1.3"})) << transferSyntax;
            EXPECT_EQ(info.GetSourceImageInstanceUIDs(), (Uids{L"2.1", L"2.2", L"2.3"})) << transferSyntax;
            EXPECT_EQ(info.GetPatientId(), L"BEHIND") << transferSyntax;
        }
    }
}

TEST_F(DicomFileInfoTest, SequencesOfAnyLengthAreListedWhole) {
    constexpr size_t kCount = 500;
    const std::string longUid(70, '1');
    FileBuilder file;
    file.Data().Sequence(Tags::kSourceImageSequence,
                         std::vector<Bytes>(kCount, SourceImage(Uids::kExplicitVRLittleEndian, longUid, "")));
    const DicomFileInfo& info = Read(file);
    EXPECT_EQ(info.GetSourceImageClassUIDs(), std::vector<HostString>(kCount, HostString(64, L'1')));
    EXPECT_TRUE(info.GetSourceImageInstanceUIDs().empty());
}

TEST_F(DicomFileInfoTest, NoSourceImagesAreAnEmptyList) {
    for (const VrCode vr : {Vr::kSQ, Vr::kUN}) {
        FileBuilder file;
        file.Data().Header(Tags::kSourceImageSequence, vr, 0);
        EXPECT_TRUE(Read(file).GetSourceImageInstanceUIDs().empty());
    }
    EXPECT_TRUE(ReadElements({{Tags::kModality, Vr::kCS, "US"}}).GetSourceImageClassUIDs().empty());
}

TEST_F(DicomFileInfoTest, ItemsThatLeadOutsideTheFileEndTheList) {
    const Bytes good = SourceImage(Uids::kExplicitVRLittleEndian, "1.1", "2.1");
    for (const uint32_t length : {2000u, 0x7FFFFFFFu, 0xFFFFFFF0u}) {
        FileBuilder file;
        const auto goodSize = static_cast<uint32_t>(good.size());
        file.Data()
            .Header(Tags::kSourceImageSequence, Vr::kSQ, goodSize * 2 + 16)
            .ItemHeader(Tags::kItem, goodSize)
            .Raw(good)
            .ItemHeader(Tags::kItem, length)
            .Raw(good);
        EXPECT_EQ(Read(file).GetSourceImageInstanceUIDs(), std::vector<HostString>{L"2.1"}) << length;
    }
}

// ---- Kinds of file ----

struct KindCase {
    const char* fSOPClassUID;
    bool fHasPixels;
    bool fIsSR;
    bool fIsImage;
};

TEST_F(DicomFileInfoTest, TheKindIsTakenFromTheClassOfReportsAndThePixelsOfImages) {
    const std::vector<KindCase> cases = {
        {Uids::kBasicTextSR, false, true, false},
        {Uids::kEnhancedSR, false, true, false},
        {Uids::kComprehensiveSR, false, true, false},
        {Uids::kTrialTextSR, false, true, false},
        {Uids::kTrialAudioSR, false, true, false},
        {Uids::kTrialDetailSR, false, true, false},
        {Uids::kEnhancedSR, true, true, false},
        {kCTImage, true, false, true},
        {kCTImage, false, false, false},
        {"1.2.840.10008.5.1.4.1.1.88.59", false, false, false},
        {"1.2.840.10008.5.1.4.1.1.88.3", false, true, false},
        {"1.2.840.10008.5.1.4.1.1.88", false, false, false},
        {"1.2.840.10008.5.1.4.1.1.88.222", false, false, false},
    };
    for (const KindCase& kind : cases) {
        for (const char* transferSyntax : kTransferSyntaxes) {
            FileBuilder file(transferSyntax, kind.fSOPClassUID);
            file.Data().Text(Tags::kPatientID, Vr::kLO, "PATIENT1");
            if (kind.fHasPixels) file.Data().Value(Tags::kPixelData, Vr::kOW, Bytes(64));
            const DicomFileInfo& info = Read(file);
            EXPECT_EQ(info.IsSR(), kind.fIsSR) << kind.fSOPClassUID;
            EXPECT_EQ(info.IsImage(), kind.fIsImage) << kind.fSOPClassUID;
            EXPECT_EQ(info.GetPatientId(), L"PATIENT1") << kind.fSOPClassUID << " " << transferSyntax;
        }
    }
}

TEST_F(DicomFileInfoTest, AnImageIsReadWithoutItsPixelsWhateverTheyAre) {
    constexpr uint32_t kMuchMoreThanThereIs = 500'000'000;
    FileBuilder file;
    file.Data().Text(Tags::kPatientID, Vr::kLO, "PATIENT1");
    file.Data().Header(Tags::kPixelData, Vr::kOW, kMuchMoreThanThereIs).Raw(Bytes(100));
    const DicomFileInfo& info = Read(file);
    EXPECT_TRUE(info.IsImage());
    EXPECT_EQ(info.GetPatientId(), L"PATIENT1");
}

// ---- Damage and failures ----

TEST_F(DicomFileInfoTest, WhatStandsBeforeDamageCanBeHad) {
    FileBuilder file;
    file.Data().Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3").Text(Tags::kModality, Vr::kCS, "US");
    file.Data().Header(Tags::kStudyDescription, Vr::kLO, 60000).Raw(Bytes(20, 'x'));
    const DicomFileInfo& info = Read(file);
    EXPECT_EQ(info.GetModality(), L"US");
    EXPECT_EQ(ErrorNumberOf([&] { info.GetPatientName(); }), Vantor::ErrorNumbers::kRecordStructure);
    EXPECT_EQ(ErrorNumberOf([&] { info.GetSeriesNumber(); }), Vantor::ErrorNumbers::kRecordStructure);
    EXPECT_EQ(ErrorNumberOf([&] { info.GetPatientBirthDate(); }), Vantor::ErrorNumbers::kRecordStructure);
    EXPECT_EQ(ErrorNumberOf([&] { info.GetSourceImageClassUIDs(); }), Vantor::ErrorNumbers::kRecordStructure);
}

// Half a patient ID is another patient's.
TEST_F(DicomFileInfoTest, AValueThatIsCutOffIsNoValue) {
    FileBuilder file;
    file.Data().Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3");
    file.Data().Header(Tags::kPatientID, Vr::kLO, 8).Raw(VantorTest::BytesOf("1234567"));
    const DicomFileInfo& cutText = Read(file);
    EXPECT_EQ(ErrorNumberOf([&] { cutText.GetPatientId(); }), Vantor::ErrorNumbers::kRecordStructure);

    FileBuilder sequence;
    sequence.Data().Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3");
    sequence.Data()
        .Header(Tags::kSourceImageSequence, Vr::kSQ, 500)
        .ItemHeader(Tags::kItem, 492)
        .Raw(SourceImage(Uids::kExplicitVRLittleEndian, "1.1", "2.1"));
    const DicomFileInfo& cutSequence = Read(sequence);
    EXPECT_EQ(ErrorNumberOf([&] { cutSequence.GetSourceImageClassUIDs(); }),
              Vantor::ErrorNumbers::kRecordStructure);
}

// It would look like a file without attributes: such are data sets that are compressed as a whole, or encoded
// in another way than the meta information says.
TEST_F(DicomFileInfoTest, ADamagedFileThatDoesNotTellWhatItIsIsRefused) {
    for (const char* sopClass : {kCTImage, Uids::kEnhancedSR}) {
        FileBuilder file(Uids::kExplicitVRLittleEndian, sopClass);
        file.Data().Header(Tag{0xDDED, 0x6ECF}, Vr::kLO, 60000).Raw(Bytes(20, 'x'));
        EXPECT_EQ(ErrorNumberOf([&] { Read(file); }), Vantor::ErrorNumbers::kRecordStructure);
        EXPECT_FALSE(fInfo->IsSR());
    }
    FileBuilder nothingButAnId;
    nothingButAnId.Data().Text(Tags::kPatientID, Vr::kLO, "PATIENT1");
    EXPECT_EQ(Read(nothingButAnId).GetPatientId(), L"PATIENT1");
}

TEST_F(DicomFileInfoTest, FilesThatAreNoDicomFilesAreRefused) {
    FileBuilder noTransferSyntax(Uids::kExplicitVRLittleEndian, kCTImage);
    noTransferSyntax.ReplaceMeta(ElementBuilder().Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, kCTImage));
    noTransferSyntax.Data().Text(Tags::kPatientID, Vr::kLO, "PATIENT1");
    FileBuilder reportWithoutTransferSyntax;
    reportWithoutTransferSyntax.ReplaceMeta(
        ElementBuilder().Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, Uids::kEnhancedSR));
    reportWithoutTransferSyntax.Data().Text(Tags::kPatientID, Vr::kLO, "PATIENT1");

    const std::vector<Bytes> contents = {{},
                                         VantorTest::BytesOf("no DICOM file"),
                                         Bytes(2000, 'x'),
                                         Bytes(131),
                                         FileBuilder().BuildMeta(),
                                         noTransferSyntax.Build(),
                                         reportWithoutTransferSyntax.Build()};
    for (const Bytes& content : contents) {
        EXPECT_EQ(ErrorNumberOf([&] { Read(content); }), Vantor::ErrorNumbers::kRecordStructure)
            << content.size() << " bytes";
        EXPECT_FALSE(fInfo->IsSR() || fInfo->IsImage());
        EXPECT_EQ(fInfo->GetPatientId(), L"");
        std::string damage;
        EXPECT_EQ(ErrorNumberOf([&] { fInfo->DumpElements("", damage); }),
                  Vantor::ErrorNumbers::kRecordStructure)
            << content.size() << " bytes";
    }
}

TEST_F(DicomFileInfoTest, AMissingFileIsNamed) {
    const std::string path = fFolder.PathOf("MISSING.DCM");
    DicomFileInfo info(ToHostText(path));
    try {
        info.Read();
        FAIL() << "read a file that is not there";
    } catch (const FileException& error) {
        EXPECT_EQ(error.GetCause(), FileException::Cause::kFileNotFound);
        EXPECT_EQ(error.GetFileName(), path);
    }
}

TEST_F(DicomFileInfoTest, APathLongerThanTheLibraryHoldsIsRefusedWhole) {
    const std::string path(256, 'p');
    const DicomFileInfo tooLong(ToHostText(path));
    std::string damage;
    for (const auto& work : std::vector<std::function<void()>>{
             [&] { DicomFileInfo(ToHostText(path)).Read(); }, [&] { tooLong.DumpElements("", damage); }}) {
        try {
            work();
            FAIL() << "cut the path";
        } catch (const FileException& error) {
            EXPECT_EQ(error.GetCause(), FileException::Cause::kBadPath);
            EXPECT_EQ(error.GetFileName(), path);
        }
    }
}

TEST_F(DicomFileInfoTest, TheFileIsClosedAfterReadAndAfterAFailure) {
    FileBuilder image;
    image.Data().Value(Tags::kPixelData, Vr::kOW, Bytes(64));
    FileBuilder report(Uids::kExplicitVRLittleEndian, Uids::kEnhancedSR);
    report.Data().Text(Tags::kPatientID, Vr::kLO, "PATIENT1");
    FileBuilder other;
    other.Data().Text(Tags::kPatientID, Vr::kLO, "PATIENT1");
    for (const Bytes& content : {image.Build(), report.Build(), other.Build(), Bytes(2000), Bytes(10)}) {
        DicomFileInfo info(Write(content));
        std::string damage;
        ErrorNumberOf([&] { info.Read(); });
        ErrorNumberOf([&] { info.DumpElements("", damage); });
        const std::string path = fFolder.PathOf("FILE.DCM");
        EXPECT_NO_THROW(Vantor::Platform::OpenDiskFile(path, Vantor::Platform::FileAccess::kReadWrite));
    }
}

// ---- Life ----

void ExpectEverythingAbsent(const DicomFileInfo& info) {
    EXPECT_FALSE(info.IsSR());
    EXPECT_FALSE(info.IsImage());
    for (const TextGetter& getter : kTextGetters) {
        EXPECT_EQ((info.*getter.fGet)(), L"");
    }
    EXPECT_EQ(info.GetSeriesNumber(), -1);
    EXPECT_EQ(info.GetImageNumber(), -1);
    EXPECT_EQ(info.GetNumberOfFrames(), -1);
    EXPECT_EQ(info.GetStudyDate(), std::nullopt);
    EXPECT_EQ(info.GetPatientBirthDate(), std::nullopt);
    EXPECT_EQ(info.GetContentDate(), std::nullopt);
    EXPECT_EQ(info.GetStudyTime(), std::nullopt);
    EXPECT_EQ(info.GetContentTime(), std::nullopt);
    EXPECT_TRUE(info.GetSourceImageClassUIDs().empty());
    EXPECT_TRUE(info.GetSourceImageInstanceUIDs().empty());
}

TEST_F(DicomFileInfoTest, EverythingIsAbsentBeforeReadAndAfterDispose) {
    ExpectEverythingAbsent(DicomFileInfo());
    FileBuilder file(Uids::kExplicitVRLittleEndian, Uids::kEnhancedSR);
    file.Data().Text(Tags::kPatientID, Vr::kLO, "PATIENT1");
    DicomFileInfo info(Write(file.Build()));
    ExpectEverythingAbsent(info);
    info.Read();
    EXPECT_EQ(info.GetPatientId(), L"PATIENT1");
    info.Dispose();
    ExpectEverythingAbsent(info);
    info.Dispose();
    ExpectEverythingAbsent(info);
}

TEST_F(DicomFileInfoTest, AnEmptyObjectHasNoFileToRead) {
    EXPECT_THROW(DicomFileInfo().Read(), FileException);
}

TEST_F(DicomFileInfoTest, ReadingAgainForgetsWhatWasReadBefore) {
    FileBuilder report(Uids::kExplicitVRLittleEndian, Uids::kEnhancedSR);
    report.Data().Text(Tags::kPatientID, Vr::kLO, "PATIENT1");
    FileBuilder image;
    image.Data().Text(Tags::kPatientID, Vr::kLO, "PATIENT2").Value(Tags::kPixelData, Vr::kOW, Bytes(64));

    DicomFileInfo info(Write(report.Build()));
    info.Read();
    EXPECT_TRUE(info.IsSR());
    Write(image.Build());
    info.Read();
    EXPECT_FALSE(info.IsSR());
    EXPECT_TRUE(info.IsImage());
    EXPECT_EQ(info.GetPatientId(), L"PATIENT2");
    Write(Bytes(2000));
    EXPECT_EQ(ErrorNumberOf([&] { info.Read(); }), Vantor::ErrorNumbers::kRecordStructure);
    ExpectEverythingAbsent(info);
}

// ---- Dumps ----

size_t CountLines(const std::string& text) {
    size_t count = 0;
    for (size_t end = text.find("\r\n"); end != std::string::npos; end = text.find("\r\n", end + 1)) ++count;
    return count;
}

TEST_F(DicomFileInfoTest, ADumpHasTheMetaInformationFirstAndNamesFromTheDictionary) {
    constexpr char kDictionary[] =
        "(0008,0060) VR=\"CS\" Name=\"Modality\"\n"
        "(0010,0020) VR=\"LO\" Name=\"Patient ID\"\n";
    FileBuilder file(Uids::kImplicitVRLittleEndian);
    file.Data().Text(Tags::kModality, Vr::kCS, "US").Text(Tags::kPatientID, Vr::kLO, "PATIENT1");
    std::string damage = "something";
    const std::string text = Read(file).DumpElements(kDictionary, damage);
    EXPECT_EQ(damage, "");
    EXPECT_TRUE(text.starts_with("  0002  0000  UL  00000004")) << text;
    EXPECT_NE(text.find("  0008  0060  CS  00000002  Modality  US\r\n"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("  0010  0020  LO  00000008  Patient ID  PATIENT1\r\n")) << text;
}

TEST_F(DicomFileInfoTest, LongDumpsAreWhole) {
    constexpr uint16_t kCount = 3000;
    const std::string value(200, 'v');
    FileBuilder file;
    for (uint16_t number = 0; number < kCount; ++number) {
        file.Data().Text(Tag{0x0011, static_cast<uint16_t>(0x1000 + number)}, Vr::kLO, value);
    }
    std::string damage;
    const DicomFileInfo& info = Read(file);
    const std::string text = info.DumpElements("", damage);
    EXPECT_EQ(damage, "");
    EXPECT_EQ(CountLines(text.substr(text.find("  0011  1000"))), kCount);
    EXPECT_TRUE(text.ends_with("1BB7  LO  000000C8  " + value + "\r\n"));
}

TEST_F(DicomFileInfoTest, ADumpOfADamagedFileEndsWhereTheDamageBegins) {
    FileBuilder file;
    file.Data().Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3").Text(Tags::kModality, Vr::kCS, "US");
    file.Data().Header(Tags::kStudyDescription, Vr::kLO, 60000).Raw(Bytes(20, 'x'));
    std::string damage;
    const std::string text = Read(file).DumpElements("", damage);
    EXPECT_NE(damage, "");
    EXPECT_NE(text.find("        0060  CS  00000002  US\r\n"), std::string::npos) << text;
    EXPECT_EQ(text.find('\0'), std::string::npos);
}

}  // namespace
