#include "platform/SharedAccess.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::kIsWindows;
using VantorTest::TestFolder;

namespace fs = std::filesystem;

TEST(SharedAccess, FollowsTheFolder) {
    struct Case {
        unsigned fFolder, fBefore, fFile, fSubFolder;
    };
    constexpr Case kCases[] = {{0755, 0700, 0700, 0700},    {0775, 0700, 0760, 0770},
                               {0772, 0500, 0566, 0577},    {0702, 0640, 0646, 0647},
                               {01777, 0700, 0700, 0700},   {01770, 0600, 0660, 0670},
                               {02770, 02600, 02660, 02670}};
    const auto modeOf = [](const std::string& path) {
        return static_cast<unsigned>(fs::status(path).permissions());
    };
    for (const Case& c : kCases) {
        const TestFolder folder;
        fs::permissions(folder.GetPath(), static_cast<fs::perms>(c.fFolder));
        const std::string file = folder.WriteFile("FILE", "x");
        const std::string sub = folder.MakeFolder("SUB");
        fs::permissions(file, static_cast<fs::perms>(c.fBefore));
        fs::permissions(sub, static_cast<fs::perms>(c.fBefore));
        EXPECT_TRUE(ShareFile(folder.PathOf("file")) && ShareFolder(folder.PathOf("sub/")));
        EXPECT_TRUE(kIsWindows || modeOf(file) == c.fFile) << std::oct << c.fFolder << " " << modeOf(file);
        EXPECT_TRUE(kIsWindows || modeOf(sub) == c.fSubFolder) << std::oct << c.fFolder << " " << modeOf(sub);
        fs::permissions(sub, fs::perms::owner_all, fs::perm_options::add);
        EXPECT_EQ(VantorTest::ReadWholeFileAsText(folder.WriteFile("SUB/FILE", "usable")), "usable");
        EXPECT_FALSE(ShareFile(folder.PathOf("MISSING")));
    }
}

}  // namespace Vantor::Platform
