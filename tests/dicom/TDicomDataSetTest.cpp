#include <algorithm>
#include <array>
#include <cstring>

#include "tests/dicom/DataSetTestSupport.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

struct Encoding {
    const char* fName;
    bool fIsExplicit;
    bool fIsBigEndian;
    const char* fTransferSyntax;  // null where none has this encoding
};

class DataSetInEncoding : public testing::TestWithParam<Encoding> {
  protected:
    std::unique_ptr<TDicomDataSet> New() const {
        return NewDataSet(GetParam().fIsExplicit, GetParam().fIsBigEndian);
    }
};

INSTANTIATE_TEST_SUITE_P(
    All, DataSetInEncoding,
    testing::Values(Encoding{"ExplicitLittle", true, false, Uids::kExplicitVRLittleEndian},
                    Encoding{"ExplicitBig", true, true, Uids::kExplicitVRBigEndian},
                    Encoding{"ImplicitLittle", false, false, Uids::kImplicitVRLittleEndian},
                    Encoding{"ImplicitBig", false, true, nullptr}),
    [](const auto& each) { return std::string(each.param.fName); });

uint32_t GroupLength(const TDicomDataSet& dataSet, uint16_t group) {
    uint8_t bytes[4] = {};
    int32_t offset = 0;
    EXPECT_TRUE(dataSet.FindElement(group, 0, nullptr, nullptr, nullptr, 0, &offset));
    std::memcpy(bytes, dataSet.GetDataSet() + offset + 8, sizeof(bytes));
    if (dataSet.IsBigEndian()) std::reverse(bytes, bytes + sizeof(bytes));
    uint32_t length = 0;
    std::memcpy(&length, bytes, sizeof(length));
    return length;
}

// The sum that a group's length element should hold, counted by walking.
uint32_t SizeOfGroup(const TDicomDataSet& dataSet, uint16_t wanted) {
    uint32_t size = 0;
    uint16_t group = 0, element = 0;
    int32_t offset = -1;
    while (dataSet.GetNextElement(offset, &group, &element, nullptr, nullptr, nullptr, 0, &offset)) {
        if (group != wanted || element == 0) continue;
        const int32_t next = dataSet.GetNextElementOffset(offset);
        size += static_cast<uint32_t>(next - offset);
    }
    return size;
}

TEST_P(DataSetInEncoding, AnEmptyOneHasNothing) {
    const auto dataSet = New();
    EXPECT_FALSE(dataSet->FindElement(Tags::kPatientName));
    EXPECT_EQ(dataSet->CountElements(), 0);
    EXPECT_FALSE(dataSet->GetNextElement(-1, nullptr, nullptr));
    EXPECT_FALSE(dataSet->DeleteElement(8, 8));
}

// The order of putting must not show: out of order, replaced and deleted elements leave the same bytes as
// putting the survivors in order.
TEST_P(DataSetInEncoding, KeepsOrderAndGroupLengthsThroughEveryKindOfChange) {
    const Tag tags[] = {{8, 0x16}, {8, 0x60}, {0x10, 0x10}, {0x10, 0x20}, {0x18, 0x1000}, {0x20, 0xD}};
    const auto inOrder = New();
    for (const Tag tag : tags) PutText(*inOrder, tag, Vr::kLO, "value " + std::to_string(tag.fElement));

    const auto shuffled = New();
    for (const int index : {4, 1, 5, 0, 3, 2, 1}) PutText(*shuffled, tags[index], Vr::kLO, "old");
    PutText(*shuffled, {0x10, 0x30}, Vr::kDA, "20240101");
    for (const int index : {2, 0, 5, 3, 4, 1}) {
        PutText(*shuffled, tags[index], Vr::kLO, "value " + std::to_string(tags[index].fElement));
    }
    EXPECT_TRUE(shuffled->DeleteElement(0x10, 0x30));
    EXPECT_EQ(BytesOf(*shuffled), BytesOf(*inOrder));

    for (const uint16_t group : std::array<uint16_t, 4>{8, 0x10, 0x18, 0x20}) {
        EXPECT_EQ(GroupLength(*inOrder, group), SizeOfGroup(*inOrder, group)) << group;
    }
    EXPECT_EQ(inOrder->CountElements(), 6 + 4);
    EXPECT_EQ(inOrder->CountElementsInGroup(0x10), 3);
    EXPECT_EQ(inOrder->CountElementsInGroup(0x11), 0);
}

TEST_P(DataSetInEncoding, FindsByWalkingAndStopsEarly) {
    const auto dataSet = New();
    PutText(*dataSet, Tags::kPatientName, Vr::kPN, "Doe^Jane");
    VrCode vr = 0;
    uint32_t length = 0;
    char value[4] = {'#', '#', '#', '#'};
    int32_t offset = -1;
    ASSERT_TRUE(dataSet->FindElement(Tags::kPatientName, &vr, &length, value, 3, &offset));
    EXPECT_EQ(vr, GetParam().fIsExplicit ? Vr::kPN : Vr::kNotKnown);
    EXPECT_EQ(length, 8u);
    EXPECT_EQ(std::string(value, 4), "Doe#") << "copies no more than the capacity";
    EXPECT_EQ(offset, 12) << "behind the group length";
    EXPECT_EQ(dataSet->GetElementLength(offset), 8u);
    EXPECT_EQ(dataSet->GetNextElementOffset(offset), dataSet->GetDataSetSize());
    EXPECT_FALSE(dataSet->FindElement(0x10, 0x11));
    EXPECT_FALSE(dataSet->FindElement(0x11, 0x10));
    EXPECT_FALSE(dataSet->GetNextElement(offset, nullptr, nullptr));
    EXPECT_FALSE(dataSet->GetNextElement(dataSet->GetDataSetSize(), nullptr, nullptr));
}

TEST_P(DataSetInEncoding, PadsOddValuesByVR) {
    const auto dataSet = New();
    struct Case {
        VrCode fVr;
        char fPad;
    };
    for (const auto& [vr, pad] : {Case{Vr::kUI, '\0'}, {Vr::kOB, '\0'}, {Vr::kLO, ' '}, {Vr::kUN, ' '}}) {
        dataSet->PutElement(0x18, 0x1000, vr, 3, "1.2xyz", 6);
        EXPECT_EQ(TextOf(*dataSet, {0x18, 0x1000}), std::string("1.2") + pad);
    }
    PutText(*dataSet, Tags::kModality, Vr::kCS, "us");
    EXPECT_EQ(TextOf(*dataSet, Tags::kModality), "US");
    PutText(*dataSet, Tags::kModality, Vr::kCS, std::string(258, 'u'));
    EXPECT_EQ(TextOf(*dataSet, Tags::kModality), std::string(258, 'u')) << "long texts stay as they are";
}

TEST_P(DataSetInEncoding, AGroupLengthThatIsPutIsNotCountedInItself) {
    const auto dataSet = New();
    PutText(*dataSet, Tags::kModality, Vr::kCS, "US");
    const uint32_t units[2] = {99, 99};
    dataSet->PutElement(8, 0, Vr::kUL, 8, units, 8);
    dataSet->DeleteElement(8, 0);
    PutText(*dataSet, Tags::kStudyDate, Vr::kDA, "20240101");
    EXPECT_FALSE(dataSet->FindElement(8, 0)) << "a group that has lost its length goes without";
    EXPECT_EQ(dataSet->CountElementsInGroup(8), 2);
}

TEST_P(DataSetInEncoding, NumbersComeBackExceptWhereTheWritingHabitShows) {
    const auto dataSet = New();
    const uint16_t shorts[3] = {0x0102, 0x0304, 0x0506};
    dataSet->PutElement(0x28, 0x10, Vr::kUS, 6, shorts, 6);
    uint16_t shortsRead[3] = {};
    dataSet->FindElement(0x28, 0x10, nullptr, nullptr, shortsRead, 6);
    const double number = 1.5;
    dataSet->PutElement(0x18, 0x1000, Vr::kFD, 8, &number, 8);
    double numberRead = 0;
    dataSet->FindElement(0x18, 0x1000, nullptr, nullptr, &numberRead, 8);
    if (GetParam().fIsExplicit || !GetParam().fIsBigEndian) {
        EXPECT_TRUE(std::equal(shorts, shorts + 3, shortsRead));
        EXPECT_EQ(numberRead, 1.5);
    } else {
        EXPECT_EQ(shortsRead[0], 0x0201) << "an implicit element does not tell that it is a number";
    }
}

TEST_P(DataSetInEncoding, ReadsWhatAnotherWriterEncoded) {
    if (GetParam().fTransferSyntax == nullptr) GTEST_SKIP() << "no transfer syntax has this encoding";
    ElementBuilder builder(GetParam().fTransferSyntax);
    builder.Text(Tags::kModality, Vr::kCS, "US")
        .Text(Tags::kPatientName, Vr::kPN, "Doe")
        .Numbers32({0x18, 0x6020}, Vr::kSL, {0x01020304, 0x05060708})
        .Value({0x29, 0x1010}, Vr::kUN, {1, 2, 3, 4})
        .Numbers16({0x28, 0x10}, Vr::kUS, {480});
    Bytes bytes = builder.GetBytes();
    const auto size = static_cast<int32_t>(bytes.size());
    TDicomDataSet dataSet(GetParam().fIsExplicit, GetParam().fIsBigEndian, bytes.data(), size, size);
    EXPECT_EQ(dataSet.CountElements(), 5);
    EXPECT_EQ(TextOf(dataSet, Tags::kPatientName), "Doe ");
    uint32_t numbers[2] = {};
    ASSERT_TRUE(dataSet.FindElement(0x18, 0x6020, nullptr, nullptr, numbers, sizeof(numbers)));
    if (!GetParam().fIsBigEndian) {
        EXPECT_EQ(numbers[1], 0x05060708u);
    } else {
        EXPECT_EQ(numbers[0], 0x01020304u);
        EXPECT_EQ(numbers[1], 0x05060708u);
    }
    EXPECT_FALSE(dataSet.FindElement(0x28, 0x10)) << "an element out of order is not looked for";
}

// Files in the field hold 4-byte numbers that were written in units of 8 bytes.
TEST(DataSet, BigEndianWritesFourByteNumbersInUnitsOfEight) {
    const auto dataSet = NewDataSet(true, true);
    const uint8_t two[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    int32_t offset = 0;
    dataSet->PutElement(0x18, 0x6020, Vr::kSL, 8, two, 8, &offset);
    const Bytes stored(dataSet->GetDataSet() + offset + 8, dataSet->GetDataSet() + offset + 16);
    EXPECT_EQ(stored, (Bytes{8, 7, 6, 5, 4, 3, 2, 1}));
    uint8_t read[8] = {};
    dataSet->FindElement(0x18, 0x6020, nullptr, nullptr, read, 8);
    EXPECT_EQ(Bytes(read, read + 8), (Bytes{5, 6, 7, 8, 1, 2, 3, 4})) << "read in units of four";

    PutText(*dataSet, {0x18, 0x6022}, Vr::kLO, "ABCDEFGH");
    dataSet->PutElement(0x18, 0x6021, Vr::kFL, 4, two, 4, &offset);
    const Bytes kept(dataSet->GetDataSet() + offset + 8, dataSet->GetDataSet() + offset + 12);
    EXPECT_EQ(kept, (Bytes{'A', 'B', 'C', 'D'})) << "a single one leaves what the buffer held there";

    dataSet->PutElement(0x28, 9, Vr::kAT, 4, two, 4, &offset);
    EXPECT_EQ(dataSet->GetDataSet()[offset + 8], 1) << "attribute tags are stored as given";
}

TEST(DataSet, PixelBytesAreExchangedInPairsWhereHostsExpectIt) {
    struct Case {
        bool fIsExplicit, fIsBigEndian;
        VrCode fVr;
        Bytes fStored;
    };
    const Case cases[] = {{false, false, Vr::kOW, {2, 1, 4, 3}},
                          {false, true, Vr::kOB, {2, 1, 4, 3}},
                          {true, true, Vr::kOW, {2, 1, 4, 3}},
                          {true, true, Vr::kOB, {1, 2, 3, 4}},
                          {true, false, Vr::kOW, {1, 2, 3, 4}}};
    for (const Case& testCase : cases) {
        const auto dataSet = NewDataSet(testCase.fIsExplicit, testCase.fIsBigEndian);
        const Bytes pixels = {1, 2, 3, 4};
        dataSet->PutElement(Tags::kPixelData, testCase.fVr, 4, pixels.data(), 4);
        const Bytes all = BytesOf(*dataSet);
        EXPECT_EQ(Bytes(all.end() - 4, all.end()), testCase.fStored);
        Bytes read(4);
        dataSet->FindElement(Tags::kPixelData, nullptr, nullptr, read.data(), 4);
        EXPECT_EQ(read, pixels);
    }
}

TEST(DataSet, GrowsByItsIncrementUpToItsMaximum) {
    TDicomDataSet small(true, false, 32, 8, 56, 0);
    EXPECT_EQ(ThrownBy([&] { PutText(small, Tags::kModality, Vr::kCS, std::string(24, 'A')); }), "nothing");
    const Bytes before = BytesOf(small);
    EXPECT_EQ(ThrownBy([&] { PutText(small, Tags::kPatientName, Vr::kPN, "A"); }),
              "100 Attempt to expand beyond maximum size");
    EXPECT_EQ(BytesOf(small), before) << "a failed put changes nothing";
    TDicomDataSet stuck(true, false, 0, 0, 100, 0);
    EXPECT_EQ(ThrownBy([&] { PutText(stuck, Tags::kPatientName, Vr::kPN, "A"); }),
              "100 Attempt to expand beyond maximum size");
    TDicomDataSet unlimited(true, false, 0, 1000, -5, 0);
    EXPECT_EQ(ThrownBy([&] { unlimited.SetDataSetSize(500000); }), "nothing");
    EXPECT_EQ(unlimited.GetDataSetSize(), 500000);

    Bytes buffer(100);
    TDicomDataSet wrapping(true, false, buffer.data(), 100, 0);
    EXPECT_EQ(ThrownBy([&] { PutText(wrapping, Tags::kModality, Vr::kCS, "US"); }), "nothing");
    EXPECT_EQ(ThrownBy([&] { PutText(wrapping, Tags::kPatientName, Vr::kPN, std::string(80, 'A')); }),
              "100 Can not increase DataSet memory");
    wrapping.SetDataSetSize(4);
    EXPECT_EQ(wrapping.CountElements(), 2) << "only an owning data set can be given a size";
    wrapping.RemoveAllElements();
    EXPECT_EQ(wrapping.GetDataSetSize(), 0);
}

TEST(DataSet, RefusesLengthsThatItsHeadersCannotHold) {
    const auto dataSet = NewDataSet(true, false);
    const std::string value(70000, 'x');
    EXPECT_EQ(ThrownBy([&] {
                  PutText(*dataSet, {0x18, 0x1000}, Vr::kLT, value);
              }),
              "102 Invalid DICOM element length.");
    PutText(*dataSet, {0x18, 0x1000}, Vr::kUT, value);
    EXPECT_EQ(GroupLength(*dataSet, 0x18), 70012u);
    EXPECT_EQ(ThrownBy([&] { dataSet->PutElement(8, 8, Vr::kUT, 0xFFFFFFFF, value.data(), 1); }),
              "102 Invalid DICOM element length.");
}

TEST(DataSet, DamagedLengthsEndInTheStatedErrors) {
    ElementBuilder builder;
    builder.Text(Tags::kModality, Vr::kCS, "US").Header(Tags::kPatientName, Vr::kPN, 200);
    Bytes bytes = builder.GetBytes();
    const auto size = static_cast<int32_t>(bytes.size());
    TDicomDataSet dataSet(true, false, bytes.data(), size, size);
    int32_t offset = 0;
    EXPECT_TRUE(dataSet.FindElement(Tags::kPatientName, nullptr, nullptr, nullptr, 0, &offset));
    EXPECT_EQ(dataSet.GetNextElementOffset(offset), 0);
    char value[300];
    EXPECT_TRUE(dataSet.FindElement(Tags::kPatientName, nullptr, nullptr, value, sizeof(value)));
    EXPECT_EQ(ThrownBy([&] { dataSet.FindElement(Tags::kPatientID); }), "102 Invalid DICOM element length.");
    EXPECT_EQ(ThrownBy([&] { dataSet.GetNextElement(offset, nullptr, nullptr); }),
              "102 Invalid DICOM element length, longer than the data set.");
}

// A header counts as eight bytes when the end is checked: a last long element may lack four bytes.
TEST(DataSet, ALastLongElementMayLackFourBytes) {
    ElementBuilder builder;
    builder.Value({0x29, 0x1010}, Vr::kOB, {1, 2, 3, 4, 5, 6});
    Bytes bytes = builder.GetBytes();
    for (const int32_t missing : {0, 4, 6}) {
        const auto size = static_cast<int32_t>(bytes.size()) - missing;
        TDicomDataSet dataSet(true, false, bytes.data(), size, size);
        EXPECT_EQ(dataSet.GetNextElementOffset(0), missing > 4 ? 0 : static_cast<int32_t>(bytes.size()));
        Bytes value(6, 9);
        EXPECT_TRUE(dataSet.FindElement(0x29, 0x1010, nullptr, nullptr, value.data(), 6));
        EXPECT_EQ(value[5], missing == 0 ? 6 : 9) << "nothing is read behind the end";
    }
}

TEST(DataSet, AnObjectThatWasNotConstructedIsRefused) {
    alignas(TDicomDataSet) std::array<std::byte, sizeof(TDicomDataSet)> memory{};
    const auto* notConstructed = reinterpret_cast<const TDicomDataSet*>(memory.data());
    EXPECT_EQ(ThrownBy([&] { notConstructed->FindElement(8, 8); }),
              "102 DicomDataSet Object not properly constructed");
    EXPECT_EQ(ThrownBy([&] { notConstructed->GetDataSetSize(); }),
              "102 DicomDataSet Object not properly constructed");
}

// ---- Private blocks ----

TEST(DataSetPrivate, BlocksAreReservedOneAfterTheOther) {
    const auto dataSet = NewDataSet(true, false);
    EXPECT_TRUE(dataSet->AddPrivateGroup(0x21, "FIRST", 5));
    EXPECT_TRUE(dataSet->AddPrivateGroup(0x21, "SECOND", 6));
    EXPECT_TRUE(dataSet->AddPrivateGroup(0x21, "FIRST", 5)) << "it has one already";
    EXPECT_EQ(dataSet->CountElementsInGroup(0x21), 3);
    uint16_t base = 0;
    EXPECT_TRUE(dataSet->FindPrivateCreator(0x21, "SECOND", &base));
    EXPECT_EQ(base, 0x1100);
    EXPECT_EQ(ThrownBy([&] { dataSet->AddPrivateGroup(0x20, "EVEN", 4); }),
              "104 Attempt to create an even private element group.");

    EXPECT_FALSE(dataSet->PutPrivateElement(0x21, "THIRD", 1, Vr::kLO, 1, "x", 1));
    for (const uint8_t place : std::array<uint8_t, 3>{0xFF, 0x05, 0xA6}) {
        EXPECT_TRUE(dataSet->PutPrivateElement(0x21, "FIRST", place, Vr::kLO, 2, "f.", 2));
    }
    dataSet->PutPrivateElement(0x21, "SECOND", 0x00, Vr::kLO, 2, "s.", 2);
    char value[2] = {};
    EXPECT_TRUE(dataSet->GetPrivateElement(0x21, "SECOND", 0, nullptr, nullptr, value, 2));
    EXPECT_EQ(value[0], 's');
    uint8_t place = 0;
    int32_t offset = 0;
    EXPECT_TRUE(dataSet->FindPrivateElement(0x21, "FIRST", &place, nullptr, nullptr, nullptr, 0, &offset));
    EXPECT_EQ(place, 0x05);
    EXPECT_TRUE(dataSet->GetNextPrivateElement(0x21, "FIRST", offset, &place));
    EXPECT_EQ(place, 0xA6);
    EXPECT_EQ(dataSet->CountPrivateElements(0x21, "FIRST"), 3) << "the second block is not counted";
    EXPECT_TRUE(dataSet->DeletePrivateElement(0x21, "SECOND", 0));
    EXPECT_EQ(dataSet->CountPrivateElements(0x21, "SECOND"), 0);
    EXPECT_EQ(GroupLength(*dataSet, 0x21), SizeOfGroup(*dataSet, 0x21));
}

// Creators are compared over the stored text's length, so that products whose creator was later lengthened
// still find their old blocks.
TEST(DataSetPrivate, ACreatorMatchesByItsStoredLength) {
    struct Case {
        std::string fStored, fWanted;
        bool fMatches;
    };
    const Case cases[] = {{"QUANTIX", "QUANTIX", true},    {"QUANTIX ", "QUANTIX", true},
                          {"QUANT", "QUANTIX", true},      {"QUANTIX", "QUANT", false},
                          {"QUANTIY", "QUANTIX", false},   {std::string("QUANTIX\0", 8), "QUANTIX", true},
                          {"QUANTIX   ", "QUANTIX", false}};
    for (const auto& [stored, wanted, matches] : cases) {
        const auto dataSet = NewDataSet(true, false);
        PutText(*dataSet, {0x21, 0x12}, Vr::kLO, stored);
        EXPECT_EQ(dataSet->FindPrivateCreator(0x21, wanted.c_str(), nullptr), matches) << stored << wanted;
    }
}

TEST(DataSetPrivate, AFullGroupGivesTheCreatorTheNumberBehindTheLast) {
    const auto dataSet = NewDataSet(true, false);
    for (uint16_t element = 0x10; element <= 0xFF; ++element)
        PutText(*dataSet, {0x21, element}, Vr::kLO, "T.");
    EXPECT_TRUE(dataSet->AddPrivateGroup(0x21, "LATE", 4));
    EXPECT_EQ(TextOf(*dataSet, {0x21, 0x100}), "LATE");
}

// ---- Converting ----

TEST_P(DataSetInEncoding, ConvertsToEveryEncodingAndBack) {
    const auto source = New();
    PutText(*source, Tags::kModality, Vr::kCS, "US");
    const auto item = New();
    PutText(*item, Tags::kReferencedSOPClassUID, Vr::kUI, "1.2.3");
    int32_t sequence = 0;
    source->PutElement(Tags::kSourceImageSequence, Vr::kSQ, 0, nullptr, 0, &sequence);
    const Bytes itemBytes = BytesOf(*item);
    for (int count = 0; count < 2; ++count) {
        source->AddItem(sequence, itemBytes.data(), static_cast<uint32_t>(itemBytes.size()));
    }
    PutText(*source, Tags::kPatientName, Vr::kPN, "Doe^Jane");

    for (const bool isExplicit : {true, false}) {
        for (const bool isBigEndian : {false, true}) {
            const auto converted = source->ConvertTo(isExplicit, isBigEndian, 16, 64, 0, 7);
            EXPECT_EQ(converted->GetContext(), 7u);
            EXPECT_EQ(TextOf(*converted, Tags::kPatientName), "Doe^Jane");
            ASSERT_TRUE(
                converted->FindElement(Tags::kSourceImageSequence, nullptr, nullptr, nullptr, 0, &sequence));
            EXPECT_EQ(converted->CountItemsInSequence(sequence), 2);
            if (isExplicit) {
                EXPECT_EQ(converted->GetElementVR(sequence), Vr::kSQ);
            }
            const auto back =
                converted->ConvertTo(GetParam().fIsExplicit, GetParam().fIsBigEndian, 16, 64, 0, 0);
            EXPECT_EQ(GroupLength(*back, 8), SizeOfGroup(*back, 8));
            if (!GetParam().fIsExplicit || isExplicit) {
                EXPECT_EQ(BytesOf(*back), BytesOf(*source));
            }
        }
    }
}

TEST(DataSetConvert, DropsWhatAShortLengthCannotHold) {
    const auto dataSet = NewDataSet(false, false);
    const std::string dictionary = R"((0018,1000)  VR="LT" Name="Long" VM="1"        (0018,1002)  VR="UT" )";
    dataSet->SetDictionary(dictionary.data(), static_cast<uint32_t>(dictionary.size()));
    for (const uint16_t element : std::array<uint16_t, 3>{0x1000, 0x1001, 0x1002}) {
        PutText(*dataSet, {0x18, element}, Vr::kUN, std::string(65536, 'x'));
    }
    const auto converted = dataSet->ConvertTo(true, false, 1000, 1000, 0, 0);
    EXPECT_FALSE(converted->FindElement(0x18, 0x1000));
    VrCode vr = 0;
    EXPECT_TRUE(converted->FindElement(0x18, 0x1001, &vr));
    EXPECT_EQ(vr, Vr::kUN);
    EXPECT_TRUE(converted->FindElement(0x18, 0x1002));
}

// Between equal encodings values are not converted there and back, so a big-endian record keeps its numbers.
TEST(DataSetConvert, ACopyInTheSameEncodingKeepsTheBytes) {
    ElementBuilder builder(Uids::kExplicitVRBigEndian);
    builder.Numbers32({4, 0x1400}, Vr::kUL, {0x1234}).Text({4, 0x1430}, Vr::kCS, "image");
    Bytes bytes = builder.GetBytes();
    const auto size = static_cast<int32_t>(bytes.size());
    const TDicomDataSet record(true, true, bytes.data(), size, size);
    const auto copy = record.ConvertTo(true, true, 64, 64, 0, 0);
    uint32_t number = 0;
    EXPECT_TRUE(copy->FindElement(4, 0x1400, nullptr, nullptr, &number, 4));
    EXPECT_EQ(number, 0x1234u);
    EXPECT_EQ(TextOf(*copy, {4, 0x1430}), "IMAGE ");
}

}  // namespace
