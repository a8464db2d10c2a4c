#include "platform/Volumes.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/DriveList.h"
#include "platform/FileSystem.h"
#include "platform/MountTable.h"

namespace Vantor::Platform {

namespace {

constexpr const char* kMountTable = "/proc/self/mountinfo";
constexpr const char* kSystemFolder = "/sys";
constexpr const char* kLabelFolder = "/dev/disk/by-label";
constexpr const char* kDrivesVariable = "VANTOR_DRIVES";
constexpr const char* kWholeFileSystem = "/";

// Asked anew each time: media come and go.
std::vector<Mount> CurrentMounts() {
    std::ifstream file(kMountTable);
    return ReadMounts(std::string(std::istreambuf_iterator<char>(file), {}));
}

// Containers have single files mounted. All of a file system is a folder, which need not be asked: a server
// may be away.
bool IsFolderOf(const Mount& mount) { return mount.fRoot == kWholeFileSystem || IsFolder(mount.fFolder); }

std::vector<NamedDrive> ListDrives(const std::vector<Mount>& mounts) {
    const char* const list = std::getenv(kDrivesVariable);
    if (list != nullptr && *list != '\0') {
        return ReadDriveList(list);
    }
    std::vector<NamedDrive> drives;
    for (const Mount& mount : mounts) {
        if (IsDrive(mount) && IsFolderOf(mount)) {
            drives.push_back({mount.fFolder, std::nullopt, {}, {}});
        }
    }
    return drives;
}

std::optional<NamedDrive> FindDrive(const std::vector<Mount>& mounts, const std::string& name) {
    for (NamedDrive& drive : ListDrives(mounts)) {
        if (drive.fName == name) {
            return std::move(drive);
        }
    }
    return std::nullopt;
}

// The mount that a drive is, or that its folder lies on; an empty one where there is no such folder.
Mount MountOf(const std::vector<Mount>& mounts, const std::string& name) {
    std::vector<std::string> folders;
    folders.reserve(mounts.size());
    for (const Mount& mount : mounts) {
        folders.push_back(mount.fFolder);
    }
    std::string folder = name;
    if (std::find(folders.begin(), folders.end(), name) == folders.end()) {
        std::error_code ignored;
        const std::string path = std::filesystem::canonical(name, ignored).string();
        folder = path.empty() ? path : InnermostFolder(folders, path);
    }
    const auto found = std::find_if(mounts.begin(), mounts.end(),
                                    [&](const Mount& mount) { return mount.fFolder == folder; });
    return found != mounts.end() ? *found : Mount();
}

class MountedVolumes final : public Volumes {
  public:
    std::vector<std::string> GetNames() override {
        std::vector<std::string> names;
        for (const NamedDrive& drive : ListDrives(CurrentMounts())) {
            names.push_back(drive.fName);
        }
        return names;
    }

    DriveType GetType(const std::string& name) override {
        const std::vector<Mount> mounts = CurrentMounts();
        const std::optional<NamedDrive> drive = FindDrive(mounts, name);
        if (!drive) {
            return DriveType::kNoRoot;
        }
        if (drive->fType) {
            return *drive->fType;
        }
        const Mount mount = MountOf(mounts, name);
        return mount.fFolder.empty() ? DriveType::kUnknown : DriveTypeOf(mount, kSystemFolder);
    }

    std::optional<VolumeInfo> GetInfo(const std::string& name) override {
        const std::vector<Mount> mounts = CurrentMounts();
        const std::optional<NamedDrive> drive = FindDrive(mounts, name);
        struct statvfs volume = {};
        if (!drive || statvfs(name.c_str(), &volume) != 0) {
            return std::nullopt;
        }
        const Mount mount = MountOf(mounts, name);
        const bool isReadOnly = (volume.f_flag & ST_RDONLY) != 0;
        return VolumeInfo{
            drive->fLabel.empty() ? LabelOf(mount.fSource, kLabelFolder) : drive->fLabel,
            drive->fFormat.empty() ? FormatName(mount.fFormat, volume.f_blocks) : drive->fFormat,
            static_cast<uint32_t>(volume.f_namemax),
            isReadOnly ? 0 : uint64_t{volume.f_bavail} * volume.f_frsize};
    }

    std::string NameOf(const std::string& path) override {
        return path.starts_with('/') ? InnermostFolder(GetNames(), path) : std::string();
    }
};

}  // namespace

Volumes& Volumes::OfSystem() {
    static MountedVolumes& volumes = *new MountedVolumes;  // never destroyed: see Clock.cpp
    return volumes;
}

}  // namespace Vantor::Platform
