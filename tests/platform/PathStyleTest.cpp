#include "platform/PathStyle.h"

#include <gtest/gtest.h>

#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

TEST(PathStyle, KnowsVolumesAndFullPathsOfBothSystems) {
    struct Case {
        const char* fPath;
        const char* fWindowsRoot;
        const char* fPosixRoot;
        bool fIsFullOnWindows;
        bool fIsFullOnPosix;
    };
    const Case cases[] = {{"D:\\CD\\DICOMDIR", "D:\\", "./", true, false},
                          {"\\\\srv\\share\\x\\DICOMDIR", "\\\\srv\\share\\", "./", false, false},
                          {"\\\\srv\\share", "\\\\srv\\share\\", "./", false, false},
                          {"\\\\srv", "\\\\srv\\", "./", false, false},
                          {"//srv/share/DICOMDIR", "//srv/share\\", "//srv/share/", false, true},
                          {"/media/cd/DICOMDIR", "\\", "/media/cd/", false, true},
                          {"IMAGES\\1", ".\\", "./", false, false},
                          {"", ".\\", "./", false, false}};
    for (const Case& c : cases) {
        EXPECT_EQ(WindowsPathStyle().VolumeRoot(c.fPath), c.fWindowsRoot) << c.fPath;
        EXPECT_EQ(PosixPathStyle().VolumeRoot(c.fPath), c.fPosixRoot) << c.fPath;
        EXPECT_EQ(WindowsPathStyle().IsFullPath(c.fPath), c.fIsFullOnWindows) << c.fPath;
        EXPECT_EQ(PosixPathStyle().IsFullPath(c.fPath), c.fIsFullOnPosix) << c.fPath;
    }
    EXPECT_EQ(PathStyle::OfPlatform().GetSeparator(), VantorTest::kIsWindows ? '\\' : '/');
}

TEST(PathStyle, TellsPlainNames) {
    struct Case {
        std::string fName;
        bool fIsPlainOnWindows;
        bool fIsPlainOnPosix;
    };
    const Case cases[] = {{"I_000000.DCM", true, true},
                          {"..X", true, true},
                          {"CONSOLE", true, true},
                          {"COM10", true, true},
                          {"XNUL", true, true},
                          {"M\xDCLLER", true, true},
                          {"", false, false},
                          {".", false, false},
                          {"..", false, false},
                          {"A/B", false, false},
                          {std::string("A\0B", 3), false, false},
                          {"A\\B", false, true},
                          {"...", false, true},
                          {"A.", false, true},
                          {"A ", false, true},
                          {"C:", false, true},
                          {"A:B", false, true},
                          {"A*", false, true},
                          {"A\nB", false, true},
                          {"con", false, true},
                          {"Nul.dcm", false, true},
                          {"AUX .X.Y", false, true},
                          {"COM1", false, true},
                          {"LPT\xB9", false, true},
                          {"CONIN$", false, true}};
    for (const auto& [name, isPlainOnWindows, isPlainOnPosix] : cases) {
        EXPECT_EQ(WindowsPathStyle().IsPlainName(name), isPlainOnWindows) << name;
        EXPECT_EQ(PosixPathStyle().IsPlainName(name), isPlainOnPosix) << name;
    }
}

}  // namespace Vantor::Platform
