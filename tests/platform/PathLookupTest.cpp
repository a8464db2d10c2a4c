#include <gtest/gtest.h>

#include <filesystem>

#include "platform/File.h"
#include "platform/FileSystem.h"
#include "platform/MappedFile.h"
#include "tests/support/FileFailure.h"
#include "tests/support/TestFolder.h"

// Media are often mounted with names in lower case, while the DICOMDIR on them and this library spell names
// in upper or mixed case. On Windows the system itself ignores case; these tests hold there as well where
// they do not tell two spellings of one name apart.

namespace Vantor::Platform {

using VantorTest::CauseOf;
using VantorTest::TestFolder;
using Cause = FileException::Cause;

namespace fs = std::filesystem;

namespace {

bool TellsCaseApart(const TestFolder& folder) {
    folder.WriteFile("case-probe", "");
    const bool isApart = !fs::exists(folder.PathOf("CASE-PROBE"));
    fs::remove(folder.PathOf("case-probe"));
    return isApart;
}

class PathLookup : public testing::Test {
  protected:
    std::string TextAt(const std::string& path) const {
        const auto file = OpenDiskFile(path, FileAccess::kRead);
        std::string text(static_cast<size_t>(file->GetLength()), '?');
        file->Read(text.data(), text.size());
        return text;
    }

    TestFolder fFolder;
};

}  // namespace

TEST_F(PathLookup, ReadsWhateverTheCase) {
    fFolder.WriteFile("imagesdc/i_000001.dcm", "lower");
    fFolder.WriteFile("EXAMS/Exam0000/Clips/IMAG0000", "mixed");
    const struct {
        const char* fAsked;
        const char* fContent;
    } cases[] = {
        {"imagesdc/i_000001.dcm", "lower"},
        {"IMAGESDC/I_000001.DCM", "lower"},
        {"Imagesdc/I_000001.dcm", "lower"},
        {"imagesdc/I_000001.DCM", "lower"},
        {"IMAGESDC/i_000001.dcm", "lower"},
        {"exams/EXAM0000/CLIPS/imag0000", "mixed"},
        {"Exams/./Exam0000/clips/IMAG0000", "mixed"},
        {"exams//exam0000//clips/imag0000", "mixed"},
        {"exams/exam0000/../EXAM0000/CLIPS/imag0000", "mixed"},
    };
    for (const auto& [asked, content] : cases) {
        const std::string path = fFolder.GetPath() + "/" + asked;
        EXPECT_EQ(CauseOf([&, &content = content] { EXPECT_EQ(TextAt(path), content); }), std::nullopt)
            << asked;
        EXPECT_TRUE(PathExists(path));
        EXPECT_TRUE(GetLastWriteTime(path).has_value());
        EXPECT_EQ(MappedFile(path).GetLength(), 5);
    }
    EXPECT_TRUE(IsFolder(fFolder.PathOf("IMAGESDC")));
    EXPECT_TRUE(IsFolder(fFolder.PathOf("IMAGESDC") + "/"));
    EXPECT_TRUE(IsSameFile(fFolder.PathOf("imagesdc/i_000001.dcm"), fFolder.PathOf("IMAGESDC/I_000001.DCM")));
    EXPECT_FALSE(PathExists(fFolder.PathOf("IMAGESDC/I_000002.DCM")));
    EXPECT_FALSE(PathExists(fFolder.PathOf("IMAGESDC/I_000001.DCM/X")));
}

TEST_F(PathLookup, RelativePaths) {
    fFolder.WriteFile("imagesdc/i_000001.dcm", "content");
    const fs::path before = fs::current_path();
    fs::current_path(fFolder.GetPath());
    EXPECT_TRUE(PathExists("IMAGESDC/I_000001.DCM"));
    EXPECT_TRUE(PathExists("ImagesDC"));
    EXPECT_FALSE(PathExists("MISSING"));
    fs::current_path(before);
}

// Only names of ASCII letters are guessed: for others the spelling depends on a code page that a medium
// does not tell.
TEST_F(PathLookup, OtherLettersAreAsSpelled) {
    if (!TellsCaseApart(fFolder)) {
        GTEST_SKIP() << "the system ignores case itself";
    }
    fFolder.WriteFile("b\xC3\xA4r", "x");
    EXPECT_TRUE(PathExists(fFolder.PathOf("B\xC3\xA4R")));
    EXPECT_FALSE(PathExists(fFolder.PathOf("B\xC3\x84R")));
    fFolder.WriteFile("[a]", "x");
    EXPECT_FALSE(PathExists(fFolder.PathOf("{A}"))) << "neighbours of the letters in ASCII";
}

TEST_F(PathLookup, SpellingThatExistsComesFirst) {
    if (!TellsCaseApart(fFolder)) {
        GTEST_SKIP() << "the system ignores case itself";
    }
    fFolder.WriteFile("IMAGE", "upper");
    fFolder.WriteFile("image", "lower");
    fFolder.WriteFile("Image", "mixed");
    EXPECT_EQ(TextAt(fFolder.PathOf("image")), "lower");
    EXPECT_EQ(TextAt(fFolder.PathOf("Image")), "mixed");
    EXPECT_EQ(TextAt(fFolder.PathOf("iMAGE")), "upper") << "of several, the first in byte order";
    fs::remove(fFolder.PathOf("IMAGE"));
    EXPECT_EQ(TextAt(fFolder.PathOf("iMAGE")), "mixed");
}

TEST_F(PathLookup, BackslashesAreLetters) {
    if (!TellsCaseApart(fFolder)) {
        GTEST_SKIP() << "backslashes separate folders here";
    }
    fFolder.WriteFile("imagesdc/i_1", "x");
    EXPECT_FALSE(PathExists(fFolder.GetPath() + "/imagesdc\\i_1"));
    CreateDiskFile(fFolder.GetPath() + "/A\\B")->Close();
    EXPECT_EQ(fFolder.ListFiles(), (std::vector<std::string>{"A\\B", "imagesdc/i_1"}));
}

TEST_F(PathLookup, CreatesInFoldersOfOtherCase) {
    fFolder.MakeFolder("imagesdc");
    CreateDiskFile(fFolder.PathOf("IMAGESDC/I_000000.DCM"))->Close();
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"imagesdc/I_000000.DCM"});
    EXPECT_EQ(CauseOf([&] { CreateDiskFile(fFolder.PathOf("IMAGESDC/NONE/I_0")); }), Cause::kBadPath);
    EXPECT_TRUE(PathExists(fFolder.PathOf("IMAGESDC/i_000000.dcm")));
}

// A medium that holds "dicomdir" must not get a second one, which one reader finds and the next does not.
TEST_F(PathLookup, ReplacesTheFileOfOtherCase) {
    fFolder.WriteFile("dicomdir", "old");
    {
        const auto file = CreateDiskFile(fFolder.PathOf("DICOMDIR"));
        EXPECT_EQ(file->GetLength(), 0);
        file->Write("new", 3);
    }
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"dicomdir"});
    EXPECT_EQ(TextAt(fFolder.PathOf("DICOMDIR")), "new");
}

TEST_F(PathLookup, MovesAndRemovesWhateverTheCase) {
    fFolder.WriteFile("dicomdir", "old");
    fFolder.WriteFile("sub/newdir", "new");
    MoveFileReplacing(fFolder.PathOf("SUB/NEWDIR"), fFolder.PathOf("DICOMDIR"));
    EXPECT_FALSE(PathExists(fFolder.PathOf("sub/newdir")));
    EXPECT_EQ(TextAt(fFolder.PathOf("dicomdir")), "new");
    EXPECT_EQ(fFolder.ListFiles().size(), 1u);
    RemoveFile(fFolder.PathOf("Dicomdir"));
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{});
    EXPECT_EQ(CauseOf([&] { RemoveFile(fFolder.PathOf("DICOMDIR")); }), Cause::kFileNotFound);
}

// Names that were looked for in vain are found once they are there, whoever made them.
TEST_F(PathLookup, SeesWhatHasChanged) {
    EXPECT_FALSE(PathExists(fFolder.PathOf("IMAGE")));
    fFolder.WriteFile("image", "other program's");
    EXPECT_TRUE(PathExists(fFolder.PathOf("IMAGE")));
    EXPECT_FALSE(PathExists(fFolder.PathOf("SECOND")));
    CreateDiskFile(fFolder.PathOf("Second"))->Close();
    EXPECT_TRUE(PathExists(fFolder.PathOf("SECOND")));
    MoveFileReplacing(fFolder.PathOf("SECOND"), fFolder.PathOf("Third"));
    EXPECT_TRUE(PathExists(fFolder.PathOf("THIRD")));
    EXPECT_FALSE(PathExists(fFolder.PathOf("SECOND")));
    RemoveFile(fFolder.PathOf("IMAGE"));
    EXPECT_FALSE(PathExists(fFolder.PathOf("IMAGE")));
    fs::remove(fFolder.PathOf("Third"));
    EXPECT_FALSE(PathExists(fFolder.PathOf("THIRD")));
}

TEST_F(PathLookup, LinksToNothing) {
    if (!TellsCaseApart(fFolder)) {
        GTEST_SKIP() << "no symbolic links to test with";
    }
    fs::create_symlink(fFolder.PathOf("target"), fFolder.PathOf("link"));
    EXPECT_FALSE(PathExists(fFolder.PathOf("link")));
    EXPECT_FALSE(PathExists(fFolder.PathOf("LINK")));
    EXPECT_EQ(CauseOf([&] { OpenDiskFile(fFolder.PathOf("link"), FileAccess::kRead); }),
              Cause::kFileNotFound);
    CreateDiskFile(fFolder.PathOf("link"))->Close();
    EXPECT_EQ(fFolder.ListFiles(), (std::vector<std::string>{"link", "target"}));
}

}  // namespace Vantor::Platform
