#include "platform/MappedFile.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::Bytes;
using VantorTest::TestFolder;

namespace {

class ViewSizeLimit {
  public:
    explicit ViewSizeLimit(int64_t bytes) { MappedFile::LimitViewSizeForTesting(bytes); }
    ~ViewSizeLimit() { MappedFile::LimitViewSizeForTesting(0); }
};

}  // namespace

TEST(MappedFile, ViewShowsTheFile) {
    constexpr size_t kSeveralPages = 20'001;
    const TestFolder folder;
    Bytes content(kSeveralPages);
    for (size_t i = 0; i < content.size(); ++i) {
        content[i] = static_cast<uint8_t>(i % 251);
    }
    MappedFile file(folder.WriteFile("IMAGE", content));
    EXPECT_EQ(file.GetLength(), static_cast<int64_t>(content.size()));
    EXPECT_EQ(file.GetView(), nullptr);
    EXPECT_EQ(file.GetViewSize(), 0);
    ASSERT_TRUE(file.MapView(file.GetLength()));
    EXPECT_TRUE(std::equal(content.begin(), content.end(), file.GetView()));
    ASSERT_TRUE(file.MapView(5)) << "a view replaces the present one";
    EXPECT_EQ(file.GetViewSize(), 5);
    EXPECT_TRUE(std::equal(content.begin(), content.begin() + 5, file.GetView()));
    file.UnmapView();
    file.UnmapView();
    EXPECT_EQ(file.GetView(), nullptr);
    EXPECT_EQ(file.GetViewSize(), 0);
}

TEST(MappedFile, SizesWithoutView) {
    const TestFolder folder;
    MappedFile file(folder.WriteFile("IMAGE", "0123456789"));
    for (const int64_t size : {int64_t{0}, int64_t{-1}, int64_t{11}, int64_t{1} << 62}) {
        ASSERT_TRUE(file.MapView(10));
        EXPECT_FALSE(file.MapView(size)) << size;
        EXPECT_EQ(file.GetView(), nullptr) << "the former view is gone as well";
        EXPECT_EQ(file.GetViewSize(), 0);
    }
}

TEST(MappedFile, EmptyFileHasNoView) {
    const TestFolder folder;
    MappedFile file(folder.WriteFile("EMPTY", ""));
    EXPECT_EQ(file.GetLength(), 0);
    EXPECT_FALSE(file.MapView(0));
    EXPECT_FALSE(file.MapView(1));
}

// Stands for a 32-bit process, where only views smaller than the file may be had.
TEST(MappedFile, LimitForTests) {
    const TestFolder folder;
    MappedFile file(folder.WriteFile("IMAGE", "0123456789"));
    {
        const ViewSizeLimit limit(5);
        EXPECT_FALSE(file.MapView(10));
        EXPECT_FALSE(file.MapView(6));
        EXPECT_TRUE(file.MapView(5));
    }
    EXPECT_TRUE(file.MapView(10));
}

}  // namespace Vantor::Platform
