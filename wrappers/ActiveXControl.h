#pragma once

#include "wrappers/HostString.h"

namespace VantorWrappers {

// Registers the library of the image control with the system. Each operation loads the library at the path
// and unloads it again. Nothing is thrown.
class ActiveXControl {
  public:
    // Calls what the library exports as "DllRegisterServer" or "DllUnregisterServer". Addition: true when it
    // was called and answered that it succeeded.
    static bool Register(const HostString& path);
    static bool Unregister(const HostString& path);

    // Loads the library and frees it, so that the system has it at hand when it is needed. Addition: true
    // when it could be loaded.
    static bool Cache(const HostString& path);
};

}  // namespace VantorWrappers
