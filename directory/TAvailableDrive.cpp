#include "directory/TAvailableDrive.h"

#include <string>

#include "dicom/TTextUtil.h"
#include "platform/Volumes.h"

namespace Vantor {

namespace {

using Platform::Volumes;

constexpr char kUnnamed[] = ": (Unnamed)";

}  // namespace

TAvailableDrive::TAvailableDrive(char driveLetter) : fDriveLetter(driveLetter) {
    const std::string root = std::string(1, driveLetter) + ":\\";
    fDriveType = static_cast<int32_t>(Volumes::Current().GetType(root));
    const auto info = Volumes::Current().GetInfo(root);
    if (!info) return;
    const std::string name = info->fLabel.empty() ? driveLetter + std::string(kUnnamed) : info->fLabel;
    TTextUtil().CopyCString(name.c_str(), fVolumeName, kVolumeNameSize);
    TTextUtil().CopyCString(info->fFormat.c_str(), fFileSystemName, kFileSystemNameSize);
    fMaximumFileNameLength = info->fLongestName;
    fIsWritable = info->fFreeBytes > 0;
}

bool TAvailableDrive::IsRemovable() const {
    return Platform::IsRemovable(static_cast<Platform::DriveType>(fDriveType));
}

}  // namespace Vantor
