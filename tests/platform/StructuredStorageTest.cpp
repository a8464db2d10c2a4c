#include "platform/StructuredStorage.h"

#include <gtest/gtest.h>

#include "tests/support/FileFailure.h"
#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::Bytes;
using VantorTest::CauseOf;
using VantorTest::FailureOf;
using VantorTest::TestFolder;
using Cause = FileException::Cause;

namespace {

void WriteText(File& file, std::string_view text) { file.Write(text.data(), text.size()); }

std::string TextOf(StructuredStorage& storage, const std::string& name) {
    const auto stream = storage.OpenStream(name, FileAccess::kRead);
    std::string text(static_cast<size_t>(stream->GetLength()), '?');
    text.resize(stream->Read(text.data(), text.size()));
    return text;
}

class StructuredStorageTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!StructuredStorage::IsAvailable()) {
            GTEST_SKIP() << "the system has no structured storage";
        }
        fPath = fFolder.PathOf("exam.stg");
        const auto storage = StructuredStorage::Create(fPath);
        WriteText(*storage->CreateStream("I_000000"), "first image");
        WriteText(*storage->CreateStream("I_000001"), "second image");
    }

    TestFolder fFolder;
    std::string fPath;
};

}  // namespace

TEST(StructuredStorageWithout, IsRefused) {
    if (StructuredStorage::IsAvailable()) {
        GTEST_SKIP() << "the system has structured storage";
    }
    const TestFolder folder;
    const std::string path = folder.PathOf("exam.stg");
    for (const auto& failure : {FailureOf([&] { StructuredStorage::Create(path); }),
                                FailureOf([&] { StructuredStorage::Open(path, FileAccess::kRead); })}) {
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->GetCause(), Cause::kGeneric);
        EXPECT_EQ(failure->GetFileName(), path);
    }
    EXPECT_EQ(folder.ListFiles(), std::vector<std::string>{});
}

TEST_F(StructuredStorageTest, StreamsKeepTheirBytes) {
    const auto storage = StructuredStorage::Open(fPath, FileAccess::kRead);
    EXPECT_EQ(TextOf(*storage, "I_000000"), "first image");
    EXPECT_EQ(TextOf(*storage, "I_000001"), "second image");
    EXPECT_TRUE(storage->HasStream("I_000001"));
    EXPECT_TRUE(storage->HasStream("i_000001")) << "storage ignores case";
    EXPECT_FALSE(storage->HasStream("I_000002"));
    EXPECT_EQ(CauseOf([&] { storage->OpenStream("I_000002", FileAccess::kRead); }), Cause::kFileNotFound);
}

TEST_F(StructuredStorageTest, StreamsWorkLikeFiles) {
    const auto storage = StructuredStorage::Open(fPath, FileAccess::kReadWrite);
    const auto stream = storage->OpenStream("I_000000", FileAccess::kReadWrite);
    stream->SetLength(2);
    stream->Seek(4);
    EXPECT_EQ(stream->GetLength(), 2);
    WriteText(*stream, "x");
    EXPECT_EQ(stream->GetPosition(), 5);
    stream->SetLength(7);
    EXPECT_EQ(stream->GetPosition(), 5);
    EXPECT_EQ(CauseOf([&] { stream->Seek(-1); }), Cause::kBadSeek);
    stream->Flush();
    stream->Seek(0);
    char bytes[10] = {};
    EXPECT_EQ(stream->Read(bytes, sizeof bytes), 7u);
    EXPECT_EQ(std::string(bytes, 7), std::string("fi\0\0x\0\0", 7));
    EXPECT_EQ(stream->Read(bytes, sizeof bytes), 0u);
    stream->Close();
    stream->Close();
    EXPECT_NE(CauseOf([&] { stream->GetLength(); }), std::nullopt);
}

TEST_F(StructuredStorageTest, LongStreams) {
    constexpr size_t kSize = 3'000'001;
    Bytes content(kSize);
    for (size_t i = 0; i < kSize; ++i) {
        content[i] = static_cast<uint8_t>(i % 249);
    }
    {
        const auto storage = StructuredStorage::Open(fPath, FileAccess::kReadWrite);
        const auto stream = storage->CreateStream("LOOP");
        stream->Write(content.data(), content.size());
        stream->Close();
    }
    const std::string read = TextOf(*StructuredStorage::Open(fPath, FileAccess::kRead), "LOOP");
    EXPECT_TRUE(Bytes(read.begin(), read.end()) == content);
}

TEST_F(StructuredStorageTest, OpenStreamsAreAlone) {
    const auto storage = StructuredStorage::Open(fPath, FileAccess::kReadWrite);
    const auto stream = storage->OpenStream("I_000000", FileAccess::kRead);
    const auto cause = CauseOf([&] { storage->OpenStream("I_000000", FileAccess::kRead); });
    EXPECT_TRUE(cause == Cause::kSharingViolation || cause == Cause::kAccessDenied);
    EXPECT_NE(CauseOf([&] { storage->CreateStream("I_000000"); }), std::nullopt);
    EXPECT_EQ(TextOf(*storage, "I_000001"), "second image") << "the others are not concerned";
    stream->Close();
    EXPECT_EQ(TextOf(*storage, "I_000000"), "first image");
}

// How a file inside a storage is rewritten: to a stream "Temp" that then takes the old one's name.
TEST_F(StructuredStorageTest, RenamedStreamTakesAnothersPlace) {
    {
        const auto storage = StructuredStorage::Open(fPath, FileAccess::kReadWrite);
        WriteText(*storage->CreateStream("Temp"), "new image");
        EXPECT_NE(CauseOf([&] { storage->RenameStream("Temp", "I_000000"); }), std::nullopt)
            << "the old one must go first";
        storage->RemoveStream("I_000000");
        EXPECT_FALSE(storage->HasStream("I_000000"));
        storage->RenameStream("Temp", "I_000000");
        EXPECT_EQ(CauseOf([&] { storage->RenameStream("Temp", "X"); }), Cause::kFileNotFound);
        EXPECT_EQ(CauseOf([&] { storage->RemoveStream("Temp"); }), Cause::kFileNotFound);
    }
    const auto storage = StructuredStorage::Open(fPath, FileAccess::kRead);
    EXPECT_EQ(TextOf(*storage, "I_000000"), "new image");
    EXPECT_FALSE(storage->HasStream("Temp"));
}

TEST_F(StructuredStorageTest, WrittenStorageIsHeldAlone) {
    {
        const auto writer = StructuredStorage::Open(fPath, FileAccess::kReadWrite);
        EXPECT_NE(CauseOf([&] { StructuredStorage::Open(fPath, FileAccess::kRead); }), std::nullopt);
        EXPECT_NE(CauseOf([&] { StructuredStorage::Open(fPath, FileAccess::kReadWrite); }), std::nullopt);
    }
    const auto reader = StructuredStorage::Open(fPath, FileAccess::kRead);
    const auto second = StructuredStorage::Open(fPath, FileAccess::kRead);
    EXPECT_NE(CauseOf([&] { StructuredStorage::Open(fPath, FileAccess::kReadWrite); }), std::nullopt);
    EXPECT_EQ(TextOf(*second, "I_000000"), "first image");
}

TEST_F(StructuredStorageTest, WhatIsNoStorage) {
    const std::string text = fFolder.WriteFile("text", "no storage, although as long as the header of one");
    const std::string missing = fFolder.PathOf("missing.stg");
    const auto failure = FailureOf([&] { StructuredStorage::Open(text, FileAccess::kRead); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->GetFileName(), text);
    EXPECT_EQ(CauseOf([&] { StructuredStorage::Open(missing, FileAccess::kRead); }), Cause::kFileNotFound);
}

TEST_F(StructuredStorageTest, NamesThatDoNotFit) {
    const auto storage = StructuredStorage::Open(fPath, FileAccess::kReadWrite);
    const std::string longest(31, 'n');
    storage->CreateStream(longest)->Close();
    EXPECT_TRUE(storage->HasStream(longest));
    for (const std::string& name : {longest + "n", std::string()}) {
        EXPECT_EQ(CauseOf([&] { storage->CreateStream(name); }), Cause::kBadPath);
        EXPECT_EQ(CauseOf([&] { storage->RenameStream("I_000000", name); }), Cause::kBadPath);
    }
    EXPECT_EQ(TextOf(*storage, "I_000000"), "first image");
}

}  // namespace Vantor::Platform
