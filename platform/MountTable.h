#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Volumes.h"

namespace Vantor::Platform {

// One file system in the tree of folders, as Linux tells of it in /proc/self/mountinfo. Plain rules over text
// and folders, so that they can be tested on any system.
struct Mount {
    std::string fDevice;  // its numbers: "8:1"
    std::string fRoot;    // what of the file system is mounted: "/" is all of it
    std::string fFolder;  // where, with a separator at the end
    std::string fFormat;  // as the system names it: "vfat"
    std::string fSource;  // a device, "/dev/sda1", or a server; some text for others
};

// All mounts in their order; of those in one folder the last, which hides the others. Lines that cannot be
// read are left out.
std::vector<Mount> ReadMounts(std::string_view mountInfo);

// True for what a person would call a drive: the root, discs, sticks, further local disks and network drives;
// not what the system mounts for itself.
bool IsDrive(const Mount& mount);

// `systemFolder` is where the kernel describes its devices: /sys.
DriveType DriveTypeOf(const Mount& mount, const std::string& systemFolder);

// A format under the name that hosts know. `clusters` tells the kinds of FAT apart.
std::string FormatName(const std::string& format, uint64_t clusters);

// The label of the file system on a device. `labelFolder` holds a link to its device for each label.
std::string LabelOf(const std::string& source, const std::string& labelFolder);

// The path of a folder in one spelling: without `.`, `..` and doubled separators, and with one at the end.
std::string FolderName(std::string_view path);

// The longest of the folders, each with a separator at the end, that a full path is or lies in; empty
// without.
std::string InnermostFolder(const std::vector<std::string>& folders, std::string_view path);

}  // namespace Vantor::Platform
