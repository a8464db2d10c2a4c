#pragma once

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "platform/Volumes.h"
#include "tests/support/TestFolder.h"

namespace VantorTest {

struct FakeDrive {
    std::string fName;    // with a separator at the end
    std::string fFolder;  // where what is on it lies; likewise
    Vantor::Platform::DriveType fType = Vantor::Platform::DriveType::kFixed;
    std::string fFormat = "NTFS";
    bool fIsReady = true;
    std::string fLabel = "LABEL";
    uint64_t fFreeBytes = 1 << 20;
};

// While it is alive, the computer has the drives that a test lists, in that order.
class FakeVolumes final : public Vantor::Platform::Volumes {
  public:
    static constexpr char kNetwork[] = "\\\\";  // a drive that the system does not report

    std::vector<std::string> GetNames() override {
        std::vector<std::string> names;
        for (const FakeDrive& drive : fDrives) {
            if (drive.fName != kNetwork) names.push_back(drive.fName);
        }
        return names;
    }
    Vantor::Platform::DriveType GetType(const std::string& name) override {
        const FakeDrive* const drive = Find(name);
        return drive == nullptr ? Vantor::Platform::DriveType::kNoRoot : drive->fType;
    }
    std::optional<Vantor::Platform::VolumeInfo> GetInfo(const std::string& name) override {
        const FakeDrive* const drive = Find(name);
        if (drive == nullptr || !drive->fIsReady) return std::nullopt;
        return Vantor::Platform::VolumeInfo{drive->fLabel, drive->fFormat, 255, drive->fFreeBytes};
    }
    std::string NameOf(const std::string& path) override {
        const FakeDrive innermost = std::accumulate(
            fDrives.begin(), fDrives.end(), FakeDrive(), [&](const FakeDrive& best, const FakeDrive& drive) {
                const bool isOn = (path + drive.fFolder.back()).starts_with(drive.fFolder);
                return isOn && drive.fFolder.size() > best.fFolder.size() ? drive : best;
            });
        return innermost.fName;
    }

    std::vector<FakeDrive> fDrives;

  private:
    const FakeDrive* Find(const std::string& name) const {
        const auto found = std::find_if(fDrives.begin(), fDrives.end(),
                                        [&](const FakeDrive& drive) { return drive.fName == name; });
        return found == fDrives.end() ? nullptr : &*found;
    }

    Vantor::Platform::ReplacedVolumes fReplaced{*this};
};

}  // namespace VantorTest
