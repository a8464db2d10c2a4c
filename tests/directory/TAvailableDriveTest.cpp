#include "directory/TAvailableDrive.h"

#include <gtest/gtest.h>

#include "tests/support/FakeVolumes.h"

namespace {

using namespace VantorTest;
using Vantor::TAvailableDrive;
using Vantor::Platform::DriveType;

TEST(TAvailableDriveTest, IsWhatTheVolumeSays) {
    struct Case {
        FakeDrive fDrive;
        std::string fVolumeName;
        std::string fFileSystem;
        bool fIsWritable;
        bool fIsRemovable;
    };
    const Case cases[] = {
        {{"E:\\", "", DriveType::kCdRom, "CDFS", true, "ECHO", 0}, "ECHO", "CDFS", false, true},
        {{"E:\\", "", DriveType::kRemovable, "FAT32", true, "", 1}, "E: (Unnamed)", "FAT32", true, true},
        {{"E:\\", "", DriveType::kFixed, std::string(40, 'F'), true, std::string(300, 'L'), 1},
         std::string(254, 'L'),
         std::string(31, 'F'),
         true,
         false},
        {{"E:\\", "", DriveType::kRemovable, "FAT32", false, "X", 1}, "", "", false, true},
    };
    for (const Case& each : cases) {
        FakeVolumes volumes;
        volumes.fDrives = {each.fDrive};
        const TAvailableDrive drive('E');
        EXPECT_EQ(drive.GetVolumeName(), each.fVolumeName);
        EXPECT_EQ(drive.GetFileSystemName(), each.fFileSystem);
        EXPECT_EQ(drive.GetType(), static_cast<int32_t>(each.fDrive.fType));
        EXPECT_TRUE(drive.IsWritable() == each.fIsWritable && drive.IsRemovable() == each.fIsRemovable);
    }
}

}  // namespace
