#include "platform/Volumes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "platform/DriveList.h"
#include "platform/MountTable.h"
#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::kIsWindows;
using VantorTest::TestFolder;
using Names = std::vector<std::string>;

namespace fs = std::filesystem;

TEST(Volumes, OfTheSystemHoldTheTestsFolder) {
    const TestFolder folder;
    Volumes& volumes = Volumes::Current();
    const std::string name = volumes.NameOf(fs::canonical(folder.GetPath()).string() + "/missing/file");
    const Names names = volumes.GetNames();
    ASSERT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
    EXPECT_GE(volumes.GetType(name), DriveType::kRemovable);
    const auto info = volumes.GetInfo(name);
    ASSERT_TRUE(info);
    EXPECT_FALSE(info->fFormat.empty());
    EXPECT_GE(info->fLongestName, 12U);
    EXPECT_EQ(info->fFreeBytes >> 24, fs::space(name).available >> 24);
    const std::string missing = kIsWindows ? "?:\\" : "/missing/";
    EXPECT_EQ(volumes.GetType(missing), DriveType::kNoRoot);
    EXPECT_FALSE(volumes.GetInfo(missing));
    EXPECT_EQ(volumes.NameOf(kIsWindows ? "c:x" : "/"), kIsWindows ? "C:\\" : "/");
    EXPECT_EQ(volumes.NameOf("\\\\server\\share\\x"), kIsWindows ? "\\\\" : "");
    EXPECT_EQ(volumes.NameOf("relative") + volumes.NameOf("") + volumes.NameOf("1:\\x"), "");
}

// A workstation, and what a container sees.
TEST(MountTable, ListsWhatAPersonCallsADrive) {
    const std::vector<Mount> mounts = ReadMounts(
        "1 0 0:1 / / rw - rootfs rootfs rw\n27 1 8:1 /@ / rw shared:1 master:2 - btrfs /dev/sda1 rw\n"
        "22 27 0:21 / /proc rw - proc proc rw\n23 27 0:22 / /dev/shm rw - tmpfs tmpfs rw\n"
        "24 27 8:2 / /boot/efi rw - vfat /dev/sda2 rw\n25 27 8:3 / /home rw,x - ext4 /dev/mapper/a\\040b rw\n"
        "26 27 7:0 / /snap/core/1 ro - squashfs /dev/loop0 ro\n27 27 7:1 / /opt/x ro - squashfs /dev/loop1 "
        "ro\n"
        "28 27 0:9 / /media/u/A\\040\\134\\1 rw - vfat /dev/sdb1 rw\n29 27 11:0 / /run/media/u/CD ro - udf "
        "/dev/sr0 ro\n"
        "30 27 0:40 / /archive rw - cifs //server/share rw\n31 27 0:41 / /mnt/f rw - fuse.sshfs u@h:/ rw\n"
        "32 27 0:42 / /run/user/1/gvfs rw - fuse.gvfsd-fuse gvfsd-fuse rw\n33 27 0:43 / /mnt/t rw - tmpfs t "
        "rw\n"
        "34 27 0:44 / /tank rw - zfs tank/data rw\n35 27 8:1 /hosts /etc/hosts rw - ext4 /dev/sda1 rw\n"
        "36 27 0:45 / /mnt/own rw - fuse.own x rw\n37 27 0:46 / /var/lib/d/merged rw - overlay overlay rw\n"
        "38 27 0:47 / /archive rw - nfs4 later:/ rw\n\ntorn off\n39 27 8:4 / /mnt/x rw - ext4\n40 27 8:4 / "
        "/mnt/y rw");
    std::string drives;
    for (const Mount& mount : mounts) {
        if (IsDrive(mount)) drives += mount.fFolder + "=" + mount.fFormat + "@" + mount.fSource + "\n";
    }
    EXPECT_EQ(drives,
              "/=btrfs@/dev/sda1\n/home/=ext4@/dev/mapper/a b\n/media/u/A \\\\1/=vfat@/dev/sdb1\n"
              "/run/media/u/CD/=udf@/dev/sr0\n/archive/=nfs4@later:/\n/mnt/f/=fuse.sshfs@u@h:/\n/tank/"
              "=zfs@tank/data\n"
              "/mnt/own/=fuse.own@x\n");
    EXPECT_EQ(mounts.size(), 17U) << "two are hidden, and three lines say nothing";
    EXPECT_EQ(mounts.front().fRoot + mounts.front().fDevice, "/@8:1");
}

TEST(MountTable, TellsTypesOfDrives) {
    const TestFolder folder;
    folder.WriteFile("class/block/sda/removable", "0\n");
    folder.MakeFolder("class/block/sda/sda1");
    folder.WriteFile("class/block/sdb/removable", "1\n");
    folder.WriteFile("class/block/sr0/removable", "1\n");
    folder.MakeFolder("class/block/dm-0/slaves/usb1/sdc");
    folder.MakeFolder("class/block/dm-1/slaves/sdd");
    folder.WriteFile("dev/block/numbers/removable", "1\n");
    folder.WriteFile("disk/removable", "1\n");
    folder.MakeFolder("disk/part");
    std::error_code noLinks;
    fs::create_directory_symlink(folder.PathOf("disk/part"), folder.PathOf("class/block/part"), noLinks);
    fs::create_directory_symlink(folder.PathOf("class/block/dm-0/slaves/usb1/sdc"),
                                 folder.PathOf("class/block/dm-0/slaves/sdc"), noLinks);
    const auto typeOf = [&](const std::string& format, const std::string& source) {
        return DriveTypeOf({"numbers", "/", "/x/", format, source}, folder.GetPath());
    };
    EXPECT_EQ(typeOf("ext4", "/dev/sda"), DriveType::kFixed);
    EXPECT_EQ(typeOf("ext4", "/dev/dm-1"), DriveType::kFixed);
    EXPECT_EQ(typeOf("vfat", "/dev/sdb"), DriveType::kRemovable);
    EXPECT_EQ(typeOf("ext4", "/dev/root"), DriveType::kRemovable) << "found by its numbers";
    EXPECT_EQ(typeOf("zfs", "sda"), DriveType::kRemovable) << "likewise";
    EXPECT_EQ(typeOf("udf", "/dev/sr0"), DriveType::kCdRom);
    EXPECT_EQ(typeOf("iso9660", "/dev/sda"), DriveType::kCdRom);
    EXPECT_EQ(typeOf("nfs4", "sdb"), DriveType::kNetwork);
    EXPECT_EQ(typeOf("tmpfs", "tmpfs"), DriveType::kRamDisk);
    if (noLinks) GTEST_SKIP() << "no links here";
    EXPECT_EQ(typeOf("vfat", "/dev/part"), DriveType::kRemovable) << "as the whole disk";
    EXPECT_EQ(typeOf("ext4", "/dev/dm-0"), DriveType::kRemovable) << "encrypted, on a stick";
    const std::string device = folder.WriteFile("sdb1", "");
    fs::create_directory(folder.PathOf("labels"));
    fs::create_symlink(folder.PathOf("class"), folder.PathOf("labels/OTHER"));
    fs::create_symlink("../sdb1", folder.PathOf("labels/ECHO\\x2012\\x5c\\x"));
    EXPECT_EQ(LabelOf(device, folder.PathOf("labels")), "ECHO 12\\\\x");
    EXPECT_EQ(LabelOf(folder.PathOf("disk"), folder.PathOf("labels")) + LabelOf(device, "/missing"), "");
}

TEST(MountTable, NamesFormatsAsHostsKnowThem) {
    EXPECT_EQ(FormatName("vfat", 4084) + FormatName("vfat", 65524) + FormatName("vfat", 65525),
              "FAT12FAT16FAT32");
    EXPECT_EQ(FormatName("iso9660", 0) + FormatName("fuseblk", 0) + FormatName("ext4", 0), "CDFSNTFSext4");
}

TEST(MountTable, FindsTheInnermostFolder) {
    const Names folders = {"/media/", "/media/a/", "/"};
    EXPECT_EQ(InnermostFolder(folders, "/media/a"), "/media/a/");
    EXPECT_EQ(InnermostFolder(folders, "/media//b/../a/./x"), "/media/a/");
    EXPECT_EQ(InnermostFolder(folders, "/media/ab"), "/media/");
    EXPECT_EQ(InnermostFolder(folders, "/mediaa"), "/");
    EXPECT_EQ(InnermostFolder({"/media/"}, "/data"), "");
}

TEST(DriveList, ReadsWhatTheUserHasNamed) {
    std::string text;
    for (const NamedDrive& drive : ReadDriveList("/media/disc=cdrom,CDFS,ECHO 12, A:/a=b/c//=ram::relative:"
                                                 "/x,y=removable,,L:/z=floppy,F:/=network,N:/:/f=fixed")) {
        text += drive.fName + "|" +
                std::to_string(static_cast<int>(drive.fType.value_or(DriveType::kUnknown))) + "|" +
                drive.fFormat + "|" + drive.fLabel + "\n";
    }
    EXPECT_EQ(text,
              "/media/disc/|5|CDFS|ECHO 12, "
              "A\n/a=b/c/|6||\n/x,y/|2||L\n/z=floppy,F/|0||\n/|4|N|\n/|0||\n/f/|3||\n");
}

}  // namespace Vantor::Platform
