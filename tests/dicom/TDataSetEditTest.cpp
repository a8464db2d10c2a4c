// Data sets written anew with changes, in every encoding and with either kind of length. What it hunts:
// elements that are lost, doubled or touched although nothing changes them, lengths that no longer count what
// they say, and damage that leads outside the bytes.

#include <gtest/gtest.h>

#include <tuple>

#include "dicom/TDataSetEdit.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Lengths = ElementBuilder::Lengths;
using Fate = TDataSetEdit::Fate;

constexpr Tag kSequence{0x0008, 0x2112};
constexpr Tag kRemoved{0x0008, 0x1150};
constexpr Tag kReplaced{0x0008, 0x1155};
constexpr Tag kComments{0x0020, 0x4000};
constexpr uint32_t kUndefined = TDicomDataSet::kUndefinedLength;
constexpr char kBroken[] = "102 Invalid DICOM element length.";

Fate RemoveAndReplace(const TDataSetEdit::Element& element) {
    if (element.fTag == kRemoved) return Fate::Remove();
    return element.fTag == kReplaced ? Fate::Replace("1.2.3456") : Fate::Keep();
}

class DataSetEditInForm : public testing::TestWithParam<std::tuple<VantorTest::Encoding, Lengths>> {
  protected:
    ElementBuilder Builder() const { return ElementBuilder(std::get<0>(GetParam()).fTransferSyntax); }

    Bytes Apply(const TDataSetEdit& edit, const Bytes& bytes) const { return edit.Apply(bytes, fEncoding); }

    // An item with a sequence of its own, and group lengths, before or after RemoveAndReplace.
    Bytes Item(bool isChanged) const {
        ElementBuilder identity = Builder();
        if (!isChanged) identity.Text(kRemoved, Vr::kUI, "1.2");
        identity.Text(kReplaced, Vr::kUI, isChanged ? "1.2.3456" : "1.2.3");
        const uint32_t size = identity.GetSize();
        ElementBuilder item = Builder();
        item.Numbers32({0x0008, 0}, Vr::kUL, {size}).Raw(identity.GetBytes());
        return item.Numbers16(Tags::kRows, Vr::kUS, {7}).GetBytes();
    }

    Bytes DataSet(bool isChanged) const {
        const Bytes nested = Builder().Sequence(kSequence, {Item(isChanged), {}}, fLengths).GetBytes();
        ElementBuilder group = Builder();
        group.Text(Tags::kModality, Vr::kCS, "US").Sequence(kSequence, {nested, Item(isChanged)}, fLengths);
        ElementBuilder all = Builder();
        all.Numbers32({0x0008, 0}, Vr::kUL, {group.GetSize()}).Raw(group.GetBytes());
        all.Value({0x0011, 0x0001}, MakeVr('Q', 'Q'), {1, 2}).Numbers16(Tags::kRows, Vr::kUS, {480});
        if (fEncoding == Vantor::Encoding()) all.EncapsulatedPixels({0}, {{1, 2, 3, 4}});
        return all.GetBytes();
    }

    const Lengths fLengths = std::get<1>(GetParam());
    const Vantor::Encoding fEncoding = {std::get<0>(GetParam()).fIsExplicit,
                                        std::get<0>(GetParam()).fIsBigEndian};
};

INSTANTIATE_TEST_SUITE_P(All, DataSetEditInForm,
                         testing::Combine(testing::ValuesIn(kEncodings),
                                          testing::Values(Lengths::kDefined, Lengths::kUndefined)));

TEST_P(DataSetEditInForm, WhatIsNotChangedKeepsItsBytes) {
    EXPECT_EQ(Apply({}, DataSet(false)), DataSet(false));
}

TEST_P(DataSetEditInForm, ChangesReachEveryDepthAndLengthsStayRight) {
    TDataSetEdit edit;
    edit.SetRule(RemoveAndReplace);
    EXPECT_EQ(Apply(edit, DataSet(false)), DataSet(true));
    EXPECT_EQ(Apply(edit, DataSet(true)), DataSet(true));
}

TEST_P(DataSetEditInForm, PutValuesComeInTheOrderOfTagsOncePerTag) {
    TDataSetEdit edit;
    edit.SetRule([](const TDataSetEdit::Element&) { return Fate::Keep(); });
    edit.Put(Tags::kInstanceNumber, Vr::kIS, "17");
    edit.Put(Tags::kPatientName, Vr::kPN, "Roe^J");
    edit.Put(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3");
    const auto joined = [&](auto... parts) {
        ElementBuilder all = Builder();
        (all.Raw(parts), ...);
        return all.GetBytes();
    };
    const Bytes uid = Builder().Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3").GetBytes();
    const Bytes modality = Builder().Text(Tags::kModality, Vr::kCS, "US").GetBytes();
    const Bytes name = Builder().Text(Tags::kPatientName, Vr::kPN, "Roe^J").GetBytes();
    const Bytes old = Builder().Text(Tags::kPatientName, Vr::kPN, "Doe").GetBytes();
    const Bytes number = Builder().Text(Tags::kInstanceNumber, Vr::kIS, "17").GetBytes();
    EXPECT_EQ(Apply(edit, {}), joined(uid, name, number));
    EXPECT_EQ(Apply(edit, joined(modality, old)), joined(uid, modality, name, number));
    EXPECT_EQ(Apply(edit, joined(old, old, modality)), joined(uid, name, modality, number)) << "out of order";
    const auto length = [&](size_t size) {
        return Builder().Numbers32({0x0008, 0}, Vr::kUL, {static_cast<uint32_t>(size)}).GetBytes();
    };
    EXPECT_EQ(Apply(edit, length(0)), joined(length(uid.size()), uid, name, number));
}

TEST_P(DataSetEditInForm, ValuesAreCutToWhatAnElementHolds) {
    const std::string text(70001, 'x');
    TDataSetEdit edit;
    edit.Put(kComments, Vr::kLT, text);
    edit.Put({0x0040, 0xA160}, Vr::kUT, text);
    const std::string fitting = fEncoding.fIsExplicit ? text.substr(0, 0xFFFE) : text;
    EXPECT_EQ(Apply(edit, {}),
              Builder().Text(kComments, Vr::kLT, fitting).Text({0x0040, 0xA160}, Vr::kUT, text).GetBytes());
}

TEST_P(DataSetEditInForm, DamageIsReportedWhereverTheBytesBreakOff) {
    const Bytes whole = DataSet(false);
    TDataSetEdit edit;
    edit.SetRule(RemoveAndReplace);
    int reported = 0;
    for (size_t size = 0; size < whole.size(); ++size) {
        Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        cut.shrink_to_fit();
        const std::string error = ThrownBy([&] { Apply(edit, cut); });
        EXPECT_TRUE(error == kBroken || error == "nothing") << size << ": " << error;
        reported += error == kBroken ? 1 : 0;
    }
    EXPECT_GT(reported, static_cast<int>(whole.size()) - 8) << "all but those between elements";
}

TEST_P(DataSetEditInForm, NestingIsFollowedToALimitButGoesAsAWhole) {
    TDataSetEdit edit;
    edit.SetRule([&](const TDataSetEdit::Element& element) {
        EXPECT_TRUE(element.fIsSequence && element.fDepth == 0) << "nothing within is asked for";
        return Fate::Replace({});
    });
    Bytes nested;
    for (int depth = 1; depth <= TDicomDataSet::kDeepestNesting + 1; ++depth) {
        const bool isTooDeep = depth > TDicomDataSet::kDeepestNesting;
        nested = Builder().Sequence(kSequence, {nested}, fLengths).GetBytes();
        const std::string error = ThrownBy([&] { EXPECT_EQ(Apply({}, nested), nested); });
        EXPECT_EQ(error, isTooDeep ? "101 Sequences are nested too deeply" : "nothing");
        EXPECT_EQ(Apply(edit, nested), Builder().Header(kSequence, Vr::kSQ, 0).GetBytes());
    }
}

TEST(TDataSetEdit, HundredThousandOpenSequencesAreSteppedOver) {
    ElementBuilder builder;
    constexpr int kLevels = 100000;
    for (int level = 0; level < kLevels; ++level)
        builder.Header(kSequence, Vr::kSQ, kUndefined).ItemHeader(Tags::kItem, kUndefined);
    EXPECT_EQ(ThrownBy([&] { TDataSetEdit().Apply(builder.GetBytes(), {}); }), kBroken);
    for (int level = 0; level < kLevels; ++level)
        builder.ItemHeader(Tags::kItemDelimitation, 0).ItemHeader(Tags::kSequenceDelimitation, 0);
    ElementReader reader(builder.GetBytes(), {});
    EXPECT_EQ(reader.Skip(*reader.PeekHeader()), builder.GetSize() - 8);
}

TEST(TDataSetEdit, WhatStandsBetweenItemsIsDamage) {
    ElementBuilder builder;
    builder.Header(kSequence, Vr::kSQ, kUndefined).ItemHeader(Tags::kItemDelimitation, 0);
    builder.ItemHeader(Tags::kSequenceDelimitation, 0);
    EXPECT_EQ(ThrownBy([&] { TDataSetEdit().Apply(builder.GetBytes(), {}); }), kBroken);
    // Behind the items of a known length, where some writers put a delimiter as well.
    for (const auto& [tag, length, isGood] :
         {std::tuple(Tags::kSequenceDelimitation, 0U, true),
          std::tuple(Tags::kSequenceDelimitation, 2U, false), std::tuple(Tags::kItemDelimitation, 0U, false),
          std::tuple(Tags::kRows, 0U, false)}) {
        ElementBuilder known;
        known.Header(kSequence, Vr::kSQ, 16 + length).ItemHeader(Tags::kItem, 0).ItemHeader(tag, length);
        known.Raw(Bytes(length));
        const std::string thrown =
            ThrownBy([&] { EXPECT_EQ(TDataSetEdit().Apply(known.GetBytes(), {}), known.GetBytes()); });
        EXPECT_EQ(thrown, isGood ? "nothing" : "102 Not a sequence item");
    }
}

// Whoever did not know an element's VR copied its items as they were, in implicit VR little endian.
TEST(TDataSetEdit, ItemsOfUnknownElementsAreFollowedInTheirOwnEncoding) {
    for (const char* syntax : {Uids::kExplicitVRLittleEndian, Uids::kExplicitVRBigEndian}) {
        const auto unknown = [&](const char* uid, Lengths lengths, const Bytes& behind = {}) {
            ElementBuilder item(Uids::kImplicitVRLittleEndian);
            ElementBuilder items(Uids::kImplicitVRLittleEndian);
            items.Sequence(kSequence, {item.Text(kReplaced, Vr::kUI, uid).GetBytes()}, lengths).Raw(behind);
            const Bytes value(items.GetBytes().begin() + 8, items.GetBytes().end());
            const auto length = static_cast<uint32_t>(value.size());
            ElementBuilder all(syntax);
            all.Header(kSequence, Vr::kUN, lengths == Lengths::kDefined ? length : kUndefined).Raw(value);
            return all.GetBytes();
        };
        const Vantor::Encoding encoding{true, syntax == std::string_view(Uids::kExplicitVRBigEndian)};
        TDataSetEdit edit;
        edit.SetRule(RemoveAndReplace);
        for (const Lengths lengths : {Lengths::kDefined, Lengths::kUndefined})
            EXPECT_EQ(edit.Apply(unknown("1.2", lengths), encoding), unknown("1.2.3456", lengths));
        const Bytes more = unknown("1.2", Lengths::kDefined, {0, 0});
        EXPECT_EQ(edit.Apply(more, encoding), more) << "not only items";
    }
}

TEST(ElementReader, KnowsEveryVrWithALongHeader) {
    for (const std::string vr : {"OB", "OD", "OF", "OL", "OV", "OW", "SQ", "SV", "UC", "UN", "UR",
                                 "UT", "UV", "AE", "DS", "FD", "LT", "SL", "SS", "UI", "UL", "US"}) {
        const bool isLong =
            vr < "PN" ? vr[0] == 'O' : vr == "SQ" || vr == "SV" || vr.find_first_of("CNRTV") == 1;
        Bytes bytes = BytesOf("\x20\x20\x20\x20" + vr);
        if (isLong) bytes.insert(bytes.end(), {0, 0});
        bytes.push_back(2);
        bytes.resize(isLong ? 14 : 10);
        ElementReader reader(bytes, {});
        EXPECT_EQ(reader.PeekHeader()->fValueStart, bytes.size() - 2) << vr;
        EXPECT_EQ(reader.Skip(*reader.PeekHeader()), bytes.size()) << vr;
    }
}

}  // namespace
