#include "platform/FileSystem.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/support/FileSupport.h"
#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::FailureOf;
using VantorTest::kIsWindows;
using VantorTest::ReadRest;
using VantorTest::ReadWholeFileAsText;
using VantorTest::TestFolder;
using Names = std::vector<std::string>;

namespace fs = std::filesystem;

namespace {

const std::string kBadPath = ": path not found or not usable";

std::string TextAt(const std::string& path) { return ReadRest(*OpenDiskFile(path, FileAccess::kRead)); }

// Where folders are on another volume than temporary files, if the machine has two.
fs::path OtherVolume() {
    const fs::path memory = "/dev/shm";
    return fs::is_directory(memory) ? memory : fs::temp_directory_path();
}

}  // namespace

// Directories notice another program's change by the time alone, so less than a second must show.
TEST(LastWriteTime, CountsIn100NanosecondsSince1601) {
    constexpr uint64_t kStartOf2001 = 126'227'808'000'000'000;
    const TestFolder folder;
    const std::string path = folder.WriteFile("DICOMDIR", "x");
    const auto before = GetLastWriteTime(path);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    VantorTest::WriteWholeFile(path, "y");
    EXPECT_NE(GetLastWriteTime(path), before);
    const std::chrono::sys_seconds start = std::chrono::sys_days(std::chrono::January / 1 / 2001);
    fs::last_write_time(path, std::chrono::file_clock::from_sys(start));
    EXPECT_EQ(GetLastWriteTime(path), (FileTime{static_cast<uint32_t>(kStartOf2001), kStartOf2001 >> 32}));
}

// With all that is in it, in any case; what a link leads to stays.
TEST(FileSystem, RemovesAFolderWithoutFollowingLinksOutOfIt) {
    const TestFolder folder;
    folder.WriteFile("EXAMS/EXAM0000/Images/1", "x");
    folder.WriteFile("EXAMS/EXAM0000/2", "x");
    folder.WriteFile("OTHER/3", "x");
    std::error_code error;
    fs::create_directory_symlink(folder.PathOf("OTHER"), folder.PathOf("EXAMS/EXAM0000/LINK"), error);
    fs::create_directory_symlink(folder.PathOf("OTHER"), folder.PathOf("EXAMS/EXAM0001"), error);
    fs::create_symlink(folder.PathOf("NOTHING"), folder.PathOf("EXAMS/EXAM0000/DANGLING"), error);
    EXPECT_TRUE(kIsWindows || IsLink(folder.PathOf("EXAMS/EXAM0000/DANGLING")));
    EXPECT_NE(FailureOf([&] { RemoveFolder(folder.PathOf("EXAMS/EXAM0000")); }), "nothing");
    folder.WriteFile("EXAMS/EXAM0002/.kept/4", "x");
    folder.WriteFile("EXAMS/EXAM0002/SUB/5", "x");
    EXPECT_FALSE(RemoveFolderTree(folder.PathOf("EXAMS/EXAM0002"),
                                  [](const std::string& name) { return name == ".kept"; }));
    EXPECT_EQ(ListFolder(folder.PathOf("EXAMS/EXAM0002")).size(), 1U);
    EXPECT_TRUE(RemoveFolderTree(folder.PathOf("EXAMS/EXAM0002")));
    EXPECT_TRUE(RemoveFolderTree(folder.PathOf("EXAMS/exam0000")));
    RemoveFolderTree(folder.PathOf("EXAMS/EXAM0001"));
    EXPECT_FALSE(RemoveFolderTree(folder.PathOf("MISSING")));
    EXPECT_EQ(folder.ListFiles(), Names{"OTHER/3"});
    EXPECT_TRUE(ListFolder(folder.PathOf("EXAMS")).empty() && ReadFolder(folder.PathOf("EXAMS")));
    EXPECT_FALSE(ReadFolder(folder.PathOf("OTHER/3")) || ReadFolder(folder.PathOf("MISSING")));
    EXPECT_TRUE(ListFolder(folder.PathOf("OTHER/3")).empty());
}

// A copy is a file of its own, whatever the original is.
TEST(FileSystem, CopiesFilesInPlaceOfOthers) {
    const TestFolder folder;
    const std::string original = folder.WriteFile("ORIGINAL", "new");
    const std::string copy = folder.WriteFile("SUB/COPY", "old");
    fs::permissions(original, fs::perms::owner_write, fs::perm_options::remove);
    CopyFileReplacing(folder.PathOf("original"), folder.PathOf("SUB/copy"));
    EXPECT_EQ(folder.ListFiles(), (Names{"ORIGINAL", "SUB/COPY"}));
    EXPECT_EQ(ReadWholeFileAsText(copy), "new");
    EXPECT_EQ(GetLastWriteTime(copy), GetLastWriteTime(original));
    EXPECT_NE(fs::status(copy).permissions() & fs::perms::owner_write, fs::perms::none);
    fs::permissions(original, fs::perms::owner_write, fs::perm_options::add);
    EXPECT_EQ(FailureOf([&] { CopyFileReplacing(original, folder.PathOf("MISSING/COPY")); }),
              folder.PathOf("MISSING/COPY") + kBadPath);
    const std::string missing = folder.PathOf("MISSING");
    EXPECT_EQ(FailureOf([&] { CopyFileReplacing(missing, copy); }), missing + ": file not found");
    EXPECT_NE(FailureOf([&] { CopyFileReplacing(original, folder.PathOf("SUB")); }), "nothing");
    EXPECT_NE(FailureOf([&] { CopyFileReplacing(folder.PathOf("SUB"), copy); }), "nothing");
    EXPECT_EQ(ReadWholeFileAsText(copy), "new");
    EXPECT_EQ(folder.ListFiles(), (Names{"ORIGINAL", "SUB/COPY"})) << "nothing is left beside them";
    std::error_code error;
    fs::create_symlink(original, folder.PathOf("LINK"), error);
    if (error) return;
    CopyFileReplacing(copy, folder.PathOf("LINK"));
    EXPECT_TRUE(!IsLink(folder.PathOf("LINK")) && !IsSameFile(original, folder.PathOf("LINK")));
}

TEST(FileSystem, MakesFoldersInExistingOnesOnly) {
    const TestFolder folder;
    const std::string path = folder.PathOf("IMAGESDC");
    CreateFolder(path);
    EXPECT_TRUE(IsFolder(path));
    EXPECT_NE(FailureOf([&] { CreateFolder(path); }), "nothing");
    EXPECT_NE(FailureOf([&] { CreateFolder(folder.PathOf("imagesdc")); }), "nothing") << "in another case";
    EXPECT_EQ(FailureOf([&] { CreateFolder(folder.PathOf("MISSING/SUB")); }),
              folder.PathOf("MISSING/SUB") + kBadPath);
    EXPECT_EQ(GetFreeBytes(folder.GetPath()) / (1 << 20), fs::space(folder.GetPath()).available / (1 << 20));
    EXPECT_EQ(GetFreeBytes(folder.PathOf("MISSING/SUB")), 0U);
}

// Rights do not bind the administrator, unlike the attribute of Windows.
TEST(FileSystem, TellsWhatIsReadOnly) {
    const TestFolder folder;
    const std::string file = folder.WriteFile("FILE", "x");
    EXPECT_FALSE(IsReadOnly(file) || IsReadOnly(folder.GetPath()) || IsReadOnly(folder.PathOf("MISSING")));
    fs::permissions(file, fs::perms::owner_write, fs::perm_options::remove);
    const bool mayWrite = FailureOf([&] { OpenDiskFile(file, FileAccess::kReadWrite); }) == "nothing";
    EXPECT_EQ(IsReadOnly(folder.PathOf("file")), kIsWindows || !mayWrite);
}

TEST(FileSystem, TellsFilesFoldersAndNothing) {
    const TestFolder folder;
    const std::string file = folder.WriteFile("FILE", "x");
    const std::string sub = folder.MakeFolder("SUB");
    for (const std::string& path : {file, sub, sub + "/"}) {
        EXPECT_TRUE(PathExists(path) && GetLastWriteTime(path) && IsSameFile(path, path)) << path;
        EXPECT_EQ(IsFolder(path), path != file);
    }
    for (const std::string& path : {file + "/X", folder.PathOf("MISSING"), std::string()}) {
        EXPECT_FALSE(PathExists(path) || IsFolder(path) || GetLastWriteTime(path) || IsSameFile(path, path));
    }
    const auto holder = OpenDiskFile(file, FileAccess::kReadWrite);
    const std::string twin = folder.WriteFile("TWIN", "x");
    EXPECT_TRUE(IsSameFile(file, sub + "/../file")) << "also while in use";
    EXPECT_FALSE(IsSameFile(file, twin));
    RemoveFile(twin);
    EXPECT_EQ(FailureOf([&] { RemoveFile(twin); }), twin + ": file not found");
    EXPECT_EQ(FailureOf([&] { RemoveFile(file + "/X"); }), file + "/X" + kBadPath);
    EXPECT_EQ(FailureOf([&] { RemoveFile(sub); }), sub + ": access denied");
}

// A directory that was written as a temporary file must stay readable for the people who could read it.
TEST(MoveFileReplacing, PutsTheFileInPlaceOrLeavesBoth) {
    const std::string content = std::string(1'000'000, 'x') + "y";
    const TestFolder folder;
    const std::string nowhere = folder.PathOf("NOFOLDER/X");
    const std::string sub = folder.MakeFolder("SUB");
    const std::string target = folder.WriteFile("DICOMDIR", "old");
    fs::permissions(target, fs::perms::owner_all | fs::perms::group_read | fs::perms::others_read);
    const fs::perms rights = fs::status(target).permissions();
    for (const fs::path& volume : {fs::temp_directory_path(), OtherVolume()}) {
        const TestFolder from(volume);
        const std::string source = from.WriteFile("NEW", content);
        const std::string missing = from.PathOf("MISSING");
        VantorTest::WriteWholeFile(target, "old");
        EXPECT_EQ(FailureOf([&] { MoveFileReplacing(missing, target); }), missing + ": file not found");
        EXPECT_EQ(FailureOf([&] { MoveFileReplacing(nowhere, target); }), nowhere + kBadPath);
        EXPECT_EQ(FailureOf([&] { MoveFileReplacing(source, nowhere); }), nowhere + kBadPath);
        EXPECT_EQ(FailureOf([&] { MoveFileReplacing(source, sub); }), sub + ": access denied");
        EXPECT_EQ(ReadWholeFileAsText(target), "old");
        fs::last_write_time(source, fs::last_write_time(source) - std::chrono::hours(1000));
        fs::permissions(source, fs::perms::owner_read | fs::perms::owner_write);
        const auto time = GetLastWriteTime(source);
        MoveFileReplacing(source, target);
        EXPECT_TRUE(ReadWholeFileAsText(target) == content) << source;
        EXPECT_EQ(GetLastWriteTime(target), time) << source;
        EXPECT_EQ(fs::status(target).permissions(), rights) << source;
        EXPECT_EQ(from.ListFiles(), Names{});
        EXPECT_EQ(folder.ListFiles(), Names{"DICOMDIR"}) << "no neighbour is left";
    }
}

// Windows neither moves nor replaces a file that is open. Elsewhere the open one lives on without a name,
// but what somebody still writes is not copied to another volume.
TEST(MoveFileReplacing, FilesInUse) {
    const TestFolder folder;
    const TestFolder other(OtherVolume());
    const std::string source = other.WriteFile("NEW", "new");
    const std::string target = folder.WriteFile("DICOMDIR", "old");
    auto holder = OpenDiskFile(source, FileAccess::kReadWrite);
    if (OtherVolume() != fs::temp_directory_path()) {
        EXPECT_NE(FailureOf([&] { MoveFileReplacing(source, target); }), "nothing");
    }
    holder = OpenDiskFile(target, FileAccess::kRead);
    EXPECT_EQ(FailureOf([&] { MoveFileReplacing(source, target); }) == "nothing", !kIsWindows);
    holder.reset();
    EXPECT_EQ(ReadWholeFileAsText(target), kIsWindows ? "old" : "new");
    EXPECT_EQ(other.ListFiles(), kIsWindows ? Names{"NEW"} : Names{});
}

TEST(MakeTemporaryFile, IsNewEmptyAndNamedAsAsked) {
    const std::string path = MakeTemporaryFile("VNT");
    EXPECT_EQ(ReadWholeFileAsText(path), "");
    EXPECT_EQ(fs::path(path).filename().string().substr(0, 3), "VNT");
    const std::string second = MakeTemporaryFile("VNT");
    RemoveFile(path);
    RemoveFile(second);
}

// Media are often mounted with names in lower case, while the DICOMDIR on them and this library spell names
// in upper or mixed case. Windows ignores case itself.
TEST(NamesOfAnotherCase, AreFound) {
    const TestFolder folder;
    folder.WriteFile("imagesdc/i_1.dcm", "lower");
    folder.WriteFile("EXAMS/Exam0/Clips/IMAG0", "mixed");
    const std::pair<std::string, std::string> cases[] = {{"imagesdc/i_1.dcm", "lower"},
                                                         {"IMAGESDC/i_1.DCM", "lower"},
                                                         {"IMAGESDC/I_1.DCM/X", ""},
                                                         {"exams//EXAM0/./CLIPS/../clips/imag0", "mixed"}};
    const fs::path before = fs::current_path();
    fs::current_path(folder.GetPath());
    for (const auto& [relative, content] : cases) {
        for (const std::string& path : {relative, folder.GetPath() + "/" + relative}) {
            EXPECT_EQ(PathExists(path), !content.empty()) << path;
            EXPECT_EQ(PathExists(path) ? TextAt(path) : "", content) << path;
        }
    }
    fs::current_path(before);
    EXPECT_EQ(PathExists(folder.GetPath() + "/imagesdc\\i_1.dcm"), kIsWindows) << "a letter elsewhere";
    folder.WriteFile("IMAGE/A", "upper");
    folder.WriteFile("image/A", "lower");
    EXPECT_EQ(TextAt(folder.PathOf("image/a")), "lower") << "the spelling that exists comes first";
    EXPECT_EQ(TextAt(folder.PathOf("iMAGE/A")), kIsWindows ? "lower" : "upper") << "the first in byte order";
}

// A medium that holds "dicomdir" must not get a second one, which one reader finds and the next does not.
TEST(NamesOfAnotherCase, AreChanged) {
    const TestFolder folder;
    const std::string directory = folder.PathOf("DICOMDIR");
    folder.WriteFile("dicomdir", "long and old");
    folder.MakeFolder("imagesdc");
    CreateDiskFile(directory)->Write("new", 3);
    EXPECT_EQ(TextAt(directory), "new");
    CreateDiskFile(folder.PathOf("IMAGESDC/I_0"))->Close();
    EXPECT_EQ(folder.ListFiles(), (Names{"dicomdir", "imagesdc/I_0"}));
    MoveFileReplacing(folder.PathOf("Imagesdc/i_0"), directory);
    EXPECT_EQ(TextAt(directory), "");
    RemoveFile(directory);
    EXPECT_EQ(folder.ListFiles(), Names{});
}

// Names that were looked for in vain are found once they are there, whoever made them, also in a folder that
// had not been changed for long.
TEST(NamesOfAnotherCase, AreLookedUpAnew) {
    const TestFolder folder;
    const auto isThere = [&](const char* name) { return PathExists(folder.PathOf(name)); };
    EXPECT_FALSE(isThere("FIRST"));
    folder.WriteFile("First", "another program's");
    EXPECT_TRUE(isThere("FIRST"));
    fs::remove(folder.PathOf("First"));
    folder.WriteFile("first", "another program's");
    EXPECT_TRUE(isThere("FIRST"));
    std::error_code ignored;
    fs::last_write_time(folder.GetPath(), fs::file_time_type::clock::now() - std::chrono::hours(1), ignored);
    EXPECT_FALSE(isThere("SECOND"));
    folder.WriteFile("second", "another program's");
    EXPECT_TRUE(isThere("SECOND"));
    EXPECT_FALSE(isThere("THIRD"));
    CreateDiskFile(folder.PathOf("third"))->Close();
    MoveFileReplacing(folder.PathOf("THIRD"), folder.PathOf("fourth"));
    EXPECT_TRUE(isThere("FOURTH"));
}

// Not every system makes links; where there are any, none leads round in circles.
TEST(NamesOfAnotherCase, LinksToNothingAndToThemselves) {
    const TestFolder folder;
    const std::string none = folder.PathOf("NONE");
    const std::string loop = folder.PathOf("LOOP");
    std::error_code refused;
    fs::create_symlink(folder.PathOf("target"), folder.PathOf("none"), refused);
    fs::create_symlink(folder.PathOf("loop"), folder.PathOf("loop"), refused);
    EXPECT_EQ(FailureOf([&] { TextAt(none); }), none + ": file not found");
    EXPECT_FALSE(PathExists(loop));
    EXPECT_EQ(FailureOf([&] { CreateDiskFile(loop); }), refused ? "nothing" : loop + kBadPath);
    CreateDiskFile(none)->Close();
    EXPECT_EQ(PathExists(folder.PathOf("target")), !refused);
}

}  // namespace Vantor::Platform
