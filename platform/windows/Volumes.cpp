#include "platform/Volumes.h"

#include <windows.h>

#include <array>

#include "platform/Ascii.h"
#include "platform/FileSystem.h"
#include "platform/windows/QuietErrors.h"

namespace Vantor::Platform {

namespace {

constexpr const char* kNetworkName = "\\\\";

std::string DriveName(char letter) { return {UpperCase(letter), ':', '\\'}; }

bool IsLetter(char character) { return UpperCase(character) >= 'A' && UpperCase(character) <= 'Z'; }

class DriveVolumes final : public Volumes {
  public:
    std::vector<std::string> GetNames() override {
        std::vector<std::string> names;
        const DWORD drives = GetLogicalDrives();
        for (char letter = 'A'; letter <= 'Z'; ++letter) {
            if ((drives >> (letter - 'A') & 1U) != 0) {
                names.push_back(DriveName(letter));
            }
        }
        return names;
    }

    DriveType GetType(const std::string& name) override {
        return static_cast<DriveType>(GetDriveTypeA(name.c_str()));
    }

    std::optional<VolumeInfo> GetInfo(const std::string& name) override {
        const QuietErrors quiet;
        std::array<char, MAX_PATH + 1> label = {};
        std::array<char, MAX_PATH + 1> format = {};
        DWORD longestName = 0;
        DWORD flags = 0;
        if (!GetVolumeInformationA(name.c_str(), label.data(), static_cast<DWORD>(label.size()), nullptr,
                                   &longestName, &flags, format.data(), static_cast<DWORD>(format.size()))) {
            return std::nullopt;
        }
        const bool isReadOnly = (flags & FILE_READ_ONLY_VOLUME) != 0;
        return VolumeInfo{label.data(), format.data(), longestName, isReadOnly ? 0 : GetFreeBytes(name)};
    }

    std::string NameOf(const std::string& path) override {
        if (path.starts_with(kNetworkName)) {
            return kNetworkName;
        }
        const bool hasDrive = path.size() > 1 && IsLetter(path[0]) && path[1] == ':';
        return hasDrive ? DriveName(path[0]) : std::string();
    }
};

}  // namespace

Volumes& Volumes::OfSystem() {
    static DriveVolumes& volumes = *new DriveVolumes;  // never destroyed: see Clock.cpp
    return volumes;
}

}  // namespace Vantor::Platform
