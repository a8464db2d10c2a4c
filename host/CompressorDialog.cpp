#include "host/CompressorDialog.h"

#include <optional>
#include <utility>

#include "host/Hook.h"
#include "platform/VideoCompression.h"

namespace VantorHost {

namespace {

namespace Platform = Vantor::Platform;

bool PresentSystemDialog(const std::wstring& title, CompressorChoice& choice,
                         Vantor::Platform::WindowHandle window) {
    const std::optional<Platform::CompressionChoice> chosen =
        Platform::ShowCompressorDialog(title, {choice.fHandler, choice.fQuality}, window);
    if (chosen) choice = {chosen->fHandler, chosen->fQuality};
    return chosen.has_value();
}

using PresentHook = Hook<bool(const std::wstring&, CompressorChoice&, Platform::WindowHandle)>;

PresentHook& Presenting() {
    static PresentHook& hook = *new PresentHook(PresentSystemDialog);
    return hook;
}

}  // namespace

bool CompressorDialog::Present(const std::wstring& title, CompressorChoice& choice,
                               Vantor::Platform::WindowHandle window) {
    CompressorChoice chosen = choice;
    if (!Presenting()(title, chosen, window)) return false;
    choice = chosen;
    return true;
}

void CompressorDialog::SetPresenter(Presenter presenter) { Presenting().Replace(std::move(presenter)); }

}  // namespace VantorHost
