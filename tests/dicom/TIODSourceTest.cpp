#include "dicom/TIODSource.h"

#include <gtest/gtest.h>

#include "tests/dicom/DataSetTestSupport.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

class SourceWithDataSet : public TIODSource {
  public:
    SourceWithDataSet() { fDataSet = NewDataSet(true, false); }
};

using UidBuffer = char[kMaximumUidLength + 1];

TEST(TIODSource, KnowsNothingAtFirst) {
    TIODSource source;
    UidBuffer buffer = "untouched";
    EXPECT_FALSE(source.GetTransferSyntaxUID(buffer));
    EXPECT_FALSE(source.GetSOPClassUID(buffer));
    EXPECT_FALSE(source.GetSOPInstanceUID(buffer));
    EXPECT_STREQ(buffer, "untouched");
    EXPECT_EQ(source.GetDataSet(), nullptr);
    EXPECT_FALSE(source.IsModified());
}

TEST(TIODSource, CutsUidsAt64Characters) {
    TIODSource source;
    const std::string longest(kMaximumUidLength, '1');
    UidBuffer buffer = {};
    source.SetSOPClassUID((longest + "2").c_str());
    ASSERT_TRUE(source.GetSOPClassUID(buffer));
    EXPECT_EQ(buffer, longest);
    source.SetSOPClassUID("1.2");
    ASSERT_TRUE(source.GetSOPClassUID(buffer));
    EXPECT_STREQ(buffer, "1.2") << "what a longer UID left behind must not follow";
    source.SetSOPClassUID("");
    EXPECT_FALSE(source.GetSOPClassUID(buffer));
}

TEST(TIODSource, PutsClassAndInstanceIntoItsDataSet) {
    SourceWithDataSet source;
    source.SetSOPClassUID("1.2.3");
    source.SetSOPInstanceUID("1.2.3.4");
    source.SetTransferSyntaxUID("1.2.840.10008.1.2");
    EXPECT_EQ(TextOf(*source.GetDataSet(), Tags::kSOPClassUID), std::string("1.2.3\0", 6));
    EXPECT_EQ(TextOf(*source.GetDataSet(), Tags::kSOPInstanceUID), std::string("1.2.3.4\0", 8));
    EXPECT_EQ(source.GetDataSet()->CountElements(), 3) << "group length, class and instance; no more";
    EXPECT_FALSE(source.IsModified()) << "only files note that they were modified";
}

TEST(TIODSource, HasNothingToCopy) {
    TIODSource source;
    int64_t size = 7;
    EXPECT_EQ(source.BeginCopy(TFileSpec("target"), size), -1);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(source.CopyNextChunk(), 0);
    source.EndCopy(nullptr);
}

}  // namespace
