#include "platform/FileSystem.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <future>
#include <thread>

#include "platform/File.h"
#include "tests/support/FileFailure.h"
#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::CauseOf;
using VantorTest::FailureOf;
using VantorTest::ReadWholeFileAsText;
using VantorTest::TestFolder;
using Cause = FileException::Cause;

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kUnitsPerSecond = 10'000'000;
constexpr uint64_t kSecondsFrom1601To1970 = 11'644'473'600;

uint64_t UnitsOf(const FileTime& time) { return (uint64_t{time.fHigh} << 32) | time.fLow; }

uint64_t NowInUnits() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch).count();
    return (static_cast<uint64_t>(seconds) + kSecondsFrom1601To1970) * kUnitsPerSecond;
}

// A folder on another volume than the test's own; none on a machine that has but one.
class OtherVolume {
  public:
    explicit OtherVolume(const TestFolder& folder) {
        for (const char* candidate : {"/dev/shm", "Z:/dev/shm"}) {
            fPath = fs::path(candidate) / ("vantor-" + fs::path(folder.GetPath()).filename().string());
            std::error_code error;
            if (fs::create_directory(fPath, error) && IsElsewhere(folder)) {
                fIsAvailable = true;
                return;
            }
        }
    }
    ~OtherVolume() {
        std::error_code ignored;
        fs::remove_all(fPath, ignored);
    }
    OtherVolume(const OtherVolume&) = delete;
    OtherVolume& operator=(const OtherVolume&) = delete;

    bool IsAvailable() const { return fIsAvailable; }
    std::string PathOf(const std::string& name) const { return (fPath / name).make_preferred().string(); }

  private:
    bool IsElsewhere(const TestFolder& folder) const {
        std::error_code error;
        fs::create_hard_link(folder.WriteFile("probe", ""), fPath / "probe", error);
        fs::remove(folder.PathOf("probe"));
        fs::remove(fPath / "probe");
        return static_cast<bool>(error);
    }

    fs::path fPath;
    bool fIsAvailable = false;
};

}  // namespace

TEST(LastWriteTime, IsNowForAFileJustWritten) {
    constexpr uint64_t kLeeway = 10 * kUnitsPerSecond;
    const TestFolder folder;
    const auto time = GetLastWriteTime(folder.WriteFile("DICOMDIR", "x"));
    ASSERT_TRUE(time);
    EXPECT_GT(UnitsOf(*time), NowInUnits() - kLeeway);
    EXPECT_LT(UnitsOf(*time), NowInUnits() + kLeeway);
}

TEST(LastWriteTime, CountsInUnitsOf100Nanoseconds) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "x");
    const auto start = fs::last_write_time(path) - std::chrono::hours(1000);
    fs::last_write_time(path, start);
    const auto before = GetLastWriteTime(path);
    fs::last_write_time(path, start + std::chrono::seconds(900));
    const auto after = GetLastWriteTime(path);
    ASSERT_TRUE(before && after);
    EXPECT_EQ(UnitsOf(*after) - UnitsOf(*before), 900 * kUnitsPerSecond);
}

// Directories notice another program's change by the time alone, so less than a second must show.
TEST(LastWriteTime, ShowsFractionsOfASecond) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "x");
    const auto before = GetLastWriteTime(path);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    VantorTest::WriteWholeFile(path, "y");
    const auto after = GetLastWriteTime(path);
    ASSERT_TRUE(before && after);
    EXPECT_FALSE(*before == *after);
    EXPECT_GT(UnitsOf(*after), UnitsOf(*before));
}

TEST(LastWriteTime, OfFoldersAndOfNothing) {
    const TestFolder folder;
    EXPECT_TRUE(GetLastWriteTime(folder.GetPath()));
    EXPECT_FALSE(GetLastWriteTime(folder.PathOf("MISSING")));
    EXPECT_FALSE(GetLastWriteTime(folder.PathOf("MISSING/FILE")));
    EXPECT_FALSE(GetLastWriteTime(""));
}

TEST(FileSystem, TellsFilesFromFolders) {
    const TestFolder folder;
    const std::string file = folder.WriteFile("FILE", "x");
    EXPECT_TRUE(PathExists(file));
    EXPECT_FALSE(IsFolder(file));
    EXPECT_TRUE(PathExists(folder.GetPath()));
    EXPECT_TRUE(IsFolder(folder.GetPath()));
    EXPECT_TRUE(IsFolder(folder.GetPath() + "/"));
    EXPECT_FALSE(PathExists(folder.PathOf("MISSING")));
    EXPECT_FALSE(IsFolder(folder.PathOf("MISSING")));
    EXPECT_FALSE(PathExists(""));
}

TEST(FileSystem, SameFileHoweverSpelled) {
    const TestFolder folder;
    const std::string file = folder.WriteFile("FILE", "x");
    const std::string twin = folder.WriteFile("TWIN", "x");
    folder.MakeFolder("SUB");
    EXPECT_TRUE(IsSameFile(file, file));
    EXPECT_TRUE(IsSameFile(file, folder.PathOf("SUB/../FILE")));
    EXPECT_TRUE(IsSameFile(file, folder.PathOf("file")));
    EXPECT_FALSE(IsSameFile(file, twin));
    EXPECT_FALSE(IsSameFile(folder.PathOf("MISSING"), folder.PathOf("MISSING")));
    const auto holder = OpenDiskFile(file, FileAccess::kReadWrite);
    EXPECT_TRUE(IsSameFile(file, folder.PathOf("./FILE"))) << "a file that is in use can be compared";
}

TEST(RemoveFile, RemovesFilesOnly) {
    const TestFolder folder;
    const std::string file = folder.WriteFile("FILE", "x");
    RemoveFile(file);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(CauseOf([&] { RemoveFile(file); }), Cause::kFileNotFound);
    EXPECT_EQ(CauseOf([&] { RemoveFile(folder.PathOf("MISSING/FILE")); }), Cause::kBadPath);
    const std::string sub = folder.MakeFolder("SUB");
    EXPECT_EQ(CauseOf([&] { RemoveFile(sub); }), Cause::kAccessDenied);
    EXPECT_TRUE(fs::is_directory(sub));
}

TEST(MoveFileReplacing, PutsTheFileInPlace) {
    const TestFolder folder;
    const std::string source = folder.WriteFile("NEW", "new");
    const std::string target = folder.WriteFile("SUB/DICOMDIR", "old");
    MoveFileReplacing(source, target);
    EXPECT_EQ(ReadWholeFileAsText(target), "new");
    EXPECT_EQ(folder.ListFiles(), std::vector<std::string>{"SUB/DICOMDIR"});
    MoveFileReplacing(target, folder.PathOf("ELSEWHERE"));
    EXPECT_EQ(folder.ListFiles(), std::vector<std::string>{"ELSEWHERE"});
}

TEST(MoveFileReplacing, FailuresLeaveBothFiles) {
    const TestFolder folder;
    const std::string source = folder.WriteFile("NEW", "new");
    const std::string target = folder.WriteFile("DICOMDIR", "old");
    folder.WriteFile("SUB/FILE", "x");
    const struct {
        std::string fFrom;
        std::string fTo;
        Cause fCause;
        std::string fNamed;
    } cases[] = {
        {folder.PathOf("MISSING"), target, Cause::kFileNotFound, folder.PathOf("MISSING")},
        {folder.PathOf("NOFOLDER/X"), target, Cause::kBadPath, folder.PathOf("NOFOLDER/X")},
        {source, folder.PathOf("NOFOLDER/X"), Cause::kBadPath, folder.PathOf("NOFOLDER/X")},
        {source, folder.PathOf("SUB"), Cause::kAccessDenied, folder.PathOf("SUB")},
    };
    for (const auto& [from, to, cause, named] : cases) {
        const auto failure = FailureOf([&, &from = from, &to = to] { MoveFileReplacing(from, to); });
        ASSERT_TRUE(failure) << from << " to " << to;
        EXPECT_EQ(failure->GetCause(), cause) << failure->what();
        EXPECT_EQ(failure->GetFileName(), named);
    }
    EXPECT_EQ(folder.ListFiles(), (std::vector<std::string>{"DICOMDIR", "NEW", "SUB/FILE"}));
    EXPECT_EQ(ReadWholeFileAsText(source), "new");
    EXPECT_EQ(ReadWholeFileAsText(target), "old");
}

// Windows leaves a file in place that somebody has open; elsewhere the open one lives on without a name.
TEST(MoveFileReplacing, HeldTargetIsReplacedWholeOrNotAtAll) {
    const TestFolder folder;
    const std::string source = folder.WriteFile("NEW", "new");
    const std::string target = folder.WriteFile("DICOMDIR", "old");
    const auto reader = OpenDiskFile(target, FileAccess::kRead);
    const auto failure = FailureOf([&] { MoveFileReplacing(source, target); });
    char text[4] = {};
    EXPECT_EQ(reader->Read(text, sizeof text), 3u);
    EXPECT_STREQ(text, "old");
    reader->Close();
    if (failure) {
        EXPECT_TRUE(failure->GetCause() == Cause::kAccessDenied ||
                    failure->GetCause() == Cause::kSharingViolation);
        EXPECT_EQ(ReadWholeFileAsText(source), "new");
        EXPECT_EQ(ReadWholeFileAsText(target), "old");
    } else {
        EXPECT_FALSE(fs::exists(source));
        EXPECT_EQ(ReadWholeFileAsText(target), "new");
    }
}

// Whoever has waited for a writer must get the file that the writer put in place, not the one it replaced:
// what is written there would be lost.
TEST(MoveFileReplacing, NextWriterGetsTheNewFile) {
    constexpr int kTurns = 1000;
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "0");
    if (CauseOf([&] {
            const auto holder = OpenDiskFile(path, FileAccess::kReadWrite);
            MoveFileReplacing(folder.WriteFile("NEW", "0"), path);
        })) {
        GTEST_SKIP() << "a file that is open is not replaced here";
    }
    const auto countUp = [&](const std::string& neighbour) {
        for (int done = 0; done < kTurns;) {
            try {
                const auto file = OpenDiskFile(path, FileAccess::kReadWrite);
                std::string count(20, '\0');
                count.resize(file->Read(count.data(), count.size()));
                VantorTest::WriteWholeFile(neighbour, std::to_string(std::stoi(count) + 1));
                fs::rename(neighbour, path);
                ++done;
            } catch (const FileException& failure) {
                ASSERT_EQ(failure.GetCause(), Cause::kSharingViolation) << failure.what();
                std::this_thread::yield();
            }
        }
    };
    auto second = std::async(std::launch::async, countUp, folder.PathOf("NEW2"));
    auto third = std::async(std::launch::async, countUp, folder.PathOf("NEW3"));
    countUp(folder.PathOf("NEW1"));
    second.get();
    third.get();
    EXPECT_EQ(ReadWholeFileAsText(path), std::to_string(3 * kTurns));
}

// A directory that was written as a temporary file must stay readable for the people who could read it.
TEST(MoveFileReplacing, KeepsTheRightsOfTheReplacedFile) {
    const TestFolder folder;
    const std::string target = folder.WriteFile("DICOMDIR", "old");
    fs::permissions(target, fs::perms::owner_all | fs::perms::group_read | fs::perms::others_read);
    const fs::perms rights = fs::status(target).permissions();
    const std::string source = MakeTemporaryFile("VNT");
    MoveFileReplacing(source, target);
    EXPECT_EQ(fs::status(target).permissions(), rights);
}

TEST(MoveFileReplacing, AcrossVolumes) {
    constexpr size_t kSeveralBuffers = 1'000'003;
    const TestFolder folder;
    const OtherVolume other(folder);
    if (!other.IsAvailable()) {
        GTEST_SKIP() << "one volume only";
    }
    const std::string content = std::string(kSeveralBuffers - 1, 'x') + "y";
    const std::string source = other.PathOf("NEW");
    VantorTest::WriteWholeFile(source, content);
    fs::last_write_time(source, fs::last_write_time(source) - std::chrono::hours(1000));
    const auto time = GetLastWriteTime(source);
    const std::string target = folder.WriteFile("DICOMDIR", "old");
    MoveFileReplacing(source, target);
    EXPECT_FALSE(fs::exists(source));
    EXPECT_EQ(folder.ListFiles(), std::vector<std::string>{"DICOMDIR"}) << "no neighbour is left";
    EXPECT_TRUE(ReadWholeFileAsText(target) == content);
    EXPECT_EQ(GetLastWriteTime(target), time) << "as after a move inside the volume";
}

TEST(MoveFileReplacing, FailureAcrossVolumesLeavesBothFiles) {
    const TestFolder folder;
    const OtherVolume other(folder);
    if (!other.IsAvailable()) {
        GTEST_SKIP() << "one volume only";
    }
    const std::string source = other.PathOf("NEW");
    VantorTest::WriteWholeFile(source, "new");
    folder.WriteFile("SUB/FILE", "x");
    EXPECT_EQ(CauseOf([&] { MoveFileReplacing(source, folder.PathOf("SUB")); }), Cause::kAccessDenied);
    EXPECT_EQ(CauseOf([&] { MoveFileReplacing(source, folder.PathOf("NOFOLDER/X")); }), Cause::kBadPath);
    {
        const auto writer = OpenDiskFile(source, FileAccess::kReadWrite);
        const auto failure = FailureOf([&] { MoveFileReplacing(source, folder.PathOf("TARGET")); });
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->GetCause(), Cause::kSharingViolation) << failure->what();
    }
    EXPECT_EQ(folder.ListFiles(), std::vector<std::string>{"SUB/FILE"});
    EXPECT_EQ(ReadWholeFileAsText(source), "new");
}

TEST(MakeTemporaryFile, IsNewEmptyAndNamedAsAsked) {
    const std::string first = MakeTemporaryFile("VNT");
    const std::string second = MakeTemporaryFile("VNT");
    EXPECT_NE(first, second);
    for (const std::string& path : {first, second}) {
        EXPECT_EQ(fs::file_size(path), 0u);
        EXPECT_EQ(fs::path(path).filename().string().substr(0, 3), "VNT");
        RemoveFile(path);
    }
}

}  // namespace Vantor::Platform
