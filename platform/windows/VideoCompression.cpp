#include "platform/VideoCompression.h"

#include <windows.h>

#include <vfw.h>

#include <iterator>
#include <string_view>

#include "platform/CodePage.h"

namespace Vantor::Platform {

namespace {

class OpenedCompressor {
  public:
    explicit OpenedCompressor(uint32_t handler) : fCompressor(ICOpen(ICTYPE_VIDEO, handler, ICMODE_QUERY)) {}
    ~OpenedCompressor() {
        if (fCompressor != nullptr) ICClose(fCompressor);
    }
    OpenedCompressor(const OpenedCompressor&) = delete;
    OpenedCompressor& operator=(const OpenedCompressor&) = delete;

    std::wstring GetDescription() const {
        ICINFO info = {};
        info.dwSize = sizeof(info);
        if (fCompressor == nullptr || ICGetInfo(fCompressor, &info, sizeof(info)) == 0) return {};
        const std::wstring_view room(info.szDescription, std::size(info.szDescription));
        return std::wstring(room.substr(0, room.find(L'\0')));
    }

  private:
    HIC fCompressor;
};

// What the dialog has in its hands, and lets go at the end.
class DialogState {
  public:
    explicit DialogState(const CompressionChoice& first) {
        fState.cbSize = sizeof(fState);
        fState.dwFlags = ICMF_COMPVARS_VALID;
        fState.fccType = ICTYPE_VIDEO;
        fState.fccHandler = first.fHandler;
        fState.lQ = first.fQuality;
    }
    ~DialogState() { ICCompressorFree(&fState); }
    DialogState(const DialogState&) = delete;
    DialogState& operator=(const DialogState&) = delete;

    COMPVARS& Get() { return fState; }

  private:
    COMPVARS fState = {};
};

}  // namespace

// The list has only short names, and those of compressors that cannot be opened.
std::optional<std::vector<SystemCompressor>> ListSystemCompressors() {
    std::vector<SystemCompressor> compressors;
    ICINFO info = {};
    info.dwSize = sizeof(info);
    for (DWORD number = 0; ICInfo(ICTYPE_VIDEO, number, &info); ++number) {
        const OpenedCompressor compressor(info.fccHandler);
        const std::wstring description = compressor.GetDescription();
        if (!description.empty()) compressors.push_back({info.fccHandler, description});
    }
    return compressors;
}

std::optional<std::wstring> DescribeSystemCompressor(uint32_t handler) {
    // For the system 0 is any compressor at all.
    return handler == 0 ? std::wstring() : OpenedCompressor(handler).GetDescription();
}

std::optional<CompressionChoice> ShowCompressorDialog(const std::wstring& title,
                                                      const CompressionChoice& first, WindowHandle window) {
    DialogState state(first);
    std::string nativeTitle = FromHostText(title);
    if (!ICCompressorChoose(static_cast<HWND>(window), ICMF_CHOOSE_ALLCOMPRESSORS, nullptr, nullptr,
                            &state.Get(), nativeTitle.data())) {
        return std::nullopt;
    }
    return CompressionChoice{state.Get().fccHandler, state.Get().lQ};
}

}  // namespace Vantor::Platform
