#pragma once

#include <windows.h>

namespace Vantor::Platform {

// While it is alive, the system asks the user nothing about what this thread does: a drive without a medium
// or a library that is missing is an answer, and nothing that a box should tell.
class QuietErrors {
  public:
    QuietErrors() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &fPrevious); }
    ~QuietErrors() { SetThreadErrorMode(fPrevious, nullptr); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

  private:
    DWORD fPrevious = 0;
};

}  // namespace Vantor::Platform
