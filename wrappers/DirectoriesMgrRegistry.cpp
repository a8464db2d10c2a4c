// The folders that are remembered from one run of the host to the next.

#include <string>

#include "platform/CodePage.h"
#include "platform/FileSystem.h"
#include "platform/Registry.h"
#include "wrappers/Boundary.h"
#include "wrappers/DirectoriesMgr.h"

namespace VantorWrappers {

using Vantor::Platform::RegistryChange;
using Vantor::Platform::RegistryKey;

namespace {

constexpr char kRegistryKey[] = "Software\\Norvik\\Lumina\\DIR_INFO";
constexpr char kFolderValue[] = "FolderDirPath";  // followed by the number of the slot
constexpr char kStagingValue[] = "StagingPath";
constexpr char kNetworkValue[] = "NetFolderPath";

std::string SlotValue(int32_t slot) { return kFolderValue + std::to_string(slot); }

// The path of an existing folder; "" for everything else.
HostString ReadFolder(const RegistryKey& key, const std::string& value) {
    const HostString path = key.ReadText(value).value_or(L"");
    return Vantor::Platform::IsFolder(Vantor::Platform::FromHostText(path)) ? path : HostString();
}

}  // namespace

void DirectoriesMgr::UpdateFromRegistry() {
    if (fIsViewer) return;
    const auto key = RegistryKey::Open(kRegistryKey);
    if (!key) return;
    fReadingRegistry = true;
    for (int32_t slot = 1; slot <= kRememberedFolders; ++slot) {
        const HostString path = ReadFolder(*key, SlotValue(slot));
        if (!path.empty()) AddToFolderDirList(path, true);
    }
    SetStagingDir(OpenRememberedFolder(ReadFolder(*key, kStagingValue)));
    SetNetworkDir(OpenRememberedFolder(ReadFolder(*key, kNetworkValue)));
    fReadingRegistry = false;
}

// Null for an empty path.
std::shared_ptr<DicomDirectory> DirectoriesMgr::OpenRememberedFolder(const HostString& path) {
    auto directory = path.empty() ? nullptr : FindOrCreateFolderDirectory(path);
    if (directory != nullptr) directory->SetMarkedToRemember(false);
    return directory;
}

void DirectoriesMgr::WriteToRegistry() {
    if (fReadingRegistry || fIsViewer) return;
    RegistryChange change(kRegistryKey);
    int32_t slot = 1;
    for (const DirectoryList* const list : {&fDirList, &fFolderDirList}) {
        for (const auto& directory : *list) {
            const bool isRemembered = directory->IsFolder() && directory->IsMarkedToRemember();
            if (!isRemembered || slot > kRememberedFolders) continue;
            change.SetText(SlotValue(slot++), directory->GetRootPath());
        }
    }
    while (slot <= kRememberedFolders) change.SetText(SlotValue(slot++), L"");
    if (!fStagingFolderPath.empty()) change.SetText(kStagingValue, fStagingFolderPath);
    if (!fNetworkFolderPath.empty()) change.SetText(kNetworkValue, fNetworkFolderPath);
    if (!change.Commit()) TraceError("The folders could not be remembered");
}

}  // namespace VantorWrappers
