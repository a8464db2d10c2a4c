#include "platform/Clipboard.h"

#include <windows.h>

#include <chrono>
#include <cstring>
#include <memory>
#include <type_traits>

#include "platform/Clock.h"

namespace Vantor::Platform {

namespace {

// Clipboard viewers and remote desktops look at each new content for a moment, and have it alone then.
constexpr int kTries = 20;
constexpr std::chrono::milliseconds kPause(10);

bool OpenPatiently(HWND window) {
    for (int attempt = 1; !OpenClipboard(window); ++attempt) {
        if (attempt == kTries) return false;
        Clock::Current().Sleep(kPause);
    }
    return true;
}

class OpenedClipboard {
  public:
    explicit OpenedClipboard(HWND window) : fIsOpen(OpenPatiently(window)) {}
    ~OpenedClipboard() {
        if (fIsOpen) CloseClipboard();
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

    bool IsOpen() const { return fIsOpen; }

  private:
    bool fIsOpen;
};

// Whoever puts something on the clipboard owns it by a window; without one the system may refuse it. The
// content stays when the window goes.
class OwnerWindow {
  public:
    OwnerWindow()
        : fWindow(CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {}
    ~OwnerWindow() {
        if (fWindow != nullptr) DestroyWindow(fWindow);
    }
    OwnerWindow(const OwnerWindow&) = delete;
    OwnerWindow& operator=(const OwnerWindow&) = delete;

    HWND Get() const { return fWindow; }  // null where no window can be made

  private:
    HWND fWindow;
};

struct FreeMemory {
    void operator()(HGLOBAL memory) const { GlobalFree(memory); }
};

using Memory = std::unique_ptr<std::remove_pointer_t<HGLOBAL>, FreeMemory>;

// Null when there is no memory.
Memory CopyToMemory(const std::vector<uint8_t>& bytes) {
    Memory memory(GlobalAlloc(GMEM_MOVEABLE, bytes.size()));
    void* const place = memory == nullptr ? nullptr : GlobalLock(memory.get());
    if (place == nullptr) return nullptr;
    std::memcpy(place, bytes.data(), bytes.size());
    GlobalUnlock(memory.get());
    return memory;
}

// What stands in the clipboard's memory, which belongs to the system.
class LockedMemory {
  public:
    explicit LockedMemory(HGLOBAL memory)
        : fMemory(memory), fBytes(memory == nullptr ? nullptr : GlobalLock(memory)) {}
    ~LockedMemory() {
        if (fBytes != nullptr) GlobalUnlock(fMemory);
    }
    LockedMemory(const LockedMemory&) = delete;
    LockedMemory& operator=(const LockedMemory&) = delete;

    const uint8_t* GetBytes() const { return static_cast<const uint8_t*>(fBytes); }
    size_t GetSize() const { return fBytes == nullptr ? 0 : GlobalSize(fMemory); }

  private:
    HGLOBAL fMemory;
    void* fBytes;
};

}  // namespace

bool PutBitmapOnClipboard(const std::vector<uint8_t>& bitmap) {
    if (bitmap.empty()) return false;
    Memory memory = CopyToMemory(bitmap);
    const OwnerWindow owner;
    const OpenedClipboard clipboard(owner.Get());
    if (memory == nullptr || !clipboard.IsOpen() || !EmptyClipboard() ||
        SetClipboardData(CF_DIB, memory.get()) == nullptr) {
        return false;
    }
    static_cast<void>(memory.release());  // it is the system's now
    return true;
}

bool UseBitmapOnClipboard(const std::function<void(const uint8_t* bytes, size_t size)>& use) {
    const OpenedClipboard clipboard(GetActiveWindow());
    if (!clipboard.IsOpen()) return false;
    const LockedMemory bitmap(GetClipboardData(CF_DIB));
    if (bitmap.GetSize() == 0) return false;
    use(bitmap.GetBytes(), bitmap.GetSize());
    return true;
}

bool ClearClipboard() {
    const OpenedClipboard clipboard(GetActiveWindow());
    return clipboard.IsOpen() && EmptyClipboard();
}

}  // namespace Vantor::Platform
