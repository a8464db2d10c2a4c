#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Vantor::Platform {

// What kind of drive a volume is in, in the numbers that hosts know.
enum class DriveType : int32_t {
    kUnknown = 0,
    kNoRoot = 1,
    kRemovable = 2,
    kFixed = 3,
    kNetwork = 4,
    kCdRom = 5,
    kRamDisk = 6,
};

// True for drives whose medium is taken out.
constexpr bool IsRemovable(DriveType type) {
    return type == DriveType::kRemovable || type == DriveType::kCdRom;
}

// False for drives that can only be read, and those of which nothing is known.
constexpr bool MayBeWritten(DriveType type) {
    return type != DriveType::kCdRom && type != DriveType::kUnknown;
}

// What a volume says of itself.
struct VolumeInfo {
    std::string fLabel;         // empty without
    std::string fFormat;        // such as "NTFS", "FAT32", "CDFS", "ext4"
    uint32_t fLongestName = 0;  // of a file or folder, in characters
    uint64_t fFreeBytes = 0;    // that anybody may still write
};

// The volumes of this computer. A volume's name ends with a separator: "C:\", or the folder where it is
// mounted, "/media/usb/".
class Volumes {
  public:
    virtual ~Volumes() = default;

    // The names of all that the system reports, in its order, ready or not.
    virtual std::vector<std::string> GetNames() = 0;

    virtual DriveType GetType(const std::string& name) = 0;

    // None for a volume that is not ready: an empty drive, a share that is away.
    virtual std::optional<VolumeInfo> GetInfo(const std::string& name) = 0;

    // The name of the volume that a full path is on, whether or not there is anything: the drive, or the
    // innermost of the mounted ones; `\\` for a network share of Windows. Empty for other paths.
    virtual std::string NameOf(const std::string& path) = 0;

    // The system's own, which the port gives. Ask the current ones instead.
    static Volumes& OfSystem();

    // The ones in use: the system's, unless a ReplacedVolumes is alive.
    static Volumes& Current();
};

// Puts other volumes in place until destroyed; nested replacements end in reverse order.
class ReplacedVolumes {
  public:
    // `volumes` is not owned and must outlive this object.
    explicit ReplacedVolumes(Volumes& volumes);
    ~ReplacedVolumes();
    ReplacedVolumes(const ReplacedVolumes&) = delete;
    ReplacedVolumes& operator=(const ReplacedVolumes&) = delete;

  private:
    Volumes* fPrevious;
};

}  // namespace Vantor::Platform
