// Sequences and items, in every encoding and with either kind of length. What it hunts: items that are missed
// or found where none are, lengths that are wrong after a change, and damage that leads outside the buffer.

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Lengths = ElementBuilder::Lengths;

constexpr Tag kSequence{0x0008, 0x2112};
constexpr Tag kBehind{0x0010, 0x0010};
constexpr uint32_t kUndefined = TDicomDataSet::kUndefinedLength;

class SequenceInForm : public testing::TestWithParam<std::tuple<Encoding, Lengths>> {
  protected:
    ElementBuilder Builder() const { return ElementBuilder(fEncoding.fTransferSyntax); }

    Bytes Item(const std::string& uid) const {
        return Builder().Text(Tags::kReferencedSOPClassUID, Vr::kUI, uid).GetBytes();
    }

    // A sequence of items, with an element behind it.
    Bytes DataSetBytes(const std::vector<Bytes>& items) const {
        return Builder().Sequence(kSequence, items, fLengths).Text(kBehind, Vr::kPN, "Doe").GetBytes();
    }

    TDicomDataSet DataSet(Bytes& bytes) const {
        return Over(bytes, fEncoding.fIsExplicit, fEncoding.fIsBigEndian);
    }

    const Encoding fEncoding = std::get<0>(GetParam());
    const Lengths fLengths = std::get<1>(GetParam());
};

INSTANTIATE_TEST_SUITE_P(All, SequenceInForm,
                         testing::Combine(testing::ValuesIn(kEncodings),
                                          testing::Values(Lengths::kDefined, Lengths::kUndefined)));

TEST_P(SequenceInForm, ItemsAreWalkedAndTheElementBehindIsFound) {
    const Bytes nesting = DataSetBytes({Item("1.2"), Item("1.3")});
    const std::vector<Bytes> all = {Item("1.2"), nesting, Item("1.2.34")};
    for (size_t count = 0; count <= all.size(); ++count) {
        const std::vector<Bytes> items(all.begin(), all.begin() + static_cast<ptrdiff_t>(count));
        Bytes bytes = DataSetBytes(items);
        const TDicomDataSet dataSet = DataSet(bytes);
        EXPECT_EQ(TextOf(dataSet, kBehind), "Doe ");
        EXPECT_FALSE(dataSet.FindElement(Tags::kReferencedSOPClassUID)) << "not at the top level";
        EXPECT_EQ(dataSet.CountElements(), 2);
        int32_t offset = TDicomDataSet::kFromStart;
        uint32_t length = 0;
        for (const Bytes& item : items) {
            ASSERT_TRUE(dataSet.FindNextItem(0, offset, length, &offset, &length));
            EXPECT_EQ(dataSet.GetItemLength(offset), length);
            EXPECT_EQ(Bytes(bytes.begin() + offset, bytes.begin() + offset + static_cast<int32_t>(length)),
                      item);
        }
        EXPECT_FALSE(dataSet.FindNextItem(0, offset, length, &offset, &length));
    }
}

// An empty last item of defined length is not seen, so it may stand behind the last.
TEST_P(SequenceInForm, TellsWhetherAWalkHasSeenAllItems) {
    const Bytes item = Item("1.2");
    for (const std::vector<Bytes>& items : std::initializer_list<std::vector<Bytes>>{
             {}, {item}, {item, DataSetBytes({item}), item}, {{}}, {{}, item}, {item, {}}, {item, {}, {}}}) {
        Bytes bytes = DataSetBytes(items);
        const TDicomDataSet dataSet = DataSet(bytes);
        int32_t offset = TDicomDataSet::kFromStart, next = 0;
        uint32_t length = 0, nextLength = 0;
        while (dataSet.FindNextItem(0, offset, length, &next, &nextLength)) {
            if (nextLength > 0 || fLengths == Lengths::kUndefined) {
                EXPECT_FALSE(dataSet.IsLastItem(0, offset, length));
            }
            offset = next;
            length = nextLength;
        }
        EXPECT_TRUE(dataSet.IsLastItem(0, offset, length));
    }
}

TEST_P(SequenceInForm, DeletingFromTheOriginalKeepsItsKindOfLength) {
    Bytes bytes = DataSetBytes({Item("1.1"), Item("1.2")});
    TDicomDataSet dataSet = DataSet(bytes);
    int32_t offset = 0;
    uint32_t length = 0;
    ASSERT_TRUE(dataSet.FindNextItem(0, TDicomDataSet::kFromStart, 0, &offset, &length));
    EXPECT_TRUE(dataSet.DeleteItem(0, offset, length));
    EXPECT_EQ(BytesOf(dataSet), DataSetBytes({Item("1.2")}));
}

TEST_P(SequenceInForm, NothingIsReadBehindTheEndWhereverItIsCut) {
    const Bytes whole = DataSetBytes({DataSetBytes({Item("1.2")}), Item("1.3")});
    for (size_t size = 0; size < whole.size(); ++size) {
        Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        const TDicomDataSet dataSet = DataSet(cut);
        char text[4000];
        ThrownBy([&] { dataSet.FindElement(0xFFFF, 0); });
        ThrownBy([&] { dataSet.Dump(0, text, sizeof(text), 0); });
        ThrownBy([&] { dataSet.CountItemsInSequence(0); });
        ThrownBy([&] { dataSet.ConvertTo(true, false, 100, 100, 0, 0); });
    }
}

TEST(Sequence, ItemsAreAddedAndDeletedInPlace) {
    for (const Encoding& encoding : kEncodings) {
        const auto bytesWith = [&](const std::vector<Bytes>& items) {
            const Bytes sequence =
                ElementBuilder(encoding.fTransferSyntax).Sequence(kSequence, items).GetBytes();
            return ElementBuilder(encoding.fTransferSyntax)
                .Numbers32({0x0008, 0x0000}, Vr::kUL, {static_cast<uint32_t>(sequence.size())})
                .Raw(sequence)
                .Numbers32({0x0010, 0x0000}, Vr::kUL, {12})
                .Text(kBehind, Vr::kPN, "Doe")
                .GetBytes();
        };
        const std::vector<Bytes> items = {Bytes(10, 'a'), Bytes(20, 'b'), Bytes()};
        const auto dataSet = NewDataSet(encoding.fIsExplicit, encoding.fIsBigEndian);
        int32_t sequence = 0;
        dataSet->PutElement(kSequence, Vr::kSQ, 0, nullptr, 0, &sequence);
        PutText(*dataSet, kBehind, Vr::kPN, "Doe ");
        for (const Bytes& item : items) {
            dataSet->AddItem(sequence, item.data(), static_cast<uint32_t>(item.size()));
        }
        EXPECT_EQ(BytesOf(*dataSet), bytesWith(items));
        int32_t first = 0;
        ASSERT_TRUE(dataSet->FindNextItem(sequence, TDicomDataSet::kFromStart, 0, &first, nullptr));
        EXPECT_FALSE(dataSet->DeleteItem(sequence, first + 2, 4)) << "no item starts there";
        EXPECT_TRUE(dataSet->DeleteItem(sequence, first, 10));
        EXPECT_EQ(BytesOf(*dataSet), bytesWith({items[1], items[2]}));
    }
}

TEST(Sequence, KnowsASequenceByItsVROrItsFirstItem) {
    Bytes unknown = ElementBuilder().Header(kSequence, Vr::kUN, 8).ItemHeader(Tags::kItem, 0).GetBytes();
    EXPECT_TRUE(Over(unknown).IsSequence(0));
    Bytes text = ElementBuilder().Text(Tags::kModality, Vr::kCS, "US").GetBytes();
    EXPECT_EQ(ThrownBy([&] { Over(text).IsSequence(0); }), "101 Not a sequence element");
    EXPECT_TRUE(Over(text, false).IsSequence(0)) << "implicit elements cannot tell";
}

// Hosts have never seen an empty item at the very end of a sequence of defined length.
TEST(Sequence, AnEmptyLastItemIsNotCountedUnlessItIsTheOnlyOne) {
    const Bytes item = ElementBuilder().Text(Tags::kModality, Vr::kCS, "US").GetBytes();
    const std::pair<std::vector<Bytes>, int32_t> cases[] = {
        {{item, {}}, 1}, {{{}}, 1}, {{{}, item}, 2}, {{item, {}, item}, 3}};
    for (const auto& [items, count] : cases) {
        Bytes bytes = ElementBuilder().Sequence(kSequence, items).GetBytes();
        EXPECT_EQ(Over(bytes).CountItemsInSequence(0), count);
    }
}

TEST(Sequence, AnItemThatReachesPastItsSequenceIsNone) {
    const Bytes item = ElementBuilder().ItemHeader(Tags::kItem, 12).GetBytes();
    Bytes bytes = ElementBuilder().Value(kSequence, Vr::kSQ, item).Text(kBehind, Vr::kPN, "Doe").GetBytes();
    EXPECT_EQ(Over(bytes).CountItemsInSequence(0), 0);
}

// Offsets that a host has kept from before a change. The last sequence breaks off within its header, so there
// is no length to be written back.
TEST(Sequence, OnlyItsOwnItemsAreDeleted) {
    const Bytes item = ElementBuilder().ItemHeader(Tags::kItem, 0).GetBytes();
    const Bytes empty = ElementBuilder().Sequence(kSequence, {}).GetBytes();
    const Bytes cut(empty.begin(), empty.begin() + 8);
    const std::tuple<Bytes, Bytes, int32_t, int32_t> cases[] = {
        {item, empty, 8, 8}, {empty, item, 0, 20}, {item, cut, 8, 8}};
    for (const auto& [first, second, sequence, itemOffset] : cases) {
        const Bytes before = ElementBuilder().Raw(first).Raw(second).GetBytes();
        Bytes bytes = before;
        TDicomDataSet dataSet = Over(bytes);
        EXPECT_FALSE(dataSet.DeleteItem(sequence, itemOffset, 0));
        EXPECT_EQ(BytesOf(dataSet), before);
    }
}

TEST(Sequence, DamagedItemsEndTheWalk) {
    const struct {
        ElementBuilder fContent;
        int32_t fCount;
        std::string fFailure;
    } cases[] = {
        {ElementBuilder().ItemHeader(Tags::kItem, 0).ItemHeader(Tags::kItem, 500), 1, "nothing"},
        {ElementBuilder().ItemHeader(Tags::kItem, kUndefined).Text(kBehind, Vr::kPN, "Doe"), 0, "nothing"},
        {ElementBuilder().ItemHeader(Tags::kItem, kUndefined).ItemHeader(Tags::kSequenceDelimitation, 0), 0,
         "101 Unterminated item"},
    };
    for (const auto& [content, expected, failure] : cases) {
        Bytes bytes =
            ElementBuilder().Header(kSequence, Vr::kSQ, kUndefined).Raw(content.GetBytes()).GetBytes();
        int32_t count = 0;
        EXPECT_EQ(ThrownBy([&] { count = Over(bytes).CountItemsInSequence(0); }), failure);
        EXPECT_EQ(count, expected);
        EXPECT_NE(ThrownBy([&] { Over(bytes).FindElement(kBehind); }), "nothing");
    }
}

// Every item within a data set, by its offset there and its length; damage where it ends the walk.
void ListItems(const TDicomDataSet& dataSet, std::string& list) {
    list += ThrownBy([&] {
        int32_t element = TDicomDataSet::kFromStart;
        VrCode vr = 0;
        while (dataSet.GetNextElement(element, nullptr, nullptr, &vr, nullptr, nullptr, 0, &element)) {
            if (vr != Vr::kSQ) continue;
            int32_t offset = TDicomDataSet::kFromStart;
            uint32_t length = 0;
            while (dataSet.FindNextItem(element, offset, length, &offset, &length)) {
                list.append("(").append(std::to_string(offset)).append("+").append(std::to_string(length));
                ListItems(TDicomDataSet(dataSet, offset, static_cast<int32_t>(length)), list);
                list += ")";
            }
        }
    });
}

// Wherever a data set breaks off, remembered lengths lead to the same items as lengths that are measured
// anew.
TEST(Sequence, RememberedLengthsAreThoseMeasured) {
    const auto nest = [](const std::vector<Bytes>& items, Lengths lengths) {
        return ElementBuilder().Sequence(kSequence, items, lengths).Text(kBehind, Vr::kPN, "Doe").GetBytes();
    };
    const Bytes inner = nest({nest({}, Lengths::kUndefined), {}}, Lengths::kUndefined);
    const Bytes middle = nest({inner, inner}, Lengths::kDefined);
    const Bytes whole = nest({nest({middle, inner}, Lengths::kUndefined), inner}, Lengths::kUndefined);
    for (size_t size = 0; size <= whole.size(); ++size) {
        Bytes bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        const TDicomDataSet dataSet = Over(bytes);
        TDicomDataSet remembering(dataSet, 0, dataSet.GetDataSetSize());
        remembering.RememberLengths();
        std::string measured;
        std::string remembered;
        ListItems(dataSet, measured);
        ListItems(remembering, remembered);
        EXPECT_EQ(remembered, measured) << size << " bytes";
        const auto count = std::count(measured.begin(), measured.end(), '(');
        EXPECT_TRUE(size < whole.size() || count == 14) << measured;
    }
}

// A search that goes on where the last one ended finds what one from the start finds, in whatever order, and
// also where a writer has put a lower group behind a higher one.
TEST(Sequence, RememberedSearchesChangeNothing) {
    ElementBuilder builder;
    const std::vector<Tag> tags = {{0x0008, 0x0060}, {0x0010, 0x0010}, {0x0010, 0x0020}, {0x0008, 0x0070},
                                   {0x0020, 0x0011}, {0x0010, 0x0030}, {0x0040, 0xA030}};
    for (const Tag tag : tags) builder.Text(tag, Vr::kLO, std::to_string(tag.fElement));
    Bytes bytes = builder.GetBytes();
    const TDicomDataSet dataSet = Over(bytes);
    TDicomDataSet remembering(dataSet, 0, dataSet.GetDataSetSize());
    remembering.RememberLengths();
    std::vector<Tag> searched = tags;
    searched.insert(searched.end(), {{0x0008, 0x0065}, {0x0010, 0x0015}, {0x0030, 0x0001}, {0x0040, 0xA040}});
    for (const Tag first : searched) {
        for (const Tag second : searched) {
            for (const Tag tag : {first, second, first}) {
                EXPECT_EQ(TextOf(remembering, tag), TextOf(dataSet, tag))
                    << tag.fGroup << " " << tag.fElement;
            }
        }
    }
}

// A medium with twenty thousand levels of items: measured without a deep stack, followed to a depth.
TEST(Sequence, EndlessNestingIsMeasuredAndNotFollowed) {
    constexpr int kLevels = 20000;
    ElementBuilder builder;
    for (int level = 0; level < kLevels; ++level) {
        builder.Header(kSequence, Vr::kSQ, kUndefined).ItemHeader(Tags::kItem, kUndefined);
    }
    for (int level = 0; level < kLevels; ++level) {
        builder.ItemHeader(Tags::kItemDelimitation, 0).ItemHeader(Tags::kSequenceDelimitation, 0);
    }
    Bytes bytes = builder.Text(kBehind, Vr::kPN, "Doe").GetBytes();
    const TDicomDataSet dataSet = Over(bytes);
    EXPECT_EQ(TextOf(dataSet, kBehind), "Doe ");
    EXPECT_EQ(dataSet.CountItemsInSequence(0), 1);
    std::string text(1 << 20, '\0');
    dataSet.Dump(0, text.data(), static_cast<int32_t>(text.size()), 0);
    EXPECT_NE(text.find("Doe"), std::string::npos);
    EXPECT_EQ(ThrownBy([&] { dataSet.ConvertTo(true, false, 64, 65536, 0, 0); }), "101 Unterminated item");
}

}  // namespace
