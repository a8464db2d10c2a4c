#include "platform/MountTable.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <unordered_map>

namespace Vantor::Platform {

namespace {

namespace fs = std::filesystem;

constexpr char kSeparator = '/';

// The fields of a line; behind the folder stand its options, any number of others and a dash.
constexpr char kFieldEnd = ' ';
constexpr std::string_view kDash = "-";
constexpr size_t kDeviceField = 2;
constexpr size_t kRootField = 3;
constexpr size_t kFolderField = 4;
constexpr ptrdiff_t kFirstOptionalField = 6;
constexpr ptrdiff_t kFieldsBehindDash = 2;

constexpr size_t kOctalDigits = 3;  // \040
constexpr size_t kHexDigits = 2;    // x20, behind the backslash and its letter
constexpr unsigned kOctal = 8;
constexpr unsigned kHexadecimal = 16;

// What the system, not a person, looks at.
constexpr auto kSystemFolders =
    std::to_array<std::string_view>({"/boot/", "/dev/", "/efi/", "/etc/", "/gnu/", "/nix/", "/proc/", "/run/",
                                     "/snap/", "/sys/", "/tmp/", "/usr/", "/var/"});

// Where people and desktops put what they plug in.
constexpr auto kPeoplesFolders = std::to_array<std::string_view>({"/media/", "/mnt/", "/run/media/"});

// Files of another machine; the last ones of the machine that this one is a guest of.
constexpr auto kNetworkFormats =
    std::to_array<std::string_view>({"nfs",         "nfs4",          "cifs",
                                     "smb3",        "smbfs",         "ncpfs",
                                     "afs",         "ceph",          "davfs",
                                     "glusterfs",   "lustre",        "fuse.sshfs",
                                     "fuse.ceph",   "fuse.davfs2",   "fuse.glusterfs",
                                     "fuse.rclone", "fuse.smbnetfs", "9p",
                                     "virtiofs",    "vboxsf",        "fuse.vmhgfs-fuse"});

constexpr auto kMemoryFormats = std::to_array<std::string_view>({"tmpfs", "ramfs"});

// Kept on disks of this machine although their source is no device.
constexpr auto kPooledFormats = std::to_array<std::string_view>({"zfs"});

constexpr std::string_view kDiscFormat = "iso9660";
constexpr std::string_view kPackedFormat = "squashfs";  // programs that the system unpacks on the fly
constexpr std::string_view kUserSpaceStart = "fuse.";
constexpr std::string_view kFatFormat = "vfat";
constexpr std::string_view kDeviceStart = "/dev/";
constexpr std::string_view kLoopStart = "/dev/loop";
constexpr std::string_view kOpticalName = "sr";

// A FAT with fewer clusters has entries of 12 bits, or of 16.
constexpr uint64_t kLeastClustersOfFat16 = 4085;
constexpr uint64_t kLeastClustersOfFat32 = 65525;

struct NamedFormat {
    std::string_view fSystemName;
    const char* fName;
};
constexpr auto kNamedFormats = std::to_array<NamedFormat>({{"msdos", "FAT"},
                                                           {"iso9660", "CDFS"},
                                                           {"udf", "UDF"},
                                                           {"ntfs", "NTFS"},
                                                           {"ntfs3", "NTFS"},
                                                           {"fuseblk", "NTFS"},
                                                           {"exfat", "exFAT"}});

template <typename List>
bool IsAmong(const List& list, std::string_view text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

template <typename List>
bool StartsWithOneOf(const List& list, std::string_view text) {
    return std::any_of(list.begin(), list.end(),
                       [&](std::string_view start) { return text.starts_with(start); });
}

std::vector<std::string_view> SplitFields(std::string_view line) {
    std::vector<std::string_view> fields;
    for (;;) {
        const size_t end = line.find(kFieldEnd);
        fields.push_back(line.substr(0, end));
        if (end == std::string_view::npos) {
            return fields;
        }
        line.remove_prefix(end + 1);
    }
}

// The byte that all of the digits stand for.
std::optional<char> ReadByte(std::string_view digits, size_t count, unsigned base) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    unsigned value = 0;
    for (const char digit : digits.substr(0, count)) {
        const size_t number = kDigits.find(digit);
        if (number >= base) {
            return std::nullopt;
        }
        value = value * base + static_cast<unsigned>(number);
    }
    return digits.size() < count ? std::nullopt : std::optional(static_cast<char>(value));
}

// Bytes that would disturb stand there as `start` and their number.
std::string Unescaped(std::string_view text, std::string_view start, size_t digits, unsigned base) {
    std::string plain;
    while (!text.empty()) {
        const bool isEscape = text.starts_with(start);
        const auto byte = isEscape ? ReadByte(text.substr(start.size()), digits, base) : std::nullopt;
        plain += byte.value_or(text.front());
        text.remove_prefix(byte ? start.size() + digits : 1);
    }
    return plain;
}

std::string UnescapedField(std::string_view field) { return Unescaped(field, "\\", kOctalDigits, kOctal); }

std::string WithSeparator(const std::string& path) {
    return path.ends_with(kSeparator) ? path : path + kSeparator;
}

std::optional<Mount> ReadMount(std::string_view line) {
    const std::vector<std::string_view> fields = SplitFields(line);
    if (static_cast<ptrdiff_t>(fields.size()) < kFirstOptionalField) {
        return std::nullopt;
    }
    const auto dash = std::find(fields.begin() + kFirstOptionalField, fields.end(), kDash);
    if (fields.end() - dash <= kFieldsBehindDash) {
        return std::nullopt;
    }
    return Mount{std::string(fields[kDeviceField]), UnescapedField(fields[kRootField]),
                 WithSeparator(UnescapedField(fields[kFolderField])), UnescapedField(dash[1]),
                 UnescapedField(dash[2])};
}

bool IsDisk(const Mount& mount) {
    const bool isPacked = mount.fSource.starts_with(kLoopStart) && mount.fFormat == kPackedFormat;
    return (mount.fSource.starts_with(kDeviceStart) && !isPacked) || IsAmong(kPooledFormats, mount.fFormat);
}

bool ExistsAt(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

// The path with all links followed; itself where that cannot be done.
fs::path RealPath(const fs::path& path) {
    std::error_code error;
    fs::path real = fs::canonical(path, error);
    return error ? path : real;
}

// Where the kernel describes the device that holds the file system: by its name, because some file systems
// have device numbers of their own; by its numbers where the name is of no use.
fs::path DeviceFolder(const Mount& mount, const fs::path& systemFolder) {
    const fs::path byName = systemFolder / "class" / "block" / RealPath(mount.fSource).filename();
    const bool isDevice = mount.fSource.starts_with(kDeviceStart) && ExistsAt(byName);
    return RealPath(isDevice ? byName : systemFolder / "dev" / "block" / mount.fDevice);
}

bool SaysRemovable(const fs::path& device) {
    std::ifstream file(device / "removable");
    return file.get() == '1';
}

bool IsOnUsb(const fs::path& device) {
    return std::any_of(device.begin(), device.end(),
                       [](const fs::path& folder) { return folder.generic_string().starts_with("usb"); });
}

// The device, the disk that it is a part of, or, for an encrypted one, what it is kept on.
bool IsRemovable(const fs::path& device) {
    if (SaysRemovable(device) || SaysRemovable(device.parent_path()) || IsOnUsb(device)) {
        return true;
    }
    std::error_code ignored;
    fs::directory_iterator slaves(device / "slaves", ignored);
    return std::any_of(fs::begin(slaves), fs::end(slaves),
                       [](const fs::directory_entry& slave) { return IsRemovable(RealPath(slave.path())); });
}

}  // namespace

std::vector<Mount> ReadMounts(std::string_view mountInfo) {
    std::vector<Mount> mounts;
    std::unordered_map<std::string, size_t> places;
    while (!mountInfo.empty()) {
        const size_t end = std::min(mountInfo.find('\n'), mountInfo.size());
        if (std::optional<Mount> mount = ReadMount(mountInfo.substr(0, end))) {
            const auto [place, isNew] = places.try_emplace(mount->fFolder, mounts.size());
            if (isNew) {
                mounts.emplace_back();
            }
            mounts[place->second] = std::move(*mount);
        }
        mountInfo.remove_prefix(std::min(end + 1, mountInfo.size()));
    }
    return mounts;
}

bool IsDrive(const Mount& mount) {
    if (mount.fFolder == std::string_view(&kSeparator, 1)) {
        return true;
    }
    if (StartsWithOneOf(kPeoplesFolders, mount.fFolder)) {
        return IsDisk(mount) || IsAmong(kNetworkFormats, mount.fFormat) ||
               mount.fFormat.starts_with(kUserSpaceStart);
    }
    return !StartsWithOneOf(kSystemFolders, mount.fFolder) &&
           (IsDisk(mount) || IsAmong(kNetworkFormats, mount.fFormat));
}

DriveType DriveTypeOf(const Mount& mount, const std::string& systemFolder) {
    if (IsAmong(kNetworkFormats, mount.fFormat)) {
        return DriveType::kNetwork;
    }
    if (IsAmong(kMemoryFormats, mount.fFormat)) {
        return DriveType::kRamDisk;
    }
    const fs::path device = DeviceFolder(mount, systemFolder);
    // An image of a disc is one too: nothing can be written there.
    if (mount.fFormat == kDiscFormat || device.filename().generic_string().starts_with(kOpticalName)) {
        return DriveType::kCdRom;
    }
    return IsRemovable(device) ? DriveType::kRemovable : DriveType::kFixed;
}

std::string FormatName(const std::string& format, uint64_t clusters) {
    if (format == kFatFormat) {
        return clusters < kLeastClustersOfFat16   ? "FAT12"
               : clusters < kLeastClustersOfFat32 ? "FAT16"
                                                  : "FAT32";
    }
    const auto* const named =
        std::find_if(kNamedFormats.begin(), kNamedFormats.end(),
                     [&](const NamedFormat& candidate) { return candidate.fSystemName == format; });
    return named != kNamedFormats.end() ? named->fName : format;
}

std::string LabelOf(const std::string& source, const std::string& labelFolder) {
    std::error_code ignored;
    fs::directory_iterator labels(labelFolder, ignored);
    const auto label = std::find_if(
        fs::begin(labels), fs::end(labels),
        [&](const fs::directory_entry& entry) { return RealPath(entry.path()) == RealPath(source); });
    return label == fs::end(labels)
               ? std::string()
               : Unescaped(label->path().filename().string(), "\\x", kHexDigits, kHexadecimal);
}

std::string FolderName(std::string_view path) {
    return WithSeparator(fs::path(path).lexically_normal().generic_string());
}

std::string InnermostFolder(const std::vector<std::string>& folders, std::string_view path) {
    const std::string folder = FolderName(path);
    std::string innermost;
    for (const std::string& candidate : folders) {
        if (folder.starts_with(candidate) && candidate.size() > innermost.size()) {
            innermost = candidate;
        }
    }
    return innermost;
}

}  // namespace Vantor::Platform
