#include "platform/File.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <numeric>
#include <thread>

#include "platform/MappedFile.h"
#include "tests/support/FileSupport.h"
#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::FailureOf;
using VantorTest::kIsWindows;
using VantorTest::ReadRest;
using VantorTest::TestFolder;
using VantorTest::WriteText;

namespace {

// The ways to hold a file, and what keeps it so.
using Holder = std::shared_ptr<void>;
using Way = Holder (*)(const std::string& path);

Holder Reading(const std::string& path) { return OpenDiskFile(path, FileAccess::kRead); }
Holder Mapping(const std::string& path) { return std::make_shared<MappedFile>(path); }
Holder Writing(const std::string& path) { return OpenDiskFile(path, FileAccess::kReadWrite); }
Holder Creating(const std::string& path) { return CreateDiskFile(path); }

constexpr Way kWays[] = {Reading, Mapping, Writing, Creating};

bool IsReader(Way way) { return way == Reading || way == Mapping; }

}  // namespace

// A writer that finds the DICOMDIR in use must not have emptied it by trying.
TEST(File, ReadersShareAWriterIsAlone) {
    const TestFolder folder;
    const std::string path = folder.PathOf("DICOMDIR");
    for (size_t i = 0; i < std::size(kWays) * std::size(kWays); ++i) {
        const Way first = kWays[i / std::size(kWays)];
        const Way second = kWays[i % std::size(kWays)];
        SCOPED_TRACE(i);
        VantorTest::WriteWholeFile(path, "records");
        Holder holder = first(path);
        EXPECT_EQ(FailureOf([&] { second(path); }),
                  IsReader(first) && IsReader(second) ? "nothing" : path + ": in use by another program");
        holder.reset();
        EXPECT_EQ(VantorTest::ReadWholeFileAsText(path), first == Creating ? "" : "records");
        EXPECT_EQ(FailureOf([&] { second(path); }), "nothing") << "still held";
    }
}

TEST(File, ReadsUpToTheEndAndWritesNothing) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("IMAGE", "0123456789");
    const auto file = OpenDiskFile(path, FileAccess::kRead);
    char buffer[8] = {};
    EXPECT_EQ(file->Read(buffer, 8), 8u);
    EXPECT_EQ(std::string(buffer, 8), "01234567");
    EXPECT_EQ(file->Read(buffer, 8), 2u);
    EXPECT_EQ(file->Read(buffer, 8), 0u);
    EXPECT_EQ(file->GetPosition(), 10);
    file->Seek(int64_t{1} << 32);
    EXPECT_EQ(ReadRest(*file), "") << "and not what 32 bits of the position stand for";
    EXPECT_EQ(file->GetPosition() >> 32, 1);
    file->Seek(3);
    EXPECT_EQ(FailureOf([&] { file->Seek(-1); }), path + ": position outside the file");
    EXPECT_EQ(FailureOf([&] { WriteText(*file, "x"); }), path + ": access denied");
    EXPECT_EQ(FailureOf([&] { file->SetLength(0); }), path + ": access denied");
    EXPECT_EQ(FailureOf([&] { file->Flush(); }), "nothing");
    EXPECT_EQ(ReadRest(*file), "3456789");
}

// What was cut off must not come back when the file grows again: it may be another patient's.
TEST(File, BytesThatNobodyWroteAreZero) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("IMAGE", "0123456789");
    const auto file = OpenDiskFile(path, FileAccess::kReadWrite);
    file->Seek(1);
    WriteText(*file, "xy");
    file->Seek(9);
    file->SetLength(4);
    file->SetLength(6);
    WriteText(*file, "ab");
    file->SetLength(10);
    EXPECT_EQ(FailureOf([&] { file->SetLength(-1); }), path + ": position outside the file");
    file->Seek(12);
    EXPECT_EQ(file->GetLength(), 10) << "seeking alone does not extend";
    WriteText(*file, "c");
    file->Flush();
    file->Close();
    file->Close();
    EXPECT_NE(FailureOf([&] { WriteText(*file, "late"); }), "nothing");
    EXPECT_EQ(ReadRest(*OpenDiskFile(path, FileAccess::kRead)), std::string("0xy3\0\0\0\0\0a\0\0c", 13));
}

TEST(File, RoomSetAsideIsNoLength) {
    const TestFolder folder;
    const std::string path = folder.PathOf("LOOP");
    const auto file = CreateDiskFile(path);
    file->Reserve(100000);
    EXPECT_EQ(file->GetLength(), 0);
    WriteText(*file, "ab");
    file->StartFlush();
    constexpr int64_t kTooMuch = int64_t{1} << 60;
    const std::string failure = FailureOf([&] { file->Reserve(kTooMuch); });
    EXPECT_TRUE(failure == path + ": disk is full" || (kIsWindows && failure == "nothing")) << failure;
    file->Close();
    EXPECT_EQ(VantorTest::ReadWholeFileAsText(path), "ab");
}

TEST(File, LargeTransfersAreWhole) {
    const TestFolder folder;
    std::vector<uint32_t> written(10'000'000);
    std::iota(written.begin(), written.end(), 0);
    const size_t size = written.size() * sizeof(uint32_t);
    const auto file = CreateDiskFile(folder.PathOf("LOOP"));
    file->Write(written.data(), size);
    file->Seek(0);
    std::vector<uint32_t> read(written.size() + 1);
    EXPECT_EQ(file->Read(read.data(), size + 1), size);
    EXPECT_TRUE(std::equal(written.begin(), written.end(), read.begin()));
}

// A pipe in a folder of exam files, with nobody at its other end, must not stop the scan either.
TEST(File, WhatCannotBeOpened) {
    const TestFolder folder;
    const std::string missing = folder.PathOf("MISSING");
    const std::string pipe = folder.PathOf("PIPE");
    ASSERT_TRUE(kIsWindows || std::system(("mkfifo '" + pipe + "'").c_str()) == 0);
    const std::pair<std::string, std::string> cases[] = {
        {folder.PathOf("NOFOLDER/FILE"), "path not found or not usable"},
        {folder.WriteFile("FILE", "x") + "/FILE", "path not found or not usable"},
        {folder.MakeFolder("IMAGES"), "access denied"},
        {kIsWindows ? "NUL" : "/dev/zero", "access denied"},
        {kIsWindows ? folder.GetPath() : pipe, "access denied"},
    };
    for (const Way way : kWays) {
        for (const auto& [path, cause] : cases) {
            EXPECT_EQ(FailureOf([&, &path = path] { way(path); }), path + ": " + cause);
        }
        EXPECT_EQ(FailureOf([&] { way(missing); }),
                  way == Creating ? "nothing" : missing + ": file not found");
    }
}

// Two writers count up, in the file and, where the system replaces a file that is open, in a new one put in
// its place. Whoever has waited must get the file that is there, or his count is lost.
TEST(File, WritersTakeTurns) {
    constexpr int kTurns = 1000;
    const TestFolder folder;
    const std::string path = folder.WriteFile("COUNTER", "0");
    const auto countUp = [&](const std::string& neighbour) {
        for (int done = 0; done < kTurns;) {
            try {
                const auto file = OpenDiskFile(path, FileAccess::kReadWrite);
                const std::string next = std::to_string(std::stoi(ReadRest(*file)) + 1);
                if (kIsWindows || done % 2 == 0) {
                    file->Seek(0);
                    WriteText(*file, next);
                } else {
                    VantorTest::WriteWholeFile(neighbour, next);
                    std::filesystem::rename(neighbour, path);
                }
                ++done;
            } catch (const FileException& failure) {
                ASSERT_EQ(failure.GetCause(), FileException::Cause::kSharingViolation) << failure.what();
                std::this_thread::yield();
            }
        }
    };
    auto other = std::async(std::launch::async, countUp, folder.PathOf("NEW2"));
    countUp(folder.PathOf("NEW1"));
    other.get();
    EXPECT_EQ(VantorTest::ReadWholeFileAsText(path), std::to_string(2 * kTurns));
}

// The limit stands for a 32-bit process, where only views smaller than the file may be had.
TEST(MappedFile, ShowsOneViewAtATime) {
    const TestFolder folder;
    const std::string content = std::string(20'000, 'x') + "y";
    MappedFile file(folder.WriteFile("IMAGE", content));
    MappedFile empty(folder.WriteFile("EMPTY", ""));
    // The file, the limit (0 for none), the size asked for, and whether it is had.
    const std::tuple<MappedFile&, int64_t, int64_t, bool> cases[] = {
        {file, 0, 20'001, true}, {file, 0, 5, true},       {file, 0, 0, false},
        {file, 5, 5, true},      {file, 5, 6, false},      {file, 0, 6, true},
        {file, 0, -1, false},    {file, 0, 20'002, false}, {file, 0, int64_t{1} << 62, false},
        {empty, 0, 0, false},    {empty, 0, 1, false}};
    for (const auto& [mapped, limit, size, isMapped] : cases) {
        MappedFile::LimitViewSizeForTesting(limit);
        EXPECT_EQ(mapped.MapView(size), isMapped) << size;
        ASSERT_EQ(mapped.GetView() != nullptr, isMapped) << "the former view is gone in any case";
        ASSERT_EQ(mapped.GetViewSize(), isMapped ? size : 0);
        EXPECT_TRUE(std::equal(mapped.GetView(), mapped.GetView() + mapped.GetViewSize(), content.begin()));
    }
}

// Where the words do not say what happened, the number must.
TEST(FileException, SaysWhatHappened) {
    const FileException failure(FileException::Cause::kGeneric, 87, "C:\\x");
    EXPECT_STREQ(failure.WithFileName("image").what(), "image: file operation failed (system error 87)");
}

}  // namespace Vantor::Platform
