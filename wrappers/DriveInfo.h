#pragma once

#include <vector>

#include "platform/Volumes.h"
#include "wrappers/HostString.h"

namespace VantorWrappers {

using Vantor::Platform::DriveType;

// A drive of this computer. Only its name is kept; the rest is asked for each time.
class DriveInfo {
  public:
    explicit DriveInfo(const HostString& name) : fName(name) {}

    // All that the system reports, ready or not, in its order.
    static std::vector<DriveInfo> GetDrives();

    // "C:\", or the folder where the volume is mounted, with a separator at the end.
    const HostString& GetName() const { return fName; }

    DriveType GetType() const;

    // False for an empty drive, or one that has gone.
    bool IsReady() const;

    // The file system, such as "FAT32", and the volume's label; "" when the drive is not ready.
    HostString GetDriveFormat() const;
    HostString GetVolumeLabel() const;

    // True for two of the same name.
    bool operator==(const DriveInfo&) const = default;

  private:
    HostString fName;
};

}  // namespace VantorWrappers
