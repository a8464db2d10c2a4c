#pragma once

#include <cstdint>

namespace Vantor {

// What is known of the volume in the drive of one letter, as it was when this object was made. Texts are
// 8-bit and cut to their fields; all are empty when the drive is not ready.
class TAvailableDrive {
  public:
    static constexpr uint32_t kVolumeNameSize = 255;
    static constexpr uint32_t kFileSystemNameSize = 32;

    explicit TAvailableDrive(char driveLetter);

    char GetDriveLetter() const { return fDriveLetter; }

    // The label; "E: (Unnamed)" for a volume without one in the drive E.
    const char* GetVolumeName() const { return fVolumeName; }

    // Such as "FAT32".
    const char* GetFileSystemName() const { return fFileSystemName; }

    // In the numbers of Platform::DriveType.
    int32_t GetType() const { return fDriveType; }

    // Of a file, in characters.
    uint32_t GetMaximumFileNameLength() const { return fMaximumFileNameLength; }

    // True while the volume has room.
    bool IsWritable() const { return fIsWritable; }

    // True for drives whose medium is taken out and for those of discs.
    bool IsRemovable() const;

  private:
    char fDriveLetter;
    char fVolumeName[kVolumeNameSize] = {};
    char fFileSystemName[kFileSystemNameSize] = {};
    int32_t fDriveType = 0;
    uint32_t fMaximumFileNameLength = 0;
    bool fIsWritable = false;
};

}  // namespace Vantor
