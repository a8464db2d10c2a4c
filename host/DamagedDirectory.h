#pragma once

#include <functional>
#include <string>

namespace VantorHost {

// What happens when a DICOMDIR is found damaged. By default the user is shown the message, and the process
// ends with exit code 0 when he has read it: a workstation does not go on with a damaged directory.
class DamagedDirectory {
  public:
    // Tells the user, whose DICOMDIR `finding` names: "Damaged DICOMDIR file found at " and its path. Does
    // not return, unless the host's handler does.
    static void Report(const std::wstring& finding);

    // Whom the message tells to ask for help; by default "your system administrator".
    static void SetSupportContact(const std::wstring& address);

    // What the host does instead with the whole message; empty for the default. When it returns, the object
    // that was to open the directory is one without a directory; it may also throw, to its own code.
    using Handler = std::function<void(const std::wstring& message)>;
    static void SetHandler(Handler handler);
};

}  // namespace VantorHost
