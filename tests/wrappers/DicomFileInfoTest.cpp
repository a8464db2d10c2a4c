// Files of every kind, encoding and state of health, read through the class that hosts use for single files.
// Hunts wrong elements behind getters, texts taken for numbers, dates and times that are none, and what is
// left behind after a failure.

#include "wrappers/DicomFileInfo.h"

#include <gtest/gtest.h>

#include <sstream>

#include "platform/CodePage.h"
#include "platform/File.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using namespace VantorWrappers;

constexpr char kCTImage[] = "1.2.840.10008.5.1.4.1.1.2";

// ---- Everything that a host can ask for, as text ----

std::string Shown(const HostString& text) { return Platform::FromHostText(text); }

std::string Shown(int32_t number) { return std::to_string(number); }

// "2024-3-15 14:35:12"
std::string Shown(const std::optional<HostDateTime>& moment) {
    if (!moment) return "";
    const auto midnight = std::chrono::floor<std::chrono::days>(*moment);
    const std::chrono::year_month_day date(midnight);
    const std::chrono::hh_mm_ss time(*moment - midnight);
    std::ostringstream shown;
    shown << int(date.year()) << '-' << unsigned(date.month()) << '-' << unsigned(date.day()) << ' '
          << time.hours().count() << ':' << time.minutes().count() << ':' << time.seconds().count();
    return shown.str();
}

// "1.1,1.2,"
std::string Shown(const std::vector<HostString>& texts) {
    std::string shown;
    for (const HostString& text : texts) shown += Shown(text) + ",";
    return shown;
}

// What a getter answers, or the text of its FormatError.
template <auto kGetter>
std::string Show(const DicomFileInfo& info) {
    try {
        return Shown((info.*kGetter)());
    } catch (const FormatError& error) {
        return error.what();
    }
}

constexpr auto kShowClasses = Show<&DicomFileInfo::GetSourceImageClassUIDs>;
constexpr auto kShowInstances = Show<&DicomFileInfo::GetSourceImageInstanceUIDs>;

struct Getter {
    Tag fTag;
    VrCode fVr;
    const char* fStored;
    const char* fShown;
    std::string (*fShow)(const DicomFileInfo& info);
    size_t fLimit = 0;  // of texts
};

// In the order of the tags.
const std::vector<Getter> kGetters = {
    {Tags::kSOPInstanceUID, Vr::kUI, "1.2.3", "1.2.3", Show<&DicomFileInfo::GetUID>, 64},
    {Tags::kStudyDate, Vr::kDA, "20240315", "2024-3-15 0:0:0", Show<&DicomFileInfo::GetStudyDate>},
    {Tags::kContentDate, Vr::kDA, "20240401", "2024-4-1 0:0:0", Show<&DicomFileInfo::GetContentDate>},
    {Tags::kStudyTime, Vr::kTM, "10", "2024-3-15 10:0:0", Show<&DicomFileInfo::GetStudyTime>},
    {Tags::kContentTime, Vr::kTM, "11", "2024-4-1 11:0:0", Show<&DicomFileInfo::GetContentTime>},
    {Tags::kAccessionNumber, Vr::kSH, "AN", "AN", Show<&DicomFileInfo::GetAccessionNumber>, 16},
    {Tags::kModality, Vr::kCS, "US", "US", Show<&DicomFileInfo::GetModality>, 16},
    {Tags::kReferringPhysicianName, Vr::kPN, "A^", "A^", Show<&DicomFileInfo::GetReferringPhysician>, 64},
    {Tags::kStudyDescription, Vr::kLO, " B  ", " B  ", Show<&DicomFileInfo::GetStudyDescription>, 64},
    {Tags::kSeriesDescription, Vr::kLO, "CD", "CD", Show<&DicomFileInfo::GetSeriesDescription>, 64},
    {Tags::kSourceImageSequence, Vr::kSQ, "", "", kShowClasses},
    {Tags::kSourceImageSequence, Vr::kSQ, "", "", kShowInstances},
    {Tags::kPatientName, Vr::kPN, "E^F ", "E^F ", Show<&DicomFileInfo::GetPatientName>, 64},
    {Tags::kPatientID, Vr::kLO, "GH", "GH", Show<&DicomFileInfo::GetPatientId>, 64},
    {Tags::kPatientBirthDate, Vr::kDA, "19540301", "1954-3-1 0:0:0",
     Show<&DicomFileInfo::GetPatientBirthDate>},
    {Tags::kStudyInstanceUID, Vr::kUI, "1.2.4", "1.2.4", Show<&DicomFileInfo::GetStudyUID>, 64},
    {Tags::kSeriesInstanceUID, Vr::kUI, "1.2.5", "1.2.5", Show<&DicomFileInfo::GetSeriesUID>, 64},
    {Tags::kStudyID, Vr::kSH, "JK", "JK", Show<&DicomFileInfo::GetStudyID>, 16},
    {Tags::kSeriesNumber, Vr::kIS, "1", "1", Show<&DicomFileInfo::GetSeriesNumber>},
    {Tags::kInstanceNumber, Vr::kIS, "2", "2", Show<&DicomFileInfo::GetImageNumber>},
    {Tags::kNumberOfFrames, Vr::kIS, "3", "3", Show<&DicomFileInfo::GetNumberOfFrames>},
};

void ExpectEverythingAbsent(const DicomFileInfo& info) {
    EXPECT_FALSE(info.IsSR() || info.IsImage());
    for (const Getter& getter : kGetters) {
        EXPECT_EQ(getter.fShow(info), getter.fVr == Vr::kIS ? "-1" : "") << getter.fStored;
    }
}

Bytes FileOf(const ElementBuilder& data, const char* sopClass = kCTImage,
             const char* transferSyntax = Uids::kExplicitVRLittleEndian) {
    FileBuilder file(transferSyntax, sopClass);
    file.Data() = data;
    return file.Build();
}

class DicomFileInfoTest : public testing::Test {
  protected:
    // Reads a file, which must be closed afterwards, and tells how that fails.
    std::string FailureToRead(const Bytes& content) {
        const std::string path = fFolder.WriteFile("FILE.DCM", content);
        const std::string failure = ThrownBy([&] { fInfo.Read(); });
        EXPECT_NO_THROW(Platform::OpenDiskFile(path, Platform::FileAccess::kReadWrite));
        return failure;
    }

    const DicomFileInfo& Read(const Bytes& content) {
        EXPECT_EQ(FailureToRead(content), "nothing");
        return fInfo;
    }
    const DicomFileInfo& Read(const ElementBuilder& data) { return Read(FileOf(data)); }

    TestFolder fFolder;
    DicomFileInfo fInfo{Platform::ToHostText(fFolder.PathOf("FILE.DCM"))};
    std::string fDamage = "from before";
};

// ---- Values ----

TEST_F(DicomFileInfoTest, EachGetterHasItsOwnElementInEveryEncoding) {
    for (const Encoding& encoding : kEncodings) {
        ElementBuilder data(encoding.fTransferSyntax);
        for (const Getter& getter : kGetters) data.Text(getter.fTag, getter.fVr, getter.fStored);
        const DicomFileInfo& info = Read(FileOf(data, kCTImage, encoding.fTransferSyntax));
        for (const Getter& getter : kGetters) EXPECT_EQ(getter.fShow(info), getter.fShown);
    }
}

// A character cut in two would make the whole name unreadable as UTF-8.
TEST_F(DicomFileInfoTest, TextsAreCutAtTheirLimitsButNotInsideACharacter) {
    const std::string text = " " + std::string(80, 'x');
    for (const Getter& getter : kGetters) {
        if (getter.fLimit == 0) continue;
        Read(ElementBuilder().Text(getter.fTag, getter.fVr, text));
        EXPECT_EQ(getter.fShow(fInfo), text.substr(0, getter.fLimit));
    }
    const std::string name = std::string(61, 'A') + "\xF0\x9F\x98\x80^Name";
    Read(ElementBuilder().Text(Tags::kPatientName, Vr::kPN, name));
    EXPECT_EQ(fInfo.GetPatientName(), Platform::ToHostText(name.substr(0, kIsWindows ? 64 : 61)));
}

TEST_F(DicomFileInfoTest, NumbersAreReadFromTheStartOfTheirText) {
    const auto number = [&](const std::string& text) {
        return Read(ElementBuilder().Text(Tags::kSeriesNumber, Vr::kIS, text)).GetSeriesNumber();
    };
    const std::string pastTheLimit = std::string(255, ' ') + "12";
    for (const char* text : {"1.5", "1\\2", "\t 1", "+001", pastTheLimit.c_str()}) EXPECT_EQ(number(text), 1);
    for (const char* text : {"", "    ", "abc", "- 5", "+-5", "2147483648"}) EXPECT_EQ(number(text), -1);
    EXPECT_EQ(number("-3 a"), -3);
    EXPECT_EQ(number("2147483647"), 2147483647);
}

TEST_F(DicomFileInfoTest, DatesAreEightDigitsAndTimesAreReadPartByPart) {
    const char* const moments[][3] = {{"20240229  ", "14", "2024-2-29 14:0:0"},
                                      {"00010101", "1435", "1-1-1 14:35:0"},
                                      {"20240315-2024", "143512.987654", "2024-3-15 14:35:12"},
                                      {"20240315", "235960", "2024-3-15 23:59:59"},
                                      {"20240315", "", ""},
                                      {"", "14", ""}};
    const std::string noDates[] = {"2024.03.15", "20230229", "20241301", "20240400",
                                   "2024031 ",   "2024 315", "00000101", "        "};
    const std::string noTimes[] = {"14:35:12", "1 ", "143 ", "24", "1460", "143561", "1435 1", "    "};
    const auto shown = [&](std::string_view date, std::string_view time) {
        Read(ElementBuilder().Text(Tags::kStudyDate, Vr::kDA, date).Text(Tags::kStudyTime, Vr::kTM, time));
        return Show<&DicomFileInfo::GetStudyTime>(fInfo);
    };
    for (const auto& [date, time, moment] : moments) EXPECT_EQ(shown(date, time), moment);
    for (const std::string& text : noDates) EXPECT_EQ(shown(text, "14"), "not a date: " + text);
    for (const std::string& text : noTimes) EXPECT_EQ(shown("20240315", text), "not a time: " + text);
}

TEST_F(DicomFileInfoTest, ContentDateAndTimeAreTheStudysWhereEitherIsMissing) {
    const auto content = [&](std::string_view date, std::string_view time) {
        ElementBuilder data;
        data.Text(Tags::kStudyDate, Vr::kDA, "20240315").Text(Tags::kContentDate, Vr::kDA, date);
        Read(data.Text(Tags::kStudyTime, Vr::kTM, "10").Text(Tags::kContentTime, Vr::kTM, time));
        return Shown(fInfo.GetContentDate()) + ", " + Shown(fInfo.GetContentTime());
    };
    EXPECT_EQ(content("20240401", ""), "2024-4-1 0:0:0, 2024-3-15 10:0:0");
    EXPECT_EQ(content("", "11"), "2024-3-15 0:0:0, 2024-3-15 10:0:0");
}

TEST_F(DicomFileInfoTest, SourceImagesAreListedAndWhatAnItemLacksIsLeftOut) {
    for (const Encoding& encoding : kEncodings) {
        ElementBuilder whole(encoding.fTransferSyntax), onlyClass = whole, onlyInstance = whole, data = whole;
        onlyClass.Text(Tags::kReferencedSOPClassUID, Vr::kUI, "1.2");
        onlyInstance.Text(Tags::kReferencedSOPInstanceUID, Vr::kUI, "2.3");
        whole.Text(Tags::kReferencedSOPClassUID, Vr::kUI, std::string(70, '1'));
        whole.Text(Tags::kReferencedSOPInstanceUID, Vr::kUI, "2.1");
        const std::vector<Bytes> items = {whole.GetBytes(), onlyClass.GetBytes(), onlyInstance.GetBytes()};
        data.Sequence(Tags::kSourceImageSequence, items, ElementBuilder::Lengths::kUndefined);
        Read(FileOf(data, kCTImage, encoding.fTransferSyntax));
        EXPECT_EQ(kShowClasses(fInfo), std::string(64, '1') + ",1.2,");
        EXPECT_EQ(kShowInstances(fInfo), "2.1,2.3,");
    }
}

// ---- Kinds of file, damage and failures ----

TEST_F(DicomFileInfoTest, ReportsAreToldByTheirClassAndImagesByTheirPixels) {
    const auto expectKind = [&](const char* sopClass, bool isReport) {
        ElementBuilder data;
        data.Text(Tags::kPatientID, Vr::kLO, "ID");
        for (const bool hasPixels : {false, true}) {
            if (hasPixels) data.Header(Tags::kPixelData, Vr::kOW, 500'000'000).Raw(Bytes(100));
            ExpectEverythingAbsent(fInfo);
            EXPECT_EQ(Shown(Read(FileOf(data, sopClass)).GetPatientId()), "ID") << sopClass;
            EXPECT_EQ(fInfo.IsSR(), isReport) << sopClass;
            EXPECT_EQ(fInfo.IsImage(), hasPixels && !isReport) << sopClass;
            fInfo.Dispose();
            fInfo.Dispose();
        }
    };
    for (const char* sopClass : {Uids::kBasicTextSR, Uids::kEnhancedSR, Uids::kComprehensiveSR,
                                 Uids::kTrialTextSR, Uids::kTrialAudioSR, Uids::kTrialDetailSR})
        expectKind(sopClass, true);
    for (const char* sopClass : {kCTImage, "1.2.840.10008.5.1.4.1.1.88.222"}) expectKind(sopClass, false);
}

// Half a value is none: half a patient ID is another patient's.
TEST_F(DicomFileInfoTest, OnlyWhatStandsBeforeDamageCanBeHad) {
    ElementBuilder data;
    for (const Getter& getter : kGetters) {
        if (getter.fTag < Tags::kStudyDescription) data.Text(getter.fTag, getter.fVr, getter.fStored);
    }
    Read(data.Header(Tags::kStudyDescription, Vr::kLO, 60000).Raw(Bytes(20, 'x')));
    for (const Getter& getter : kGetters) {
        const std::string failure = ThrownBy([&] { EXPECT_EQ(getter.fShow(fInfo), getter.fShown); });
        EXPECT_EQ(failure.substr(0, 3), getter.fTag < Tags::kStudyDescription ? "not" : "102")
            << getter.fStored;
    }
}

// A damaged first element makes it look like a file without attributes: such are data sets that are
// compressed as a whole, or encoded in another way than the meta information says.
TEST_F(DicomFileInfoTest, WhatIsNoDicomFileIsRefusedAndLeavesNothingOfTheFileBefore) {
    const ElementBuilder damage = ElementBuilder().Header({0xDDED, 0x6ECF}, Vr::kLO, 60000).Raw(Bytes(20));
    std::vector<Bytes> contents = {{}, Bytes(131), Bytes(2000, 'x')};
    for (const char* sopClass : {kCTImage, Uids::kEnhancedSR}) {
        for (const auto& data : {ElementBuilder(), damage}) contents.push_back(FileOf(data, sopClass));
    }
    FileBuilder noTransferSyntax;
    noTransferSyntax.Data().Text(Tags::kPatientID, Vr::kLO, "ID");
    noTransferSyntax.ReplaceMeta(ElementBuilder().Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, kCTImage));
    contents.push_back(noTransferSyntax.Build());
    for (const Bytes& content : contents) {
        Read(FileOf(ElementBuilder().Text(Tags::kPatientID, Vr::kLO, "ID"), Uids::kEnhancedSR));
        EXPECT_EQ(FailureToRead(content).substr(0, 3), "102") << content.size() << " bytes";
        ExpectEverythingAbsent(fInfo);
    }
}

TEST_F(DicomFileInfoTest, FilesThatCannotBeOpenedAreNamed) {
    const std::string tooLong(256, 'p');
    const DicomFileInfo info(Platform::ToHostText(tooLong));
    const std::string refused =
        tooLong + ": " + Platform::CauseText(Platform::FileException::Cause::kBadPath);
    EXPECT_EQ(ThrownBy([&] { DicomFileInfo(Platform::ToHostText(tooLong)).Read(); }), refused);
    EXPECT_EQ(ThrownBy([&] { info.DumpElements("", fDamage); }), refused);
    EXPECT_EQ(ThrownBy([&] { fInfo.Read(); }), fFolder.PathOf("FILE.DCM") + ": file not found");
    EXPECT_THROW(DicomFileInfo().Read(), Platform::FileException);
}

// Longer than the room that a dump is first given.
TEST_F(DicomFileInfoTest, ADumpIsWholeUpToTheDamageWithNamesFromTheDictionary) {
    ElementBuilder data(Uids::kImplicitVRLittleEndian);
    data.Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.");
    std::string lines = "  0008  0018  UN  00000004    1.2.\r\n";
    for (int number = 0; number < 3000; ++number) {
        data.Text(Tags::kModality, Vr::kCS, "US");
        lines += "        0060  CS  00000002  Modality  US\r\n";
    }
    for (const bool isDamaged : {false, true}) {
        if (isDamaged) data.Header(Tags::kPixelData, Vr::kOW, 1000);
        Read(FileOf(data, kCTImage, Uids::kImplicitVRLittleEndian));
        const std::string text = fInfo.DumpElements("(0008,0060) VR=\"CS\" Name=\"Modality\"\n", fDamage);
        EXPECT_TRUE(text.starts_with("  0002  0000  UL  00000004")) << text.substr(0, 100);
        EXPECT_NE(text.find(lines), std::string::npos) << text.substr(0, 1000);
        EXPECT_EQ(text.ends_with(lines), !isDamaged);
        EXPECT_EQ(fDamage.empty(), !isDamaged);
        EXPECT_EQ(text.find('\0'), std::string::npos);
    }
}

}  // namespace
