#include "platform/DiscService.h"

// GUIDs are defined in this file, not only declared.
#include <initguid.h>

#include <objbase.h>
#include <shlobj.h>
#include <windows.h>

#include <array>

#include "platform/CodePage.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"
#include "platform/windows/ComPointer.h"

namespace Vantor::Platform {

namespace {

constexpr size_t kDriveLetterLength = 32;

// COM, for as long as an operation takes. A host whose thread uses it already, in whatever way, goes on so.
class ComUse {
  public:
    ComUse() : fResult(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~ComUse() {
        if (SUCCEEDED(fResult)) CoUninitialize();
    }
    ComUse(const ComUse&) = delete;
    ComUse& operator=(const ComUse&) = delete;

  private:
    HRESULT fResult;
};

// The shell's service. Its wizard asks the user for the name of the disc and shows how far it is.
class ShellBurner final : public DiscBurner {
  public:
    ShellBurner() {
        void* service = nullptr;
        if (SUCCEEDED(CoCreateInstance(CLSID_CDBurn, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                                       IID_ICDBurn, &service))) {
            fService.reset(static_cast<ICDBurn*>(service));
        }
    }

    bool IsThere() const { return fService != nullptr; }

    bool HasRecorder() override {
        BOOL hasRecorder = FALSE;
        return SUCCEEDED(fService->HasRecordableDrive(&hasRecorder)) && hasRecorder != FALSE;
    }

    std::string GetRecorderName() override {
        std::array<wchar_t, kDriveLetterLength> letter = {};
        const bool isKnown =
            SUCCEEDED(fService->GetRecorderDriveLetter(letter.data(), static_cast<UINT>(letter.size())));
        letter.back() = L'\0';
        return isKnown ? FromHostText(letter.data()) : std::string();
    }

    bool Burn(const DiscJob& job) override {
        return SUCCEEDED(fService->Burn(static_cast<HWND>(job.fWindow)));
    }

  private:
    ComUse fUse;  // outlives the service
    ComPointer<ICDBurn> fService;
};

class ShellDiscService final : public DiscService {
  public:
    std::unique_ptr<DiscBurner> Connect() override {
        auto burner = std::make_unique<ShellBurner>();
        if (!burner->IsThere()) return nullptr;
        return burner;
    }

    std::string GetStagingFolder() override {
        constexpr BOOL kMakeIfMissing = TRUE;
        std::array<char, MAX_PATH> folder = {};
        const bool isKnown =
            SHGetSpecialFolderPathA(nullptr, folder.data(), CSIDL_CDBURN_AREA, kMakeIfMissing) != FALSE;
        std::string path = isKnown ? PathStyle::OfPlatform().WithoutLastSeparators(folder.data()) : "";
        return IsFolder(path) ? path : std::string();
    }
};

}  // namespace

DiscService& DiscService::OfSystem() {
    static ShellDiscService& service = *new ShellDiscService;  // never destroyed: see platform/Clock.cpp
    return service;
}

}  // namespace Vantor::Platform
