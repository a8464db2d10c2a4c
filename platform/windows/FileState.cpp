#include "platform/windows/FileState.h"

namespace Vantor::Platform {

namespace {

constexpr int kHalfBits = 32;

uint64_t Join(DWORD high, DWORD low) { return uint64_t{high} << kHalfBits | low; }

}  // namespace

Handle OpenToLookAt(const std::string& path) {
    constexpr DWORD kNoRights = 0;
    return Handle(CreateFileA(path.c_str(), kNoRights, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

std::optional<FileMark> GetMarkOf(const Handle& handle) {
    BY_HANDLE_FILE_INFORMATION state = {};
    if (!GetFileInformationByHandle(handle.Get(), &state)) {
        return std::nullopt;
    }
    return FileMark{{state.ftLastWriteTime.dwLowDateTime, state.ftLastWriteTime.dwHighDateTime},
                    static_cast<int64_t>(Join(state.nFileSizeHigh, state.nFileSizeLow)),
                    state.dwVolumeSerialNumber,
                    Join(state.nFileIndexHigh, state.nFileIndexLow)};
}

std::optional<FileMark> GetMarkAt(const std::string& path) {
    const Handle handle = OpenToLookAt(path);
    return handle.IsOpen() ? GetMarkOf(handle) : std::nullopt;
}

}  // namespace Vantor::Platform
