#pragma once

namespace Vantor::Platform {

// A window of the host, to which the system's dialogs belong: the HWND on Windows, where there are windows of
// that kind; null for none.
using WindowHandle = void*;

}  // namespace Vantor::Platform
