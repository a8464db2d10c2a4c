#include "platform/File.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <thread>

#include "platform/MappedFile.h"
#include "tests/support/FileFailure.h"
#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::Bytes;
using VantorTest::CauseOf;
using VantorTest::FailureOf;
using VantorTest::TestFolder;
using Cause = FileException::Cause;

namespace {

bool IsPosix() { return std::filesystem::path::preferred_separator == '/'; }

std::string ReadRest(File& file) {
    std::string text(1000, '?');
    text.resize(file.Read(text.data(), text.size()));
    return text;
}

void WriteText(File& file, std::string_view text) { file.Write(text.data(), text.size()); }

// Ways to have a file, and what keeps it so.
using Keeper = std::shared_ptr<void>;
using Way = std::function<Keeper(const std::string& path)>;

Keeper Reading(const std::string& path) { return OpenDiskFile(path, FileAccess::kRead); }
Keeper Writing(const std::string& path) { return OpenDiskFile(path, FileAccess::kReadWrite); }
Keeper Creating(const std::string& path) { return CreateDiskFile(path); }
Keeper Mapping(const std::string& path) { return std::make_shared<MappedFile>(path); }

struct SharingCase {
    const char* fName;
    Way fFirst;
    Way fSecond;
    bool fIsShared;
};

class Sharing : public testing::TestWithParam<SharingCase> {};

}  // namespace

TEST_P(Sharing, SecondHolder) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("IMAGE", "content");
    const SharingCase& sharing = GetParam();
    {
        const Keeper holder = sharing.fFirst(path);
        const auto failure = FailureOf([&] { sharing.fSecond(path); });
        EXPECT_EQ(!failure, sharing.fIsShared);
        if (failure) {
            EXPECT_EQ(failure->GetCause(), Cause::kSharingViolation);
            EXPECT_EQ(failure->GetFileName(), path);
            EXPECT_NE(failure->GetOsError(), 0);
        }
    }
    EXPECT_EQ(CauseOf([&] { sharing.fSecond(path); }), std::nullopt)
        << "still held after the first holder has gone";
}

INSTANTIATE_TEST_SUITE_P(Holders, Sharing,
                         testing::Values(SharingCase{"ReadRead", Reading, Reading, true},
                                         SharingCase{"ReadMap", Reading, Mapping, true},
                                         SharingCase{"MapRead", Mapping, Reading, true},
                                         SharingCase{"ReadWrite", Reading, Writing, false},
                                         SharingCase{"WriteRead", Writing, Reading, false},
                                         SharingCase{"WriteWrite", Writing, Writing, false},
                                         SharingCase{"CreateRead", Creating, Reading, false},
                                         SharingCase{"CreateWrite", Creating, Writing, false},
                                         SharingCase{"CreateCreate", Creating, Creating, false},
                                         SharingCase{"ReadCreate", Reading, Creating, false},
                                         SharingCase{"MapWrite", Mapping, Writing, false},
                                         SharingCase{"MapCreate", Mapping, Creating, false},
                                         SharingCase{"WriteMap", Writing, Mapping, false}),
                         [](const auto& sharing) { return sharing.param.fName; });

// A writer that finds the DICOMDIR in use must not have emptied it by trying.
TEST(File, CreateLeavesHeldFileAsItIs) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "records");
    {
        const auto reader = OpenDiskFile(path, FileAccess::kRead);
        EXPECT_EQ(CauseOf([&] { CreateDiskFile(path); }), Cause::kSharingViolation);
        EXPECT_EQ(ReadRest(*reader), "records");
    }
    CreateDiskFile(path)->Close();
    EXPECT_EQ(VantorTest::ReadWholeFileAsText(path), "");
}

TEST(File, CloseEndsHolding) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("IMAGE", "content");
    const auto writer = OpenDiskFile(path, FileAccess::kReadWrite);
    writer->Close();
    writer->Close();
    EXPECT_EQ(ReadRest(*OpenDiskFile(path, FileAccess::kRead)), "content");
    EXPECT_NE(CauseOf([&] { WriteText(*writer, "late"); }), std::nullopt);
    EXPECT_NE(CauseOf([&] { ReadRest(*writer); }), std::nullopt);
}

TEST(File, ReadsUpToTheEnd) {
    const TestFolder folder;
    const auto file = OpenDiskFile(folder.WriteFile("IMAGE", "0123456789"), FileAccess::kRead);
    char buffer[8] = {};
    EXPECT_EQ(file->Read(buffer, 8), 8u);
    EXPECT_EQ(std::string(buffer, 8), "01234567");
    EXPECT_EQ(file->GetPosition(), 8);
    EXPECT_EQ(file->Read(buffer, 8), 2u);
    EXPECT_EQ(file->Read(buffer, 8), 0u);
    EXPECT_EQ(file->GetPosition(), 10);
    file->Seek(3);
    EXPECT_EQ(ReadRest(*file), "3456789");
    EXPECT_EQ(file->GetLength(), 10);
}

// Cine loops have more bytes than 32 bits count.
TEST(File, PositionsBeyondFourGigabytes) {
    constexpr int64_t kFiveGigabytes = int64_t{5} << 30;
    const TestFolder folder;
    const auto file = OpenDiskFile(folder.WriteFile("IMAGE", "0123456789"), FileAccess::kRead);
    file->Seek(kFiveGigabytes);
    EXPECT_EQ(file->GetPosition(), kFiveGigabytes);
    EXPECT_EQ(ReadRest(*file), "");
    EXPECT_EQ(file->GetLength(), 10);
}

TEST(File, BytesBetweenEndAndPositionReadAsZero) {
    const TestFolder folder;
    const std::string path = folder.PathOf("NEW");
    const auto file = CreateDiskFile(path);
    WriteText(*file, "ab");
    file->Seek(5);
    EXPECT_EQ(file->GetLength(), 2) << "seeking alone does not extend";
    WriteText(*file, "cd");
    EXPECT_EQ(file->GetPosition(), 7);
    file->Seek(0);
    EXPECT_EQ(ReadRest(*file), std::string("ab\0\0\0cd", 7));
}

// What was cut off must not come back when the file grows again: it may be another patient's.
TEST(File, SetLengthExtendsWithZeros) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("IMAGE", "0123456789");
    const auto file = OpenDiskFile(path, FileAccess::kReadWrite);
    file->Seek(4);
    file->SetLength(3);
    EXPECT_EQ(file->GetPosition(), 4) << "the position stays";
    file->SetLength(6);
    EXPECT_EQ(file->GetLength(), 6);
    file->Seek(0);
    EXPECT_EQ(ReadRest(*file), std::string("012\0\0\0", 6));
    file->SetLength(2);
    WriteText(*file, "x");
    file->Close();
    EXPECT_EQ(VantorTest::ReadWholeFileAsText(path), std::string("01\0\0\0\0x", 7));
}

TEST(File, WritesOverAndBehind) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("IMAGE", "0123456789");
    {
        const auto file = OpenDiskFile(path, FileAccess::kReadWrite);
        file->Seek(8);
        WriteText(*file, "abcd");
        WriteText(*file, "");
        file->Flush();
    }
    EXPECT_EQ(VantorTest::ReadWholeFileAsText(path), "01234567abcd");
}

TEST(File, LargeTransfersAreWhole) {
    constexpr size_t kSize = 40'000'001;
    const TestFolder folder;
    Bytes written(kSize);
    for (size_t i = 0; i < kSize; ++i) {
        written[i] = static_cast<uint8_t>(i * 2654435761u >> 24);
    }
    const auto file = CreateDiskFile(folder.PathOf("LOOP"));
    file->Write(written.data(), written.size());
    Bytes read(kSize + 1);
    file->Seek(0);
    EXPECT_EQ(file->Read(read.data(), read.size()), kSize);
    read.pop_back();
    EXPECT_TRUE(read == written);
}

TEST(File, NegativePositionsAreRefused) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("IMAGE", "0123");
    const auto file = OpenDiskFile(path, FileAccess::kReadWrite);
    file->Seek(1);
    EXPECT_EQ(CauseOf([&] { file->Seek(-1); }), Cause::kBadSeek);
    EXPECT_EQ(CauseOf([&] { file->SetLength(-1); }), Cause::kBadSeek);
    EXPECT_EQ(file->GetPosition(), 1);
    EXPECT_EQ(file->GetLength(), 4);
}

TEST(File, OpenedForReadingIsNotWritten) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("IMAGE", "0123");
    const auto file = OpenDiskFile(path, FileAccess::kRead);
    EXPECT_EQ(CauseOf([&] { WriteText(*file, "x"); }), Cause::kAccessDenied);
    EXPECT_EQ(CauseOf([&] { file->SetLength(0); }), Cause::kAccessDenied);
    EXPECT_EQ(CauseOf([&] { file->Flush(); }), std::nullopt);
    EXPECT_EQ(ReadRest(*file), "0123");
}

TEST(File, WhatCannotBeOpened) {
    const TestFolder folder;
    folder.MakeFolder("IMAGES");
    folder.WriteFile("FILE", "x");
    const struct {
        std::string fPath;
        Way fWay;
        Cause fCause;
    } cases[] = {
        {folder.PathOf("MISSING"), Reading, Cause::kFileNotFound},
        {folder.PathOf("MISSING"), Writing, Cause::kFileNotFound},
        {folder.PathOf("MISSING"), Mapping, Cause::kFileNotFound},
        {folder.PathOf("NOFOLDER/FILE"), Reading, Cause::kBadPath},
        {folder.PathOf("NOFOLDER/FILE"), Creating, Cause::kBadPath},
        {folder.PathOf("NOFOLDER/FILE"), Mapping, Cause::kBadPath},
        {folder.PathOf("FILE/FILE"), Reading, Cause::kBadPath},
        {folder.PathOf("FILE/FILE"), Creating, Cause::kBadPath},
        {folder.PathOf("IMAGES"), Reading, Cause::kAccessDenied},
        {folder.PathOf("IMAGES"), Writing, Cause::kAccessDenied},
        {folder.PathOf("IMAGES"), Creating, Cause::kAccessDenied},
        {folder.PathOf("IMAGES"), Mapping, Cause::kAccessDenied},
    };
    for (const auto& [path, way, cause] : cases) {
        const auto failure = FailureOf([&, &way = way, &path = path] { way(path); });
        ASSERT_TRUE(failure) << path;
        EXPECT_EQ(failure->GetCause(), cause) << failure->what();
        EXPECT_EQ(failure->GetFileName(), path);
        EXPECT_NE(failure->GetOsError(), 0);
    }
    EXPECT_EQ(folder.ListFiles(), std::vector<std::string>{"FILE"}) << "nothing was made by trying";
}

TEST(File, DevicesAreNoFiles) {
    const std::string device = IsPosix() ? "/dev/zero" : "NUL";
    for (const Way& way : {Way(Reading), Way(Writing), Way(Creating), Way(Mapping)}) {
        EXPECT_EQ(CauseOf([&] { way(device); }), Cause::kAccessDenied);
    }
}

// A pipe in a folder of exam files, with nobody at its other end, must not stop the scan.
TEST(File, PipesAreNoFilesAndNotWaitedFor) {
    if (!IsPosix()) {
        GTEST_SKIP() << "pipes have no names in folders here";
    }
    const TestFolder folder;
    const std::string pipe = folder.PathOf("PIPE");
    ASSERT_EQ(std::system(("mkfifo '" + pipe + "'").c_str()), 0);
    for (const Way& way : {Way(Reading), Way(Writing), Way(Creating), Way(Mapping)}) {
        EXPECT_EQ(CauseOf([&] { way(pipe); }), Cause::kAccessDenied);
    }
}

// Two parts of a program that write in turn: no byte of the one may end up in the time of the other.
TEST(File, WritersTakeTurns) {
    constexpr int kTurns = 200;
    const TestFolder folder;
    const std::string path = folder.WriteFile("COUNTER", "");
    const auto countUp = [&] {
        for (int done = 0; done < kTurns;) {
            try {
                const auto file = OpenDiskFile(path, FileAccess::kReadWrite);
                const std::string before = ReadRest(*file);
                const std::string after = std::to_string((before.empty() ? 0 : std::stoi(before)) + 1);
                file->Seek(0);
                WriteText(*file, after);
                ++done;
            } catch (const FileException& failure) {
                ASSERT_EQ(failure.GetCause(), Cause::kSharingViolation) << failure.what();
                std::this_thread::yield();
            }
        }
    };
    auto other = std::async(std::launch::async, countUp);
    countUp();
    other.get();
    EXPECT_EQ(VantorTest::ReadWholeFileAsText(path), std::to_string(2 * kTurns));
}

}  // namespace Vantor::Platform
