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

}  // namespace Vantor::Platform
