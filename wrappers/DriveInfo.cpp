#include "wrappers/DriveInfo.h"

#include "platform/CodePage.h"

namespace VantorWrappers {

namespace {

using Vantor::Platform::FromHostText;
using Vantor::Platform::ToHostText;
using Vantor::Platform::Volumes;

}  // namespace

std::vector<DriveInfo> DriveInfo::GetDrives() {
    std::vector<DriveInfo> drives;
    for (const std::string& name : Volumes::Current().GetNames()) drives.emplace_back(ToHostText(name));
    return drives;
}

DriveType DriveInfo::GetType() const { return Volumes::Current().GetType(FromHostText(fName)); }

bool DriveInfo::IsReady() const { return Volumes::Current().GetInfo(FromHostText(fName)).has_value(); }

HostString DriveInfo::GetDriveFormat() const {
    const auto info = Volumes::Current().GetInfo(FromHostText(fName));
    return info ? ToHostText(info->fFormat) : HostString();
}

HostString DriveInfo::GetVolumeLabel() const {
    const auto info = Volumes::Current().GetInfo(FromHostText(fName));
    return info ? ToHostText(info->fLabel) : HostString();
}

}  // namespace VantorWrappers
