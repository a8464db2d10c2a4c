#include "host/DamagedDirectory.h"

#include <cstdlib>
#include <utility>

#include "host/Hook.h"
#include "platform/Desktop.h"

namespace VantorHost {

namespace {

constexpr wchar_t kTitle[] = L"DICOM directory";
constexpr wchar_t kBeforeContact[] = L".  Please contact ";
constexpr wchar_t kBehindContact[] = L" for help in repairing the damaged directory.";

void ShowAndEnd(const std::wstring& message) {
    Vantor::Platform::ShowMessage(kTitle, message);
    std::exit(EXIT_SUCCESS);
}

Hook<void(const std::wstring&)>& DamageHook() {
    static Hook<void(const std::wstring&)>& hook = *new Hook<void(const std::wstring&)>(ShowAndEnd);
    return hook;
}

// A function rather than a text, as for everything else that hosts replace.
Hook<std::wstring()>& ContactHook() {
    static Hook<std::wstring()>& hook =
        *new Hook<std::wstring()>([] { return std::wstring(L"your system administrator"); });
    return hook;
}

}  // namespace

void DamagedDirectory::Report(const std::wstring& finding) {
    DamageHook()(finding + kBeforeContact + ContactHook()() + kBehindContact);
}

void DamagedDirectory::SetSupportContact(const std::wstring& address) {
    ContactHook().Replace([address] { return address; });
}

void DamagedDirectory::SetHandler(Handler handler) { DamageHook().Replace(std::move(handler)); }

}  // namespace VantorHost
