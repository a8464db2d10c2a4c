#pragma once

#include <functional>
#include <string>

namespace VantorHost {

// Gives the other users of a workstation access to what the library has made for them all. By default as
// Vantor::Platform::ShareFile and ShareFolder do. A failure costs only the access.
class AccessGranting {
  public:
    // A file or a folder that has just been made, by its full path.
    static void SetFileAccess(const std::wstring& path);
    static void SetDirectoryAccess(const std::wstring& path);

    // How the host does it; an empty one for the default.
    using Granter = std::function<void(const std::wstring& path)>;
    static void SetGranters(Granter forFiles, Granter forFolders);
};

}  // namespace VantorHost
