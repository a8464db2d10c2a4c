#pragma once

#include <memory>
#include <utility>

#include "wrappers/DriveInfo.h"

namespace VantorWrappers {

// A drive that was ready when the drives were looked at last.
class AvailableDrive {
  public:
    AvailableDrive() = default;
    explicit AvailableDrive(std::shared_ptr<const DriveInfo> driveInfo) : fDriveInfo(std::move(driveInfo)) {}

    // Null for an object without a drive.
    const std::shared_ptr<const DriveInfo>& GetDriveInfo() const { return fDriveInfo; }

    // The drive's name, as "C:\"; "" without a drive.
    HostString GetDriveLetter() const { return fDriveInfo == nullptr ? HostString() : fDriveInfo->GetName(); }

  private:
    std::shared_ptr<const DriveInfo> fDriveInfo;
};

}  // namespace VantorWrappers
