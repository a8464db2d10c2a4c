#pragma once

#include <cstdint>
#include <vector>

#include "platform/WindowHandle.h"
#include "wrappers/AVICompressor.h"
#include "wrappers/HostString.h"

namespace VantorWrappers {

// Lets the user choose the compressor of a movie and its quality.
class ChooseAVICompressor {
  public:
    ChooseAVICompressor() = default;

    // Shows the dialog "Choose Compressor", which lists all compressors, preset to a handler and a quality of
    // 0 to 100. `window` is the one that the dialog belongs to. True when the user has chosen:
    // the fields then have what he chose. False, and the fields stay, when he has not, or there is no dialog.
    // The dialog is the system's, unless the host brings its own (host/CompressorDialog.h); Linux has none.
    bool PresentDialog(uint32_t handler, int32_t quality, Vantor::Platform::WindowHandle window);

    // How the compressor of fHandler calls itself; "" when it is not there. Uncompressed ("DIB ") is none.
    HostString GetCompressorString() const;

    uint32_t GetHandler() const { return fHandler; }
    int32_t GetQuality() const { return fQuality; }

    // Addition: what a movie can be made with. First "DIB ", uncompressed, which is always there; then the
    // compressors of the system, or where it has none those of the host (host/VideoCompressors.h).
    static std::vector<AVICompressor> GetCompressors();

    uint32_t fHandler = 0;         // four-character code, the first character in the lowest byte
    int32_t fQuality = 0;          // 0 to 100
    HostString fCompressorString;  // the description of what the user has chosen
};

}  // namespace VantorWrappers
