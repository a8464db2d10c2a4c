// The data set core. What it hunts: bytes that depend on the order of changes, group lengths that go wrong,
// damaged lengths, and the oddities of encoding that hosts and media depend on.

#include "dicom/TDicomDataSet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>

#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr char kNoRoom[] = "100 Attempt to expand beyond maximum size";
constexpr char kBadLength[] = "102 Invalid DICOM element length.";

class DataSetInEncoding : public testing::TestWithParam<Encoding> {
  protected:
    const bool fIsExplicit = GetParam().fIsExplicit;
    const bool fIsBigEndian = GetParam().fIsBigEndian;
    const std::unique_ptr<TDicomDataSet> fDataSet = NewDataSet(fIsExplicit, fIsBigEndian);
};

INSTANTIATE_TEST_SUITE_P(All, DataSetInEncoding, testing::ValuesIn(kEncodings));
// No transfer syntax has this one, but data sets can.
INSTANTIATE_TEST_SUITE_P(ImplicitBig, DataSetInEncoding, testing::Values(Encoding{nullptr, false, true}));

// Each group has a length, which is the size of its other elements.
void ExpectTrueGroupLengths(const TDicomDataSet& dataSet) {
    std::map<uint16_t, uint32_t> sizes, lengths;
    Tag tag;
    int32_t offset = TDicomDataSet::kFromStart;
    while (
        dataSet.GetNextElement(offset, &tag.fGroup, &tag.fElement, nullptr, nullptr, nullptr, 0, &offset)) {
        const int32_t end = dataSet.GetNextElementOffset(offset);
        if (tag.fElement != 0) sizes[tag.fGroup] += static_cast<uint32_t>(end - offset);
        for (int32_t byte = 0; tag.fElement == 0 && byte < 4; ++byte) {
            const int32_t place = dataSet.IsBigEndian() ? end - 4 + byte : end - 1 - byte;
            lengths[tag.fGroup] = lengths[tag.fGroup] << 8 | dataSet.GetDataSet()[place];
        }
    }
    EXPECT_EQ(lengths, sizes);
}

// The order of putting must not show: out of order, replaced and deleted elements leave the same bytes as
// putting the survivors in order.
TEST_P(DataSetInEncoding, KeepsOrderAndGroupLengthsThroughEveryKindOfChange) {
    const Tag tags[] = {{8, 0x16}, {8, 0x60}, {0x10, 0x10}, {0x10, 0x20}, {0x18, 0x1000}, {0x20, 0xD}};
    const auto put = [&](TDicomDataSet& dataSet, int index) {
        PutText(dataSet, tags[index], Vr::kLO, "value " + std::to_string(index));
    };
    for (const int index : {0, 1, 2, 3, 4, 5}) put(*fDataSet, index);
    const auto shuffled = NewDataSet(fIsExplicit, fIsBigEndian);
    for (const int index : {4, 1, 5, 0, 3, 2, 1}) PutText(*shuffled, tags[index], Vr::kLO, "old");
    PutText(*shuffled, {0x10, 0x30}, Vr::kDA, "20240101");
    for (const int index : {2, 0, 5, 3, 4, 1}) put(*shuffled, index);
    EXPECT_TRUE(shuffled->DeleteElement(0x10, 0x30));
    EXPECT_EQ(BytesOf(*shuffled), BytesOf(*fDataSet));
    ExpectTrueGroupLengths(*fDataSet);
    EXPECT_EQ(fDataSet->CountElements(), 6 + 4);
    EXPECT_EQ(fDataSet->CountElementsInGroup(0x10), 3);
    const Bytes whole = BytesOf(*fDataSet);
    fDataSet->RemoveAllElements();
    EXPECT_EQ(fDataSet->GetDataSetSize(), 0);
    for (const int index : {5, 1, 0, 4, 2, 3}) put(*fDataSet, index);
    EXPECT_EQ(BytesOf(*fDataSet), whole) << "as if it were new";
}

TEST_P(DataSetInEncoding, FindsByWalkingAndStopsEarly) {
    EXPECT_FALSE(fDataSet->FindElement(Tags::kPatientName));
    PutText(*fDataSet, Tags::kPatientName, Vr::kPN, "Doe^Jane");
    VrCode vr = 0;
    uint32_t length = 0;
    char value[5] = "####";
    int32_t offset = -1;
    ASSERT_TRUE(fDataSet->FindElement(Tags::kPatientName, &vr, &length, value, 3, &offset));
    EXPECT_EQ(vr, fIsExplicit ? Vr::kPN : Vr::kNotKnown);
    EXPECT_EQ(length, 8u);
    EXPECT_STREQ(value, "Doe#") << "copies no more than the capacity";
    EXPECT_EQ(offset, 12) << "behind the group length";
    EXPECT_FALSE(fDataSet->FindElement(0x10, 0x11));
    EXPECT_FALSE(fDataSet->FindElement(0x11, 0x10));
    EXPECT_FALSE(fDataSet->GetNextElement(offset, nullptr, nullptr));
}

TEST_P(DataSetInEncoding, PadsOddValuesByVRAndStoresCodesInUpperCase) {
    const std::string longCode(258, 'u');
    const struct {
        VrCode fVr;
        std::string fGiven, fStored;
    } cases[] = {{Vr::kUI, "1.2", std::string("1.2\0", 4)},
                 {Vr::kOB, "1.2", std::string("1.2\0", 4)},
                 {Vr::kUN, "1.2", "1.2 "},
                 {Vr::kCS, "us", "US"},
                 {Vr::kCS, longCode, longCode}};
    for (const auto& [vr, given, stored] : cases) {
        PutText(*fDataSet, {0x18, 0x1000}, vr, given);
        EXPECT_EQ(TextOf(*fDataSet, {0x18, 0x1000}), stored);
    }
}

TEST_P(DataSetInEncoding, AGroupThatHasLostItsLengthGoesWithout) {
    PutText(*fDataSet, Tags::kModality, Vr::kCS, "US");
    EXPECT_TRUE(fDataSet->DeleteElement(8, 0));
    PutText(*fDataSet, Tags::kStudyDate, Vr::kDA, "20240101");
    EXPECT_EQ(fDataSet->CountElements(), 2);
}

// Files in the field hold 4-byte numbers that were written in units of 8 bytes, so that pairs are exchanged,
// and pixels whose bytes are exchanged in pairs. Numbers are read in units of four.
TEST(DataSet, BytesAreExchangedAsMediaInTheFieldHaveThem) {
    constexpr Tag kNumber{0x18, 0x6020};
    const struct {
        bool fIsExplicit, fIsBigEndian;
        Tag fTag;
        VrCode fVr;
        Bytes fStored, fRead;
    } cases[] = {
        {true, true, kNumber, Vr::kUS, {2, 1, 4, 3}, {1, 2, 3, 4}},
        {true, true, kNumber, Vr::kFD, {8, 7, 6, 5, 4, 3, 2, 1}, {1, 2, 3, 4, 5, 6, 7, 8}},
        {true, true, kNumber, Vr::kSL, {8, 7, 6, 5, 4, 3, 2, 1}, {5, 6, 7, 8, 1, 2, 3, 4}},
        {true, true, kNumber, Vr::kFL, {0, 0, 0, 0}, {0, 0, 0, 0}},   // a single one is not stored at all
        {true, true, kNumber, Vr::kAT, {1, 2, 3, 4}, {4, 3, 2, 1}},   // tags are stored as given
        {false, true, kNumber, Vr::kUS, {2, 1, 4, 3}, {2, 1, 4, 3}},  // an implicit one has lost its VR
        {true, false, kNumber, Vr::kSL, {1, 2, 3, 4}, {1, 2, 3, 4}},
        {false, false, Tags::kPixelData, Vr::kOW, {2, 1, 4, 3}, {1, 2, 3, 4}},
        {false, true, Tags::kPixelData, Vr::kOB, {2, 1, 4, 3}, {1, 2, 3, 4}},
        {true, true, Tags::kPixelData, Vr::kOW, {2, 1, 4, 3}, {1, 2, 3, 4}},
        {true, true, Tags::kPixelData, Vr::kOB, {1, 2, 3, 4}, {1, 2, 3, 4}},
        {true, false, Tags::kPixelData, Vr::kOW, {1, 2, 3, 4}, {1, 2, 3, 4}},
    };
    for (const auto& [isExplicit, isBigEndian, tag, vr, stored, expected] : cases) {
        const auto dataSet = NewDataSet(isExplicit, isBigEndian);
        const uint8_t given[8] = {1, 2, 3, 4, 5, 6, 7, 8};
        const auto length = static_cast<uint32_t>(stored.size());
        dataSet->PutElement(tag, vr, length, given, length);
        const Bytes all = BytesOf(*dataSet);
        EXPECT_EQ(Bytes(all.end() - length, all.end()), stored) << isExplicit << isBigEndian << vr;
        Bytes read(length);
        dataSet->FindElement(tag, nullptr, nullptr, read.data(), length);
        EXPECT_EQ(read, expected);
    }
}

TEST(DataSet, GrowsByItsIncrementUpToItsMaximum) {
    TDicomDataSet small(true, false, 32, 8, 56, 0);
    PutText(small, Tags::kModality, Vr::kCS, std::string(24, 'A'));
    const Bytes before = BytesOf(small);
    EXPECT_EQ(ThrownBy([&] { PutText(small, Tags::kPatientName, Vr::kPN, "A"); }), kNoRoom);
    EXPECT_EQ(BytesOf(small), before) << "a failed put changes nothing";
    TDicomDataSet stuck(true, false, 0, 0, 100, 0);
    EXPECT_EQ(ThrownBy([&] { PutText(stuck, Tags::kPatientName, Vr::kPN, "A"); }), kNoRoom);
    TDicomDataSet unlimited(true, false, 0, 1000, -5, 0);
    unlimited.SetDataSetSize(500000);
    EXPECT_EQ(unlimited.GetDataSetSize(), 500000);
    Bytes buffer(40);
    TDicomDataSet wrapping(true, false, buffer.data(), 40, 0);
    PutText(wrapping, Tags::kModality, Vr::kCS, "US");
    EXPECT_EQ(ThrownBy([&] { PutText(wrapping, Tags::kPatientName, Vr::kPN, "Doe^Jane"); }),
              "100 Can not increase DataSet memory");
}

TEST(DataSet, RefusesLengthsThatItsHeadersCannotHold) {
    const auto dataSet = NewDataSet();
    const std::string value(70000, 'x');
    EXPECT_EQ(ThrownBy([&] { PutText(*dataSet, Tags::kPatientName, Vr::kPN, value); }), kBadLength);
    EXPECT_EQ(ThrownBy([&] { dataSet->PutElement(8, 8, Vr::kUT, 0xFFFFFFFF, "x", 1); }), kBadLength);
    EXPECT_EQ(dataSet->GetDataSetSize(), 0);
    PutText(*dataSet, Tags::kPatientName, Vr::kUT, value);
    ExpectTrueGroupLengths(*dataSet);
}

TEST(DataSet, DamagedLengthsEndInErrorsThatHostsKnow) {
    Bytes bytes = ElementBuilder()
                      .Text(Tags::kPatientName, Vr::kPN, "Doe")
                      .Header(Tags::kModality, Vr::kCS, 200)
                      .GetBytes();
    const TDicomDataSet dataSet = Over(bytes);
    EXPECT_FALSE(dataSet.FindElement(Tags::kModality)) << "an element out of order is not looked for";
    EXPECT_EQ(dataSet.GetNextElementOffset(12), 0);
    EXPECT_EQ(ThrownBy([&] { dataSet.FindElement(0x20, 0xD); }), kBadLength);
    EXPECT_EQ(ThrownBy([&] { dataSet.GetNextElement(12, nullptr, nullptr); }),
              "102 Invalid DICOM element length, longer than the data set.");
}

// A header counts as eight bytes when the end is checked: a last long element may lack four bytes.
TEST(DataSet, ALastLongElementMayLackFourBytes) {
    const Bytes whole = ElementBuilder().Value({0x29, 0x1010}, Vr::kOB, {1, 2, 3, 4, 5, 6}).GetBytes();
    for (const auto& [missing, next] : std::map<int, int>{{0, 18}, {4, 18}, {6, 0}}) {
        Bytes bytes(whole.begin(), whole.end() - missing);
        EXPECT_EQ(Over(bytes).GetNextElementOffset(0), next);
        Bytes value(6, 9);
        EXPECT_TRUE(Over(bytes).FindElement(0x29, 0x1010, nullptr, nullptr, value.data(), 6));
        EXPECT_EQ(value[5], missing == 0 ? 6 : 9) << "nothing is read behind the end";
    }
}

TEST(DataSet, AnObjectThatWasNotConstructedIsRefused) {
    alignas(TDicomDataSet) std::array<std::byte, sizeof(TDicomDataSet)> memory{};
    const auto* notConstructed = reinterpret_cast<const TDicomDataSet*>(memory.data());
    EXPECT_EQ(ThrownBy([&] { notConstructed->FindElement(8, 8); }),
              "102 DicomDataSet Object not properly constructed");
}

// ---- Private blocks ----

TEST(DataSetPrivate, BlocksAreReservedOneAfterTheOther) {
    const auto dataSet = NewDataSet();
    for (const std::string creator : {"FIRST", "SECOND", "FIRST"}) {
        EXPECT_TRUE(dataSet->AddPrivateGroup(0x21, creator.c_str(), static_cast<uint32_t>(creator.size())));
    }
    EXPECT_EQ(ThrownBy([&] { dataSet->AddPrivateGroup(0x20, "EVEN", 4); }),
              "104 Attempt to create an even private element group.");
    EXPECT_FALSE(dataSet->PutPrivateElement(0x21, "THIRD", 1, Vr::kLO, 1, "x", 1));
    for (const uint8_t place : {uint8_t{0xFF}, uint8_t{0x05}, uint8_t{0xA6}}) {
        EXPECT_TRUE(dataSet->PutPrivateElement(0x21, "FIRST", place, Vr::kLO, 2, "f.", 2));
    }
    dataSet->PutPrivateElement(0x21, "SECOND", 0x00, Vr::kLO, 2, "s.", 2);
    EXPECT_EQ(TextOf(*dataSet, {0x21, 0x1100}), "s.");
    uint8_t place = 0;
    int32_t offset = 0;
    EXPECT_TRUE(dataSet->FindPrivateElement(0x21, "FIRST", &place, nullptr, nullptr, nullptr, 0, &offset));
    EXPECT_EQ(place, 0x05);
    EXPECT_TRUE(dataSet->GetNextPrivateElement(0x21, "FIRST", offset, &place));
    EXPECT_EQ(place, 0xA6);
    EXPECT_EQ(dataSet->CountPrivateElements(0x21, "FIRST"), 3) << "the second block is not counted";
    EXPECT_TRUE(dataSet->DeletePrivateElement(0x21, "SECOND", 0));
    for (const bool hasGroupBehind : {false, true}) {
        if (hasGroupBehind) PutText(*dataSet, {0x23, 0x1007}, Vr::kLO, "o.");
        dataSet->DeleteElement(0x23, 0);  // as in groups of others
        EXPECT_EQ(dataSet->CountPrivateElements(0x21, "FIRST"), 3);
        EXPECT_EQ(dataSet->CountPrivateElements(0x21, "SECOND"), 0);
        EXPECT_EQ(dataSet->CountPrivateElements(0x21, "THIRD"), 0);
        EXPECT_FALSE(dataSet->GetNextPrivateElement(0x21, "THIRD", offset, &place));
    }
    dataSet->PutPrivateElement(0x21, "SECOND", 0x00, Vr::kLO, 2, "s.", 2);
    for (const int deleted : {0xFF, 0x05, 0xA6})
        EXPECT_TRUE(dataSet->DeletePrivateElement(0x21, "FIRST", static_cast<uint8_t>(deleted)));
    EXPECT_FALSE(dataSet->DeletePrivateElement(0x21, "FIRST", 0x05));
    EXPECT_FALSE(dataSet->FindPrivateElement(0x21, "FIRST", &place)) << "what follows is another's";
}

// Creators are compared over the stored text's length, so that products whose creator was later lengthened
// still find their old blocks.
TEST(DataSetPrivate, ACreatorMatchesByItsStoredLength) {
    const std::map<std::string, bool> cases = {{"QUANTIX", true},
                                               {"QUANT", true},
                                               {"QUANTIX2", false},
                                               {"QUANTIY", false},
                                               {std::string("QUANTIX\0", 8), true},
                                               {"QUANTIX   ", false}};
    for (const auto& [stored, isFound] : cases) {
        const auto dataSet = NewDataSet();
        PutText(*dataSet, {0x21, 0x12}, Vr::kLO, stored);
        EXPECT_EQ(dataSet->FindPrivateCreator(0x21, "QUANTIX", nullptr), isFound) << stored;
    }
}

// Of numbers only whole ones are read; the bytes behind them are no part of the text.
TEST(DataSetPrivate, ACreatorThatIsStoredAsNumbersMatchesByItsWholeOnes) {
    Bytes bytes = ElementBuilder(Uids::kExplicitVRBigEndian)
                      .Value({0x21, 0x10}, Vr::kUL, {'N', 'A', 'U', 'Q', 'T', 'I'})
                      .GetBytes();
    EXPECT_TRUE(Over(bytes, true, true).FindPrivateCreator(0x21, "QUAN", nullptr));
}

TEST(DataSetPrivate, AFullGroupGivesTheCreatorTheNumberBehindTheLast) {
    const auto dataSet = NewDataSet();
    for (uint16_t creator = 0x10; creator <= 0xFF; ++creator)
        PutText(*dataSet, {0x21, creator}, Vr::kLO, "T.");
    EXPECT_TRUE(dataSet->AddPrivateGroup(0x21, "LATE", 4));
    EXPECT_EQ(TextOf(*dataSet, {0x21, 0x100}), "LATE");
}

// ---- Converting ----

TEST_P(DataSetInEncoding, ConvertsToEveryEncodingAndBack) {
    const auto item = NewDataSet(fIsExplicit, fIsBigEndian);
    PutText(*item, Tags::kReferencedSOPClassUID, Vr::kUI, "1.2.3");
    int32_t sequence = 0;
    fDataSet->PutElement(Tags::kSourceImageSequence, Vr::kSQ, 0, nullptr, 0, &sequence);
    for (int count = 0; count < 2; ++count) {
        fDataSet->AddItem(sequence, item->GetDataSet(), static_cast<uint32_t>(item->GetDataSetSize()));
    }
    PutText(*fDataSet, Tags::kPatientName, Vr::kPN, "Doe^Jane");
    for (const auto& [syntax, isExplicit, isBigEndian] : kEncodings) {
        const auto converted = fDataSet->ConvertTo(isExplicit, isBigEndian, 16, 64, 0, 7);
        EXPECT_EQ(TextOf(*converted, Tags::kPatientName), "Doe^Jane");
        converted->FindElement(Tags::kSourceImageSequence, nullptr, nullptr, nullptr, 0, &sequence);
        EXPECT_EQ(converted->CountItemsInSequence(sequence), 2);
        EXPECT_EQ(converted->GetElementVR(sequence), isExplicit ? Vr::kSQ : Vr::kNotKnown);
        const auto back = converted->ConvertTo(fIsExplicit, fIsBigEndian, 16, 64, 0, 0);
        if (!fIsExplicit || isExplicit) {  // what goes through implicit loses its VRs
            EXPECT_EQ(BytesOf(*back), BytesOf(*fDataSet));
        }
    }
}

TEST(DataSetConvert, DropsWhatAShortLengthCannotHold) {
    const auto dataSet = NewDataSet(false, false);
    const std::string dictionary = R"((0018,1000)  VR="LT" Name="Long" VM="1"        (0018,1002)  VR="UT" )";
    dataSet->SetDictionary(dictionary.data(), static_cast<uint32_t>(dictionary.size()));
    const std::map<uint16_t, VrCode> cases = {{0x1000, 0}, {0x1001, Vr::kUN}, {0x1002, Vr::kUT}};
    for (const auto& each : cases) PutText(*dataSet, {0x18, each.first}, Vr::kUN, std::string(65536, 'x'));
    const auto converted = dataSet->ConvertTo(true, false, 1000, 1000, 0, 0);
    for (const auto& [element, expected] : cases) {
        VrCode vr = 0;
        converted->FindElement(0x18, element, &vr);
        EXPECT_EQ(vr, expected);
    }
}

// An implicit value that merely starts like an item is no sequence: its bytes must come through.
// Damaged media hold elements in any order. They are put right, the last of a tag that can be kept counts,
// and that takes no longer the more there are.
TEST(DataSetConvert, ElementsOutOfOrderArePutInOrder) {
    ElementBuilder builder(Uids::kImplicitVRLittleEndian);
    for (uint32_t count = 400000; count > 0; --count) {
        builder.Header(
            {static_cast<uint16_t>(0x20 + count / 0xFFFF), static_cast<uint16_t>(1 + count % 0xFFFF)},
            Vr::kUN, 0);
    }
    builder.Text(Tags::kModality, Vr::kCS, "US").Text(Tags::kModality, Vr::kCS, "MR");
    builder.Value(Tags::kModality, Vr::kCS, Bytes(0x10000));
    Bytes bytes = builder.GetBytes();
    TDicomDataSet dataSet = Over(bytes, false);
    dataSet.SetDictionary("(0008,0060)\tVR=\"CS\"", 19);
    const auto converted = dataSet.ConvertTo(true, false, 64, 0x100000, 0, 0);
    EXPECT_EQ(TextOf(*converted, Tags::kModality), "MR");
    EXPECT_EQ(converted->CountElements(), 400000 + 1 + 8) << "with eight group lengths";
}

TEST(DataSetConvert, OnlyValuesThatAreNothingButItemsBecomeSequences) {
    const char* const implicit = Uids::kImplicitVRLittleEndian;
    const Bytes item = ElementBuilder(implicit).Text(Tags::kModality, Vr::kCS, "US").GetBytes();
    const auto length = static_cast<uint32_t>(item.size());
    const Bytes items = ElementBuilder(implicit).ItemHeader(Tags::kItem, length).Raw(item).GetBytes();
    const Bytes almost = ElementBuilder(implicit).Raw(items).Raw({1, 2}).GetBytes();
    for (const Bytes& value : {items, almost}) {
        Bytes bytes = ElementBuilder(implicit).Value({9, 0x1001}, Vr::kUN, value).GetBytes();
        const auto converted = Over(bytes, false).ConvertTo(true, false, 64, 64, 0, 0);
        VrCode vr = 0;
        Bytes stored(value.size());
        converted->FindElement(9, 0x1001, &vr, nullptr, stored.data(), static_cast<uint32_t>(stored.size()));
        EXPECT_EQ(vr, value == items ? Vr::kSQ : Vr::kUN);
        if (vr == Vr::kUN) {
            EXPECT_EQ(stored, almost);
        }
    }
}

// A group length that is none must not be counted in: what stands behind it would be damaged.
TEST(DataSet, AGroupLengthOfAnotherFormIsLeftAlone) {
    for (const VrCode vr : {Vr::kUN, Vr::kUL}) {
        Bytes bytes = ElementBuilder().Value({8, 0}, vr, {}).Text({8, 0x70}, Vr::kLO, "Maker").GetBytes();
        const auto dataSet = Over(bytes).ConvertTo(true, false, 256, 256, 0, 0);
        dataSet->SetDataSetSize(static_cast<int32_t>(bytes.size()));
        std::copy(bytes.begin(), bytes.end(), dataSet->GetDataSet());
        PutText(*dataSet, Tags::kModality, Vr::kCS, "US");
        EXPECT_EQ(dataSet->CountElements(), 3);
        EXPECT_EQ(TextOf(*dataSet, {8, 0x70}), "Maker ");
    }
}

// Between equal encodings values are not converted there and back, so a big-endian record keeps its numbers.
TEST(DataSetConvert, ACopyInTheSameEncodingKeepsTheBytes) {
    ElementBuilder builder(Uids::kExplicitVRBigEndian);
    Bytes bytes = builder.Numbers32({4, 0x1400}, Vr::kUL, {0x1234}).GetBytes();
    const auto copy = Over(bytes, true, true).ConvertTo(true, true, 64, 64, 0, 0);
    uint32_t number = 0;
    EXPECT_TRUE(copy->FindElement(4, 0x1400, nullptr, nullptr, &number, 4));
    EXPECT_EQ(number, 0x1234u);
}

}  // namespace
