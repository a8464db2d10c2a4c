#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/AccessGranting.h"
#include "host/DamagedDirectory.h"
#include "platform/CodePage.h"
#include "platform/Registry.h"
#include "tests/directory/DirectorySupport.h"
#include "tests/support/FakeVolumes.h"
#include "tests/support/HostFormats.h"
#include "tests/support/TraceLines.h"
#include "wrappers/DirectoriesMgr.h"

namespace VantorTest {

using Lines = std::vector<std::string>;
using VantorWrappers::DicomDirectory;
using VantorWrappers::DirectoriesMgr;
using VantorWrappers::ErrorNumber;
using VantorWrappers::ErrorSeverity;
using VantorWrappers::HostString;
using VantorWrappers::LuminaError;
using VantorWrappers::SeriesDirRec;

inline constexpr LuminaError kSuccess;
inline LuminaError Fatal(ErrorNumber number) { return {ErrorSeverity::Fatal, number}; }

inline HostString Wide(const std::string& text) { return Vantor::Platform::ToHostText(text); }

// A workstation of a test's own: drives C and D, an empty registry, a trace that is read at warnings and
// errors, a host that keeps notes instead of asking the user, and the manager of its directories.
class Workstation : public testing::Test {
  protected:
    Workstation() {
        for (const char* name : {"C", "D"}) {
            const std::string path = fFolder.MakeFolder(name) + kSeparator;
            fVolumes.fDrives.push_back({path, path});
        }
        const auto grant = [this](const HostString& path) { fGranted.push_back(path); };
        VantorHost::AccessGranting::SetGranters(grant, grant);
        VantorHost::DamagedDirectory::SetHandler([this](const HostString& text) { fDamage.push_back(text); });
    }
    ~Workstation() override {
        fManager.reset();
        VantorHost::AccessGranting::SetGranters(nullptr, nullptr);
        VantorHost::DamagedDirectory::SetHandler(nullptr);
    }

    DirectoriesMgr& Start(bool skipFloppy = false, bool isViewer = false, const HostString& volume = L"",
                          bool withCdWriter = false) {
        fManager.reset();
        fManager = std::make_unique<DirectoriesMgr>(skipFloppy, isViewer, volume, withCdWriter);
        return *fManager;
    }

    HostString PathOf(std::string_view name) const { return Wide(fFolder.PathOf(name)); }
    std::shared_ptr<DicomDirectory> Open(std::string_view name) {
        return fManager->OpenDirectory(PathOf(name));
    }

    // Writes a DICOMDIR with patients, and the files of their images with content of their own: of each
    // patient number study number + 1, series + 2 and + 5, images + 3, + 4 and + 6.
    void WriteMedium(const std::string& folder, const std::vector<int>& patients) const {
        DirectoryBuilder media;
        for (const int patient : patients) {
            const int study = media.AddStudy(media.AddPatient(patient), patient + 1);
            const int first = media.AddSeries(study, patient + 2);
            const int second = media.AddSeries(study, patient + 5);
            for (const int number : {3, 4, 6}) {
                media.AddInstance(number == 6 ? second : first, patient + number);
                Bytes content(number == 4 ? 200000 : 2500, static_cast<uint8_t>(patient + number));
                for (size_t index = 0; index < content.size(); index += 7) {
                    content[index] = static_cast<uint8_t>(index / 7);
                }
                fFolder.WriteFile(folder + "/IMAGES/" + std::to_string(patient + number), content);
            }
        }
        fFolder.WriteFile(folder + "/DICOMDIR", media.Build());
    }

    // What another program finds.
    std::string TreeOnDisk(std::string_view name) const {
        Vantor::TDicomDirectory directory(Vantor::TFileSpec(fFolder.PathOf(name)), 0);
        return TreesOf(directory);
    }
    static std::string Tree(const DicomDirectory& directory) { return TreesOf(*directory.GetUmDirectory()); }

    // Enters a patient that no DICOMDIR can have, so that it cannot be written until it is read again.
    static void MakeUnwritable(const DicomDirectory& directory) {
        int32_t error = 0;
        Vantor::TPatientDoc patient(nullptr, nullptr);
        directory.GetUmDirectory()->FindOrCreateDoc(&patient, error);
    }

    HostFormats fFormats;
    TestFolder fFolder;
    TestFolder fRegistryFolder;
    FakeVolumes fVolumes;
    Vantor::Platform::ReplacedRegistry fRegistry{fRegistryFolder.GetPath()};
    TraceLines fTrace{VantorHost::TraceArea::kDirectory, VantorHost::TraceLevel::kWarning};
    std::vector<HostString> fGranted;
    std::vector<HostString> fDamage;
    std::unique_ptr<DirectoriesMgr> fManager;
};

}  // namespace VantorTest
