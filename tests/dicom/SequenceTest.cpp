#include "tests/dicom/DataSetTestSupport.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr Tag kSequence{0x0008, 0x2112};
constexpr Tag kBehind{0x0010, 0x0010};

// How a data set is encoded, and the lengths of its sequences.
struct Form {
    const char* fName;
    const char* fTransferSyntax;
    bool fIsExplicit;
    bool fIsBigEndian;
    ElementBuilder::Lengths fLengths;
};

class SequenceInForm : public testing::TestWithParam<Form> {
  protected:
    Bytes Item(const std::string& uid) const {
        return ElementBuilder(GetParam().fTransferSyntax)
            .Text(Tags::kReferencedSOPClassUID, Vr::kUI, uid)
            .GetBytes();
    }

    // A sequence of items, with an element behind it.
    Bytes DataSetBytes(const std::vector<Bytes>& items) const {
        return ElementBuilder(GetParam().fTransferSyntax)
            .Sequence(kSequence, items, GetParam().fLengths)
            .Text(kBehind, Vr::kPN, "Doe")
            .GetBytes();
    }

    std::unique_ptr<TDicomDataSet> Wrap(Bytes& bytes) const {
        const auto size = static_cast<int32_t>(bytes.size());
        return std::make_unique<TDicomDataSet>(GetParam().fIsExplicit, GetParam().fIsBigEndian, bytes.data(),
                                               size, size);
    }
};

INSTANTIATE_TEST_SUITE_P(All, SequenceInForm,
                         testing::Values(Form{"ExplicitDefined", Uids::kExplicitVRLittleEndian, true, false,
                                              ElementBuilder::Lengths::kDefined},
                                         Form{"ExplicitUndefined", Uids::kExplicitVRLittleEndian, true, false,
                                              ElementBuilder::Lengths::kUndefined},
                                         Form{"ImplicitDefined", Uids::kImplicitVRLittleEndian, false, false,
                                              ElementBuilder::Lengths::kDefined},
                                         Form{"ImplicitUndefined", Uids::kImplicitVRLittleEndian, false,
                                              false, ElementBuilder::Lengths::kUndefined},
                                         Form{"BigDefined", Uids::kExplicitVRBigEndian, true, true,
                                              ElementBuilder::Lengths::kDefined},
                                         Form{"BigUndefined", Uids::kExplicitVRBigEndian, true, true,
                                              ElementBuilder::Lengths::kUndefined}),
                         [](const auto& each) { return std::string(each.param.fName); });

TEST_P(SequenceInForm, ItemsAreWalkedAndTheElementBehindIsFound) {
    for (const size_t count : {0, 1, 3}) {
        std::vector<Bytes> items;
        for (size_t index = 0; index < count; ++index) items.push_back(Item("1.2." + std::to_string(index)));
        Bytes bytes = DataSetBytes(items);
        const auto dataSet = Wrap(bytes);
        EXPECT_EQ(TextOf(*dataSet, kBehind), "Doe ");
        EXPECT_FALSE(dataSet->FindElement(Tags::kReferencedSOPClassUID)) << "not at the top level";
        EXPECT_EQ(dataSet->CountElements(), 2);
        ASSERT_EQ(dataSet->CountItemsInSequence(0), static_cast<int32_t>(count));
        int32_t offset = -1;
        uint32_t length = 0;
        for (size_t index = 0; index < count; ++index) {
            ASSERT_TRUE(dataSet->FindNextItem(0, offset, length, &offset, &length));
            EXPECT_EQ(length, items[index].size());
            EXPECT_EQ(dataSet->GetItemLength(offset), length);
            Bytes content(bytes.begin() + offset, bytes.begin() + offset + static_cast<int32_t>(length));
            EXPECT_EQ(content, items[index]);
        }
        EXPECT_FALSE(dataSet->FindNextItem(0, offset, length, &offset, &length));
    }
}

TEST_P(SequenceInForm, NestedSequencesArePassedOverWhole) {
    const Bytes inner = ElementBuilder(GetParam().fTransferSyntax)
                            .Sequence(kSequence, {Item("1.2"), Item("1.3")}, GetParam().fLengths)
                            .GetBytes();
    Bytes bytes = DataSetBytes({inner, inner});
    const auto dataSet = Wrap(bytes);
    EXPECT_EQ(dataSet->CountItemsInSequence(0), 2);
    EXPECT_EQ(TextOf(*dataSet, kBehind), "Doe ");
}

TEST_P(SequenceInForm, ItemsAreAddedAndDeletedInPlace) {
    Bytes bytes = DataSetBytes({Item("1.1"), Item("1.2")});
    const auto dataSet =
        Wrap(bytes)->ConvertTo(GetParam().fIsExplicit, GetParam().fIsBigEndian, 32, 16, 0, 0);
    const auto groupLength = [&] {
        uint32_t length = 0;
        dataSet->FindElement(8, 0, nullptr, nullptr, &length, 4);
        return length;
    };
    const int32_t sequence = dataSet->GetNextElementOffset(0);
    const uint32_t lengthBefore = dataSet->GetElementLength(sequence);
    const uint32_t groupBefore = groupLength();
    const Bytes before = BytesOf(*dataSet);
    const Bytes added = Item("1.3");
    dataSet->AddItem(sequence, added.data(), static_cast<uint32_t>(added.size()));
    EXPECT_EQ(dataSet->CountItemsInSequence(sequence), 3);
    EXPECT_EQ(dataSet->GetElementLength(sequence), lengthBefore + added.size() + 8);
    EXPECT_EQ(groupLength(), groupBefore + added.size() + 8);
    EXPECT_EQ(TextOf(*dataSet, kBehind), "Doe ");

    EXPECT_FALSE(dataSet->DeleteItem(sequence, sequence + 22, 4)) << "no item starts there";
    const int32_t last = dataSet->GetNextElementOffset(sequence) - static_cast<int32_t>(added.size());
    EXPECT_TRUE(dataSet->DeleteItem(sequence, last, static_cast<uint32_t>(added.size())));
    EXPECT_EQ(BytesOf(*dataSet), before) << "adding and deleting leave no trace";
}

TEST_P(SequenceInForm, DeletingFromTheOriginalKeepsItsKindOfLength) {
    Bytes bytes = DataSetBytes({Item("1.1"), Item("1.2")});
    const auto dataSet = Wrap(bytes);
    int32_t offset = -1;
    uint32_t length = 0;
    ASSERT_TRUE(dataSet->FindNextItem(0, -1, 0, &offset, &length));
    EXPECT_TRUE(dataSet->DeleteItem(0, offset, length));
    Bytes expected = DataSetBytes({Item("1.2")});
    EXPECT_EQ(BytesOf(*dataSet), expected);
}

TEST_P(SequenceInForm, NothingIsReadBehindTheEndWhereverItIsCut) {
    const Bytes inner = ElementBuilder(GetParam().fTransferSyntax)
                            .Sequence(kSequence, {Item("1.2")}, GetParam().fLengths)
                            .GetBytes();
    const Bytes whole = DataSetBytes({inner, Item("1.3")});
    for (size_t size = 0; size < whole.size(); ++size) {
        Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        cut.shrink_to_fit();
        const auto dataSet = Wrap(cut);
        char text[4000];
        ThrownBy([&] { dataSet->FindElement(0xFFFF, 0); });
        ThrownBy([&] { dataSet->Dump(0, text, sizeof(text), 0); });
        ThrownBy([&] { dataSet->CountItemsInSequence(0); });
        ThrownBy([&] { dataSet->ConvertTo(true, false, 100, 100, 0, 0); });
    }
}

TEST(Sequence, KnowsASequenceByItsVROrItsFirstItem) {
    ElementBuilder builder;
    builder.Text(Tags::kModality, Vr::kCS, "US");
    const auto asUnknown = static_cast<int32_t>(builder.GetSize());
    builder.Header(kSequence, Vr::kUN, 8).ItemHeader(Tags::kItem, 0);
    Bytes bytes = builder.GetBytes();
    const auto size = static_cast<int32_t>(bytes.size());
    TDicomDataSet isExplicit(true, false, bytes.data(), size, size);
    EXPECT_TRUE(isExplicit.IsSequence(asUnknown));
    EXPECT_EQ(ThrownBy([&] { isExplicit.IsSequence(0); }), "101 Not a sequence element");
    TDicomDataSet isImplicit(false, false, bytes.data(), size, size);
    EXPECT_TRUE(isImplicit.IsSequence(0)) << "implicit elements cannot tell";
}

// Hosts have never seen an empty item at the very end of a sequence of defined length.
TEST(Sequence, AnEmptyLastItemIsNotCountedUnlessItIsTheOnlyOne) {
    const Bytes item = ElementBuilder().Text(Tags::kModality, Vr::kCS, "US").GetBytes();
    struct Case {
        std::vector<Bytes> fItems;
        int32_t fCount;
    };
    for (const Case& testCase : {Case{{item, {}}, 1}, {{{}}, 1}, {{{}, item}, 2}, {{item, {}, item}, 3}}) {
        Bytes bytes = ElementBuilder().Sequence(kSequence, testCase.fItems).GetBytes();
        const auto size = static_cast<int32_t>(bytes.size());
        EXPECT_EQ(TDicomDataSet(true, false, bytes.data(), size, size).CountItemsInSequence(0),
                  testCase.fCount);
    }
}

TEST(Sequence, DamagedItemsEndTheWalk) {
    struct Case {
        const char* fName;
        ElementBuilder fContent;
        std::string fCounted;
        int32_t fCount;
    };
    ElementBuilder tooLong, noDelimiter, wrongDelimiter;
    tooLong.ItemHeader(Tags::kItem, 0).ItemHeader(Tags::kItem, 500);
    noDelimiter.ItemHeader(Tags::kItem, 0xFFFFFFFF).Text(Tags::kModality, Vr::kCS, "US");
    wrongDelimiter.ItemHeader(Tags::kItem, 0xFFFFFFFF).ItemHeader(Tags::kSequenceDelimitation, 0);
    const Case cases[] = {{"too long", tooLong, "nothing", 1},
                          {"no delimiter", noDelimiter, "nothing", 0},
                          {"wrong delimiter", wrongDelimiter, "101 Unterminated item", 0}};
    for (const Case& testCase : cases) {
        ElementBuilder builder;
        builder.Header(kSequence, Vr::kSQ, 0xFFFFFFFF).Raw(testCase.fContent.GetBytes());
        Bytes bytes = builder.GetBytes();
        const auto size = static_cast<int32_t>(bytes.size());
        const TDicomDataSet dataSet(true, false, bytes.data(), size, size);
        int32_t count = 0;
        EXPECT_EQ(ThrownBy([&] { count = dataSet.CountItemsInSequence(0); }), testCase.fCounted);
        EXPECT_EQ(count, testCase.fCount) << testCase.fName;
        EXPECT_NE(ThrownBy([&] { dataSet.FindElement(kBehind); }), "nothing") << testCase.fName;
    }
    Bytes unterminated = noDelimiter.GetBytes();
    const auto size = static_cast<int32_t>(unterminated.size());
    EXPECT_EQ(TDicomDataSet(true, false, unterminated.data(), size, size).GetItemLength(8), 0u);
}

// A medium with twenty thousand levels of items: measured without a deep stack, followed to a depth.
TEST(Sequence, EndlessNestingIsMeasuredAndNotFollowed) {
    constexpr int kLevels = 20000;
    ElementBuilder builder;
    for (int level = 0; level < kLevels; ++level) {
        builder.Header(kSequence, Vr::kSQ, 0xFFFFFFFF).ItemHeader(Tags::kItem, 0xFFFFFFFF);
    }
    for (int level = 0; level < kLevels; ++level) {
        builder.ItemHeader(Tags::kItemDelimitation, 0).ItemHeader(Tags::kSequenceDelimitation, 0);
    }
    builder.Text(kBehind, Vr::kPN, "Doe");
    Bytes bytes = builder.GetBytes();
    const auto size = static_cast<int32_t>(bytes.size());
    const TDicomDataSet dataSet(true, false, bytes.data(), size, size);
    EXPECT_EQ(TextOf(dataSet, kBehind), "Doe ");
    EXPECT_EQ(dataSet.CountItemsInSequence(0), 1);
    std::string text(1 << 20, '\0');
    const int32_t end = dataSet.Dump(0, text.data(), static_cast<int32_t>(text.size()), 0);
    EXPECT_NE(text.substr(0, static_cast<size_t>(end)).find("Doe"), std::string::npos);
    EXPECT_EQ(ThrownBy([&] { dataSet.ConvertTo(true, false, 64, 65536, 0, 0); }), "101 Unterminated item");
}

}  // namespace
