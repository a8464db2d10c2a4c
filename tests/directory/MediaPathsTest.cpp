#include "directory/MediaPaths.h"

#include <gtest/gtest.h>

namespace {

using namespace Vantor;

const Platform::WindowsPathStyle kWindows;
const Platform::PosixPathStyle kPosix;

struct Case {
    const char* fDirectory;
    bool fIsFolder;
    const char* fFullPath;     // of IMAGES\1
    const char* fImageFolder;  // for \Exams
};

// Full paths lead back to the file ID that they were made from, whatever case they are in.
void Expect(const Platform::PathStyle& style, const Case& expected) {
    const MediaPaths paths(style, expected.fDirectory, expected.fIsFolder);
    EXPECT_EQ(paths.MakeFullPath("IMAGES\\1"), expected.fFullPath) << expected.fDirectory;
    EXPECT_EQ(paths.MakeFullPath(std::string_view("IMAGES\\1 \0", 10)), expected.fFullPath) << "padded";
    EXPECT_EQ(paths.MakeImageFolderPath("\\Exams"), expected.fImageFolder) << expected.fDirectory;
    EXPECT_EQ(paths.MakeFileID(expected.fFullPath), "IMAGES\\1") << expected.fDirectory;
    EXPECT_EQ(paths.MakeFileID(paths.MakeFullPath("images\\1")), "images\\1");
}

TEST(MediaPaths, OnWindows) {
    const Case cases[] = {
        {"D:\\CD\\DICOMDIR", false, "D:\\CD\\IMAGES\\1", "D:\\CD\\Exams"},
        {"D:\\DICOMDIR", false, "D:\\IMAGES\\1", "D:\\Exams"},
        {"D:/cd/dicomdir", false, "D:/cd/IMAGES\\1", "D:/cd/Exams"},
        {"\\\\srv\\share\\DICOMDIR", false, "\\\\srv\\share\\IMAGES\\1", "\\\\srv\\share\\Exams"},
        // Folders that are called after the file.
        {"D:\\dicomdirs\\DICOMDIR", false, "D:\\dicomdirs\\IMAGES\\1", "D:\\dicomdirs\\Exams"},
        {"D:\\DICOMDIR", true, "D:\\DICOMDIR\\IMAGES\\1", "D:\\DICOMDIR\\Exams"},
        {"D:\\Folder", true, "D:\\Folder\\IMAGES\\1", "D:\\Folder\\Exams"},
        {"C:DICOMDIR", false, "C:IMAGES\\1", "C:Exams"},
        // A name alone is looked for where the process is.
        {"DICOMDIR", false, "IMAGES\\1", ""}};
    for (const Case& c : cases) Expect(kWindows, c);
    const MediaPaths paths(kWindows, "D:\\CD\\DICOMDIR", false);
    EXPECT_EQ(paths.MakeFullPath("E:\\X\\1"), "E:\\X\\1");
    EXPECT_EQ(paths.MakeFileID("d:/cd\\Images/1"), "Images\\1");
    EXPECT_EQ(paths.MakeFileID("E:\\D:\\CD\\Images\\1"), "") << "elsewhere";
}

TEST(MediaPaths, OnPosix) {
    const Case cases[] = {{"/cd/DICOMDIR", false, "/cd/IMAGES/1", "/cd/EXAMS"},
                          {"/cd/dicomdir-2", false, "/cd/IMAGES/1", "/cd/EXAMS"},
                          {"/dicomdirs/DICOMDIR", false, "/dicomdirs/IMAGES/1", "/dicomdirs/EXAMS"},
                          {"/DICOMDIR", false, "/IMAGES/1", ""},
                          {"DICOMDIR", false, "IMAGES/1", ""}};
    for (const Case& c : cases) Expect(kPosix, c);
    EXPECT_EQ(MediaPaths(kPosix, "/cd/DICOMDIR", false).MakeFullPath("C:\\X"), "/cd/C:/X");
}

// A stranger's record names any path; only what is below the directory's folder for certain counts as its
// own.
TEST(MediaPaths, TellWhatIsInside) {
    const std::tuple<const Platform::PathStyle*, const char*, const char*, bool> cases[] = {
        {&kWindows, "D:\\CD\\DICOMDIR", "d:\\cd\\X\\1", true},
        {&kWindows, "D:\\CD\\DICOMDIR", "D:\\CD\\..\\X", false},
        {&kWindows, "D:\\CD\\DICOMDIR", "D:\\CD\\A\\.. \\X", false},
        {&kWindows, "D:\\CD\\DICOMDIR", "D:\\CD\\A/...\\X", false},
        {&kWindows, "D:\\CD\\DICOMDIR", "D:\\CD\\.\\X", false},
        {&kWindows, "D:\\CD\\DICOMDIR", "D:\\CD\\A\\\\X", false},
        {&kWindows, "D:\\CD\\DICOMDIR", "D:\\CD\\DICOMDIR.", false},
        {&kWindows, "D:\\CD\\DICOMDIR", "D:\\CD\\A\\NUL", false},
        {&kWindows, "D:\\CD\\DICOMDIR", "D:\\CD\\X:Y", false},
        {&kWindows, "D:\\CD\\DICOMDIR", "D:\\CDS\\X", false},
        {&kWindows, "D:\\CD\\DICOMDIR", "D:\\CD\\", false},
        {&kWindows, "DICOMDIR", "IMAGES\\1", true},
        {&kWindows, "DICOMDIR", "C:\\WINDOWS\\X", false},
        {&kWindows, "C:DICOMDIR", "C:IMAGES\\1", true},
        {&kWindows, "C:DICOMDIR", "C:\\WINDOWS\\X", false},
        {&kPosix, "/cd/DICOMDIR", "/cd/X", true},
        {&kPosix, "/cd/DICOMDIR", "/cd/A/../../X", false},
        {&kPosix, "/cd/DICOMDIR", "/cd/./X", false},
        {&kPosix, "/cd/DICOMDIR", "/cd//X", false},
        {&kPosix, "/cd/DICOMDIR", "/cd/A./NUL", true},
        {&kPosix, "/cd/DICOMDIR", "/X", false},
        {&kPosix, "DICOMDIR", "/home/x", false},
        {&kPosix, "DICOMDIR", "images/..x", true}};
    for (const auto& [style, directory, path, isInside] : cases) {
        EXPECT_EQ(MediaPaths(*style, directory, false).IsInside(path), isInside) << directory << " " << path;
    }
}

}  // namespace
