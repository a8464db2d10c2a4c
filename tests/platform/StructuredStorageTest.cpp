#include "platform/StructuredStorage.h"

#include <gtest/gtest.h>

#include "tests/support/FileSupport.h"
#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::FailureOf;
using VantorTest::WriteText;

namespace {

std::string TextOf(StructuredStorage& storage, const std::string& name) {
    return VantorTest::ReadRest(*storage.OpenStream(name, FileAccess::kRead));
}

// A storage with one image, where the system has such a thing; elsewhere it is refused.
class StructuredStorageTest : public testing::Test {
  protected:
    auto Open(FileAccess access) { return StructuredStorage::Open(fPath, access); }

    void SetUp() override {
        if (!StructuredStorage::IsAvailable()) {
            EXPECT_EQ(FailureOf([&] { StructuredStorage::Create(fPath); }).rfind(fPath, 0), 0u);
            GTEST_SKIP() << "the system has no structured storage";
        }
        WriteText(*StructuredStorage::Create(fPath)->CreateStream("I_000000"), "image");
    }

    VantorTest::TestFolder fFolder;
    std::string fPath = fFolder.PathOf("exam.stg");
};

}  // namespace

TEST_F(StructuredStorageTest, StreamsWorkLikeFiles) {
    auto storage = Open(FileAccess::kReadWrite);
    const auto stream = storage->OpenStream("I_000000", FileAccess::kReadWrite);
    stream->SetLength(1);
    WriteText(*stream, "a");
    stream->Seek(3);
    WriteText(*stream, "xx");
    stream->SetLength(2);
    WriteText(*stream, "y");
    stream->SetLength(4);
    stream->SetLength(6);
    stream->Seek(1);
    EXPECT_EQ(VantorTest::ReadRest(*stream), std::string(5, '\0')) << "what was cut off does not come back";
    stream->Flush();
    stream->Close();
    EXPECT_NE(FailureOf([&] { stream->GetLength(); }), "nothing");
    storage.reset();
    storage = Open(FileAccess::kRead);
    EXPECT_EQ(TextOf(*storage, "I_000000"), std::string("a\0\0\0\0\0", 6));
    EXPECT_TRUE(storage->HasStream("i_000000")) << "storage ignores case";
    EXPECT_EQ(FailureOf([&] { TextOf(*storage, "I_000001"); }), "I_000001: file not found");
}

TEST_F(StructuredStorageTest, IsHeldLikeAFile) {
    auto storage = Open(FileAccess::kReadWrite);
    EXPECT_NE(FailureOf([&] { Open(FileAccess::kRead); }), "nothing");
    const auto stream = storage->OpenStream("I_000000", FileAccess::kRead);
    EXPECT_NE(FailureOf([&] { TextOf(*storage, "I_000000"); }), "nothing") << "one at a time";
    EXPECT_NE(FailureOf([&] { storage->CreateStream("I_000000"); }), "nothing");
    stream->Close();
    storage.reset();
    storage = Open(FileAccess::kRead);
    EXPECT_EQ(TextOf(*Open(FileAccess::kRead), "I_000000"), "image");
    EXPECT_NE(FailureOf([&] { Open(FileAccess::kReadWrite); }), "nothing");
}

// How a file inside a storage is rewritten: to a stream "Temp" that then takes the old one's name.
TEST_F(StructuredStorageTest, RenamedStreamTakesAnothersPlace) {
    auto storage = Open(FileAccess::kReadWrite);
    WriteText(*storage->CreateStream("Temp"), "new image");
    EXPECT_NE(FailureOf([&] { storage->RenameStream("Temp", "I_000000"); }), "nothing") << "still there";
    EXPECT_NE(FailureOf([&] { storage->RenameStream("Temp", std::string(32, 'n')); }), "nothing");
    storage->RemoveStream("I_000000");
    storage->RenameStream("Temp", "I_000000");
    EXPECT_FALSE(storage->HasStream("Temp"));
    storage.reset();
    EXPECT_EQ(TextOf(*Open(FileAccess::kRead), "I_000000"), "new image");
}

}  // namespace Vantor::Platform
