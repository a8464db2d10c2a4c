#pragma once

#include <windows.h>

#include <utility>

namespace Vantor::Platform {

// A handle of the system and its owner; closed when the owner goes.
class Handle {
  public:
    Handle() = default;

    // Takes what the system gave; null and INVALID_HANDLE_VALUE are no handle.
    explicit Handle(HANDLE handle) : fHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    Handle(Handle&& other) noexcept : fHandle(std::exchange(other.fHandle, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(fHandle, other.fHandle);
        return *this;
    }
    ~Handle() { Close(); }

    HANDLE Get() const { return fHandle; }
    bool IsOpen() const { return fHandle != nullptr; }

    // False, with GetLastError, on failure; closed in any case.
    bool Close() {
        const HANDLE handle = std::exchange(fHandle, nullptr);
        return handle == nullptr || CloseHandle(handle) != FALSE;
    }

  private:
    HANDLE fHandle = nullptr;
};

}  // namespace Vantor::Platform
