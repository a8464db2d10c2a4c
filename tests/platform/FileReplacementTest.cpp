#include "platform/FileReplacement.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>
#include <tuple>

#include "platform/FileSystem.h"
#include "tests/support/FileSupport.h"
#include "tests/support/TestClock.h"
#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::FailureOf;
using VantorTest::kIsWindows;
using VantorTest::ReadRest;
using VantorTest::TestClock;
using VantorTest::TestFolder;
using Names = std::vector<std::string>;

namespace fs = std::filesystem;

namespace {

const std::string kInUse = ": in use by another program";

std::string TextAt(const std::string& path) { return ReadRest(*OpenDiskFile(path, FileAccess::kRead)); }
FileMark MarkAt(const std::string& path) { return OpenDiskFile(path, FileAccess::kRead)->GetMark(); }
uint64_t TimeAt(const std::string& path) {
    const FileTime time = GetLastWriteTime(path).value_or(FileTime());
    return uint64_t{time.fHigh} << 32 | time.fLow;
}

FileMark Replace(const std::string& path, std::string_view content, File* held = nullptr) {
    FileReplacement replacement(path);
    VantorTest::WriteText(replacement.GetFile(), content);
    return replacement.PutInPlace(held);
}

}  // namespace

// A medium with names in lower case must not get a second DICOMDIR, and people who could read the old one
// can read the new one.
TEST(FileReplacement, TakesThePlaceAndTheRightsOfTheOldFile) {
    const TestFolder folder;
    const std::string path = folder.PathOf("DICOMDIR");
    const FileMark first = Replace(path, "where nothing was");
    EXPECT_EQ(MarkAt(path), first);
    for (const char* const old : {"DICOMDIR", "dicomdir"}) {
        fs::remove(path);
        const std::string model = folder.WriteFile(old, "longer than the new one");
        fs::permissions(model, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
        const fs::perms rights = fs::status(model).permissions();
        const auto held = OpenDiskFileToReplace(path);
        const FileMark mark = Replace(path, "new", held.get());
        EXPECT_EQ(MarkAt(path), mark);
        EXPECT_EQ(TextAt(path), "new");
        EXPECT_EQ(fs::status(model).permissions(), rights) << old;
        EXPECT_TRUE(IsSameFile(path, model));
    }
}

// Other machines' clocks are wrong, and volumes keep times in steps of up to two seconds.
TEST(FileReplacement, IsLaterThanTheOldFile) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "old");
    for (const int hoursAhead : {-1, 0, 0, 1000, 0, 0}) {
        fs::last_write_time(path, fs::last_write_time(path) + std::chrono::hours(hoursAhead));
        const uint64_t before = TimeAt(path);
        Replace(path, "new");
        EXPECT_GT(TimeAt(path), before) << hoursAhead;
    }
}

// A process that waits for another one's update must not start from what was there before it.
TEST(FileReplacement, HoldsThePlaceUntilTheHolderIsGone) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "old");
    const std::string sameFile = folder.MakeFolder("SUB") + "/../dicomdir";
    const auto expectHeld = [&](const char* when) {
        for (const std::string& spelled : {path, sameFile}) {
            EXPECT_EQ(FailureOf([&] { OpenDiskFileToReplace(spelled); }), spelled + kInUse) << when;
        }
    };
    auto held = OpenDiskFileToReplace(path);
    VantorTest::WriteText(FileReplacement(path).GetFile(), "given up");
    expectHeld("given up");
    EXPECT_EQ(ReadRest(*held), "old");
    Replace(path, "new", held.get());
    expectHeld("replaced");
    EXPECT_EQ(TextAt(path), "new") << "readers need not wait any longer";
    held.reset();
    held = OpenDiskFileToReplace(sameFile);
    held->Close();
    expectHeld("closed, not given back");
    held.reset();
    EXPECT_EQ(ReadRest(*OpenDiskFileToReplace(path)), "new");
    EXPECT_EQ(folder.ListFiles(), Names{"DICOMDIR"}) << "what was given up and what claimed it are gone";
}

// Several processes add to one DICOMDIR and read it: all of it, at any moment, and nothing is lost.
TEST(FileReplacement, ManyAtOnceLoseNothing) {
    constexpr int kTurns = 25;
    const TestFolder folder;
    const std::string rest(100'000, ' ');
    const std::string path = folder.WriteFile("COUNTER", "1000" + rest);
    const auto countUp = [&] {
        for (int turn = 0; turn < kTurns; std::this_thread::yield()) {
            const std::string failure = FailureOf([&] {
                EXPECT_EQ(OpenDiskFile(path, FileAccess::kRead)->GetLength(), 100'004);
                const auto held = OpenDiskFileToReplace(path);
                Replace(path, std::to_string(std::stoi(ReadRest(*held)) + 1) + rest, held.get());
                ++turn;
            });
            ASSERT_TRUE(failure == "nothing" || failure == path + kInUse) << failure;
        }
    };
    std::vector<std::thread> threads(4);
    for (std::thread& thread : threads) thread = std::thread(countUp);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::stoi(TextAt(path)), 1000 + 4 * kTurns);
    EXPECT_EQ(folder.ListFiles(), Names{"COUNTER"});
}

// Windows replaces no file that is open, so a viewer that reads the DICOMDIR is waited for.
// Of two programs that make the same new file, the second one must not take the first one's away.
TEST(FileReplacement, DoesNotReplaceWhatSomebodyHasMadeMeanwhile) {
    const TestFolder folder;
    const std::string path = folder.PathOf("DICOMDIR");
    FileReplacement late(path);
    Replace(path, "made meanwhile");
    EXPECT_EQ(FailureOf([&] { late.PutInPlace(nullptr); }), path + kInUse);
    EXPECT_EQ(TextAt(path), "made meanwhile");
}

// What a program that was ended has left behind is no file of the medium.
TEST(FileReplacement, TellsWhatIsNotFinished) {
    const TestFolder folder;
    const std::string path = folder.PathOf("DICOMDIR");
    const FileReplacement replacement(path);
    for (const std::string& name : folder.ListFiles()) EXPECT_TRUE(IsUnfinished(folder.PathOf(name))) << name;
    EXPECT_FALSE(IsUnfinished(path));
    const std::pair<const char*, bool> names[] = {
        {"VNT1A.tmp", true},  {"vnt0123456789abc.TMP", true}, {"VNT0123456789ABCD.tmp", false},
        {"VNT.tmp", false},   {"VNT 1.tmp", false},           {"VNT1.dcm", false},
        {"AVNT1.tmp", false}, {"VNT1.tmp.dcm", false}};
    for (const auto& [name, isUnfinished] : names) {
        EXPECT_EQ(IsUnfinished(folder.PathOf(name)), isUnfinished) << name;
    }
}

TEST(FileReplacement, WaitsForReaders) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "old");
    auto reader = OpenDiskFile(path, FileAccess::kRead);
    TestClock clock;
    EXPECT_EQ(FailureOf([&] { Replace(path, "new"); }), kIsWindows ? path + kInUse : "nothing");
    EXPECT_EQ(clock.Now().time_since_epoch() >= std::chrono::seconds(10), kIsWindows);
    EXPECT_EQ(TextAt(path), kIsWindows ? "old" : "new");
    EXPECT_EQ(folder.ListFiles(), Names{"DICOMDIR"});
    clock.fAtRest = [&] { reader.reset(); };
    Replace(path, "newer");
    EXPECT_EQ(TextAt(path), "newer");
}

// Not every system makes links.
TEST(FileReplacement, FollowsLinks) {
    const TestFolder folder;
    const std::string file = folder.WriteFile("SUB/FILE", "old");
    const std::string link = folder.PathOf("LINK"), dangling = folder.PathOf("DANGLING");
    std::error_code refused;
    fs::create_symlink("LINK2", link, refused);
    if (refused) GTEST_SKIP() << refused.message();
    fs::create_symlink(fs::path("SUB") / "FILE", folder.PathOf("LINK2"));
    fs::create_symlink(fs::path("SUB") / "NONE", dangling);
    fs::create_symlink("LOOP", folder.PathOf("LOOP"));
    const auto held = OpenDiskFileToReplace(link);
    Replace(link, "new", held.get());
    EXPECT_EQ(FailureOf([&] { OpenDiskFileToReplace(file); }), file + kInUse);
    Replace(dangling, "first");
    EXPECT_NE(FailureOf([&] { Replace(folder.PathOf("LOOP"), "x"); }), "nothing");
    EXPECT_EQ(TextAt(file) + TextAt(folder.PathOf("SUB/NONE")), "newfirst");
    EXPECT_TRUE(fs::is_symlink(link) && fs::is_symlink(dangling));
}

TEST(FileReplacement, SaysWhyItIsRefused) {
    const TestFolder folder;
    const std::string denied = ": access denied", bad = ": path not found or not usable";
    const std::string readOnly = folder.WriteFile("READONLY", "old");
    // The path, and why it cannot be opened and replaced.
    std::vector<std::tuple<std::string, std::string, std::string>> cases = {
        {folder.PathOf("NOFOLDER/FILE"), bad, bad},
        {folder.MakeFolder("IMAGES"), denied, denied},
        {folder.PathOf("MISSING"), ": file not found", ""}};
    fs::permissions(readOnly, fs::perms::owner_read);
    // Rights do not bind administrators.
    if (!std::ofstream(readOnly, std::ios::app)) cases.emplace_back(readOnly, denied, denied);
    for (const auto& entry : cases) {
        const std::string& path = std::get<0>(entry);
        const auto expected = [&](const std::string& why) { return why.empty() ? "nothing" : path + why; };
        EXPECT_EQ(FailureOf([&] { OpenDiskFileToReplace(path); }), expected(std::get<1>(entry)));
        EXPECT_EQ(FailureOf([&] { FileReplacement replacement(path); }), expected(std::get<2>(entry)));
    }
    EXPECT_EQ(folder.ListFiles(), Names{"READONLY"});
}

}  // namespace Vantor::Platform
