// Arbitrary bytes as the texts in which the system and its user tell of file systems, disc recorders and
// drives.

#include <algorithm>
#include <set>
#include <string>

#include "fuzz/FuzzInput.h"
#include "platform/DriveList.h"
#include "platform/MountTable.h"
#include "platform/RecorderTable.h"

namespace {

using namespace Vantor::Platform;
using VantorFuzz::Require;

constexpr uint64_t kClusters = 5000;

void ReadAsMounts(std::string_view text) {
    const std::vector<Mount> mounts = ReadMounts(text);
    std::vector<std::string> folders;
    for (const Mount& mount : mounts) {
        Require(mount.fFolder.ends_with('/'));
        IsDrive(mount);
        FormatName(mount.fFormat, kClusters);
        folders.push_back(mount.fFolder);
    }
    Require(std::set<std::string>(folders.begin(), folders.end()).size() == folders.size());
    for (const std::string& folder : folders) {
        const std::string innermost = InnermostFolder(folders, folder);
        Require(innermost.empty() || FolderName(folder).starts_with(innermost));
    }
}

void ReadAsDrives(std::string_view text) {
    for (const NamedDrive& drive : ReadDriveList(text)) {
        Require(drive.fName.starts_with('/') && drive.fName.ends_with('/'));
        Require(drive.fType || (drive.fFormat.empty() && drive.fLabel.empty()));
        Require(FolderName(drive.fName) == drive.fName);
    }
}

void ReadAsRecorders(std::string_view text) {
    for (const std::string& name : ReadRecorders(text)) {
        Require(!name.empty() && name.find_first_of(" \t\n") == std::string::npos);
    }
    const std::string name = MakeVolumeName(text);
    Require(name.size() <= 32 && MakeVolumeName(name) == name);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<uint8_t> bytes = VantorFuzz::ExactCopy(data, size);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    ReadAsMounts(text);
    ReadAsDrives(text);
    ReadAsRecorders(text);
    return 0;
}
