#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/WindowHandle.h"

namespace VantorHost {

// A compressor and how well it is to do.
struct CompressorChoice {
    uint32_t fHandler = 0;  // four-character code, the first character in the lowest byte
    int32_t fQuality = 0;   // 0 to 10000
};

// The dialog in which the user chooses the compressor of a movie. By default the system's, which lists all
// compressors; where it has none, nothing is shown and nothing chosen.
class CompressorDialog {
  public:
    // Shows the dialog with a choice to begin with. True when the user has chosen, and `choice` is his;
    // unchanged otherwise. `window` is the one that the dialog belongs to.
    static bool Present(const std::wstring& title, CompressorChoice& choice,
                        Vantor::Platform::WindowHandle window);

    // How the host does it, with the same answers; empty for the default.
    using Presenter = std::function<bool(const std::wstring& title, CompressorChoice& choice,
                                         Vantor::Platform::WindowHandle window)>;
    static void SetPresenter(Presenter presenter);
};

}  // namespace VantorHost
