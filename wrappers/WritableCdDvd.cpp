#include "wrappers/WritableCdDvd.h"

#include <exception>

#include "platform/CodePage.h"

namespace VantorWrappers {

using Vantor::TWritableCD;
using Vantor::Platform::FromHostText;
using Vantor::Platform::ToHostText;

WritableCdDvd::WritableCdDvd() : fUmWritableCD(std::make_shared<TWritableCD>()) {}

WritableCdDvd::~WritableCdDvd() = default;

void WritableCdDvd::Dispose() { fUmWritableCD.reset(); }

bool WritableCdDvd::CanBurnCDs() const { return fUmWritableCD != nullptr && fUmWritableCD->CanBurnCDs(); }

HostString WritableCdDvd::GetWriteCDDrive() const {
    return fUmWritableCD == nullptr ? HostString() : ToHostText(fUmWritableCD->GetWriteCDDrive());
}

HostString WritableCdDvd::GetWriteFolderPath() const {
    return fUmWritableCD == nullptr ? HostString() : ToHostText(fUmWritableCD->GetWriteFolderPath());
}

bool WritableCdDvd::BurnCD(WindowHandle window) const {
    const auto writer = fUmWritableCD;
    if (writer == nullptr) return false;
    std::exception_ptr thrown;
    const bool isBurned = writer->BurnCD(window, [&](int percent) {
        if (thrown != nullptr) return;
        try {
            eBurnProgress.Raise(percent);
        } catch (...) {
            thrown = std::current_exception();  // a disc that is half written is lost
        }
    });
    if (thrown != nullptr) std::rethrow_exception(thrown);
    return isBurned;
}

bool WritableCdDvd::CDFolderIsEmpty() const {
    return fUmWritableCD != nullptr && fUmWritableCD->CDFolderIsEmpty();
}

bool WritableCdDvd::HasViewerFiles(const HostString& root) const {
    return fUmWritableCD != nullptr && fUmWritableCD->HasViewerFiles(FromHostText(root));
}

bool WritableCdDvd::AddViewer(const HostString& destination, const HostString& sourceRoot) const {
    return fUmWritableCD != nullptr &&
           fUmWritableCD->AddViewer(FromHostText(destination), FromHostText(sourceRoot));
}

bool WritableCdDvd::DeleteViewer(const HostString& destination, const HostString& sourceRoot) const {
    return fUmWritableCD != nullptr &&
           fUmWritableCD->DeleteViewer(FromHostText(destination), FromHostText(sourceRoot));
}

bool WritableCdDvd::RecursiveCopyFolder(const HostString& source, const HostString& destination) const {
    return fUmWritableCD != nullptr &&
           fUmWritableCD->RecursiveCopyFolder(FromHostText(source), FromHostText(destination));
}

bool WritableCdDvd::RecursiveDeleteFolder(const HostString& folder) const {
    return fUmWritableCD != nullptr && fUmWritableCD->RecursiveDeleteFolder(FromHostText(folder));
}

}  // namespace VantorWrappers
