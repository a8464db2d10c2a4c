#include "host/AccessGranting.h"

#include <utility>

#include "host/Hook.h"
#include "platform/CodePage.h"
#include "platform/SharedAccess.h"

namespace VantorHost {

namespace {

using GrantHook = Hook<void(const std::wstring&)>;

GrantHook& FileHook() {
    static GrantHook& hook = *new GrantHook(
        [](const std::wstring& path) { Vantor::Platform::ShareFile(Vantor::Platform::FromHostText(path)); });
    return hook;
}

GrantHook& FolderHook() {
    static GrantHook& hook = *new GrantHook([](const std::wstring& path) {
        Vantor::Platform::ShareFolder(Vantor::Platform::FromHostText(path));
    });
    return hook;
}

}  // namespace

void AccessGranting::SetFileAccess(const std::wstring& path) { FileHook()(path); }

void AccessGranting::SetDirectoryAccess(const std::wstring& path) { FolderHook()(path); }

void AccessGranting::SetGranters(Granter forFiles, Granter forFolders) {
    FileHook().Replace(std::move(forFiles));
    FolderHook().Replace(std::move(forFolders));
}

}  // namespace VantorHost
