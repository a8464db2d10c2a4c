#include "platform/FileReplacement.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>
#include <tuple>

#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "tests/support/FileSupport.h"
#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::FailureOf;
using VantorTest::kIsWindows;
using VantorTest::ReadRest;
using VantorTest::TestFolder;
using Names = std::vector<std::string>;
using Cause = FileException::Cause;

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

// Runs a step once nobody else has the file.
template <typename Step>
void WhenFree(Step step) {
    for (;; std::this_thread::yield()) {
        try {
            step();
            return;
        } catch (const FileException& failure) {
            ASSERT_EQ(failure.GetCause(), Cause::kSharingViolation) << failure.what();
        }
    }
}

// Takes no time over a rest.
class HastyClock final : public Clock {
  public:
    explicit HastyClock(std::function<void()> atRest) : fAtRest(std::move(atRest)), fReplaced(*this) {}
    std::chrono::steady_clock::time_point Now() override { return fNow; }
    std::optional<LocalTime> GetLocalTime() override { return std::nullopt; }
    void Sleep(std::chrono::milliseconds duration) override {
        fNow += duration;
        fAtRest();
    }

  private:
    std::function<void()> fAtRest;
    std::chrono::steady_clock::time_point fNow;
    ReplacedClock fReplaced;
};

}  // namespace

// A medium with names in lower case must not get a second DICOMDIR, and people who could read the old one
// can read the new one.
TEST(FileReplacement, TakesThePlaceAndTheRightsOfTheOldFile) {
    for (const std::string old : {"NONE", "DICOMDIR", "dicomdir"}) {
        const TestFolder folder;
        const std::string path = folder.PathOf("DICOMDIR");
        const std::string model = folder.WriteFile(old, "longer than the new one");
        const bool isReplaced = old != "NONE";
        if (isReplaced) {
            fs::permissions(model, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
        }
        const fs::perms rights = fs::status(model).permissions();
        const auto held = isReplaced ? OpenDiskFileToReplace(path) : nullptr;
        const FileMark mark = Replace(path, "new", held.get());
        EXPECT_EQ(TextAt(path), "new");
        EXPECT_EQ(MarkAt(path), mark);
        EXPECT_EQ(fs::status(isReplaced ? model : path).permissions(), rights) << old;
        EXPECT_EQ(IsSameFile(path, model), isReplaced);
    }
}

// Other machines' clocks are wrong, and volumes keep times in steps of up to two seconds.
TEST(FileReplacement, IsLaterThanTheOldFile) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "old");
    for (const int hoursAhead : {-1, 0, 0, 0, 0, 1000, 0, 0}) {
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
    const auto takeToo = [&](const std::string& spelled) {
        return FailureOf([&] { EXPECT_EQ(ReadRest(*OpenDiskFileToReplace(spelled)), "new"); });
    };
    auto held = OpenDiskFileToReplace(path);
    VantorTest::WriteText(FileReplacement(path).GetFile(), "given up");
    EXPECT_EQ(takeToo(path), path + kInUse);
    EXPECT_EQ(takeToo(sameFile), sameFile + kInUse);
    EXPECT_EQ(ReadRest(*held), "old");
    Replace(path, "new", held.get());
    EXPECT_EQ(takeToo(path), path + kInUse);
    EXPECT_EQ(takeToo(sameFile), sameFile + kInUse);
    EXPECT_EQ(TextAt(path), "new") << "readers need not wait any longer";
    held.reset();
    EXPECT_EQ(takeToo(path), "nothing");
    held = OpenDiskFileToReplace(path);
    held->Close();
    EXPECT_EQ(takeToo(path), path + kInUse) << "closed, not given back";
    held.reset();
    EXPECT_EQ(takeToo(path), "nothing");
    EXPECT_EQ(folder.ListFiles(), Names{"DICOMDIR"}) << "what was given up and what claimed it are gone";
}

// Several processes add to one DICOMDIR while others read it: all of it, at any moment, and nothing is lost.
TEST(FileReplacement, ManyAtOnceLoseNothing) {
    constexpr int kThreads = 4;
    constexpr int kTurns = 25;
    const TestFolder folder;
    const std::string rest(100'000, ' ');
    const std::string path = folder.WriteFile("COUNTER", "1000" + rest);
    std::atomic<int> running = kThreads;
    const auto countUp = [&] {
        for (int turn = 0; turn < kTurns; ++turn) {
            WhenFree([&] {
                const auto held = OpenDiskFileToReplace(path);
                Replace(path, std::to_string(std::stoi(ReadRest(*held)) + 1) + rest, held.get());
            });
        }
        --running;
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back(countUp);
    }
    while (running > 0) {
        WhenFree([&] { EXPECT_EQ(OpenDiskFile(path, FileAccess::kRead)->GetLength(), 100'004); });
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::stoi(TextAt(path)), 1000 + kThreads * kTurns);
    EXPECT_EQ(folder.ListFiles(), Names{"COUNTER"});
}

// Windows replaces no file that is open, so a viewer that reads the DICOMDIR is waited for.
TEST(FileReplacement, WaitsForReaders) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "old");
    auto reader = OpenDiskFile(path, FileAccess::kRead);
    {
        HastyClock clock([] {});
        EXPECT_EQ(FailureOf([&] { Replace(path, "new"); }), kIsWindows ? path + kInUse : "nothing");
        EXPECT_EQ(clock.Now().time_since_epoch() >= std::chrono::seconds(10), kIsWindows);
    }
    EXPECT_EQ(TextAt(path), kIsWindows ? "old" : "new");
    EXPECT_EQ(folder.ListFiles(), Names{"DICOMDIR"});
    HastyClock clock([&] { reader.reset(); });
    Replace(path, "newer");
    EXPECT_EQ(TextAt(path), "newer");
}

// Not every system makes links.
TEST(FileReplacement, FollowsLinks) {
    const TestFolder folder;
    const std::string file = folder.WriteFile("SUB/FILE", "old");
    std::error_code refused;
    fs::create_symlink("LINK2", folder.PathOf("LINK"), refused);
    if (refused) {
        GTEST_SKIP() << refused.message();
    }
    fs::create_symlink(fs::path("SUB") / "FILE", folder.PathOf("LINK2"));
    fs::create_symlink(fs::path("SUB") / "NONE", folder.PathOf("DANGLING"));
    fs::create_symlink("LOOP", folder.PathOf("LOOP"));
    const auto held = OpenDiskFileToReplace(folder.PathOf("LINK"));
    Replace(folder.PathOf("LINK"), "new", held.get());
    EXPECT_EQ(FailureOf([&] { OpenDiskFileToReplace(file); }), file + kInUse);
    Replace(folder.PathOf("DANGLING"), "first");
    EXPECT_NE(FailureOf([&] { Replace(folder.PathOf("LOOP"), "x"); }), "nothing");
    fs::remove(folder.PathOf("LOOP"));
    EXPECT_EQ(TextAt(file) + TextAt(folder.PathOf("SUB/NONE")), "newfirst");
    EXPECT_TRUE(fs::is_symlink(folder.PathOf("LINK")) && fs::is_symlink(folder.PathOf("DANGLING")));
    EXPECT_EQ(folder.ListFiles(), (Names{"DANGLING", "LINK", "LINK2", "SUB/FILE", "SUB/NONE"}));
}

TEST(FileReplacement, SaysWhyItIsRefused) {
    const TestFolder folder;
    const std::string bad = ": path not found or not usable";
    const std::string denied = ": access denied";
    const std::string locked = folder.WriteFile("LOCKED/FILE", "old");
    const std::string readOnly = folder.WriteFile("READONLY", "old");
    // The path, and why it cannot be opened and replaced.
    std::vector<std::tuple<std::string, std::string, std::string>> cases = {
        {folder.PathOf("NOFOLDER/FILE"), bad, bad},
        {readOnly + "/FILE", bad, bad},
        {folder.MakeFolder("IMAGES"), denied, denied},
        {folder.PathOf("MISSING"), ": file not found", ""}};
    // Rights bind neither administrators nor, of folders, Windows.
    fs::permissions(folder.PathOf("LOCKED"), fs::perms::owner_read | fs::perms::owner_exec);
    fs::permissions(readOnly, fs::perms::owner_read);
    if (!std::ofstream(fs::path(folder.PathOf("LOCKED/PROBE")))) {
        cases.emplace_back(locked, kIsWindows ? denied : "", denied);
    }
    if (!std::ofstream(fs::path(readOnly), std::ios::app)) {
        cases.emplace_back(readOnly, denied, denied);
    }
    for (const auto& entry : cases) {
        const std::string& path = std::get<0>(entry);
        const auto expected = [&](const std::string& why) { return why.empty() ? "nothing" : path + why; };
        EXPECT_EQ(FailureOf([&] { OpenDiskFileToReplace(path); }), expected(std::get<1>(entry)));
        EXPECT_EQ(FailureOf([&] { FileReplacement replacement(path); }), expected(std::get<2>(entry)));
    }
    fs::permissions(folder.PathOf("LOCKED"), fs::perms::owner_all);
    fs::remove(folder.PathOf("LOCKED/PROBE"));
    EXPECT_EQ(folder.ListFiles(), (Names{"LOCKED/FILE", "READONLY"}));
}

// What a directory keeps of its file stands for as long as the mark does.
TEST(FileMark, TellsEveryChange) {
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "old1");
    const std::string twin = folder.WriteFile("TWIN", "old1");
    const std::function<void()> changes[] = {
        [&] { VantorTest::WriteWholeFile(path, "new1"); },
        [&] {
            const auto time = fs::last_write_time(path);
            VantorTest::WriteWholeFile(path, "longer");
            fs::last_write_time(path, time);
        },
        [&] { Replace(path, "longer"); },
        [&] { Replace(path, "longer"); },
        [&] {
            VantorTest::WriteWholeFile(twin, "longer");
            fs::last_write_time(twin, fs::last_write_time(path));
            fs::rename(twin, path);
        },
    };
    for (const auto& change : changes) {
        const FileMark before = MarkAt(path);
        EXPECT_EQ(MarkAt(path), before) << "nothing has changed";
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        change();
        EXPECT_NE(MarkAt(path), before) << &change - changes;
        EXPECT_EQ(MarkAt(path).fLastWriteTime, GetLastWriteTime(path));
    }
}

}  // namespace Vantor::Platform
