#include "platform/SharedAccess.h"

#include <windows.h>

#include <aclapi.h>

#include <array>
#include <memory>

namespace Vantor::Platform {

namespace {

constexpr DWORD kModify = FILE_GENERIC_READ | FILE_GENERIC_WRITE | FILE_GENERIC_EXECUTE | DELETE;

using SystemMemory = std::unique_ptr<void, decltype(&LocalFree)>;

// Everybody who may log on to this computer.
class UsersGroup {
  public:
    UsersGroup() {
        auto size = static_cast<DWORD>(fIdentifier.size());
        fIsKnown = CreateWellKnownSid(WinBuiltinUsersSid, nullptr, fIdentifier.data(), &size) != FALSE;
    }

    bool IsKnown() const { return fIsKnown; }

    EXPLICIT_ACCESSA MayModify(DWORD inheritance) {
        EXPLICIT_ACCESSA access = {};
        access.grfAccessPermissions = kModify;
        access.grfAccessMode = GRANT_ACCESS;
        access.grfInheritance = inheritance;
        BuildTrusteeWithSidA(&access.Trustee, fIdentifier.data());
        return access;
    }

  private:
    alignas(SID) std::array<BYTE, SECURITY_MAX_SID_SIZE> fIdentifier = {};
    bool fIsKnown = false;
};

bool SetRights(std::string path, ACL* rights) {
    return SetNamedSecurityInfoA(path.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                 rights, nullptr) == ERROR_SUCCESS;
}

// What those who have rights already may do stays. Without a list everybody may do everything.
bool Share(const std::string& path, DWORD inheritance) {
    UsersGroup users;
    ACL* present = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!users.IsKnown() ||
        GetNamedSecurityInfoA(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                              &present, nullptr, &descriptor) != ERROR_SUCCESS) {
        return false;
    }
    const SystemMemory descriptorOwner(descriptor, LocalFree);
    if (present == nullptr) {
        return true;
    }
    EXPLICIT_ACCESSA access = users.MayModify(inheritance);
    ACL* rights = nullptr;
    if (SetEntriesInAclA(1, &access, present, &rights) != ERROR_SUCCESS) {
        return false;
    }
    const SystemMemory rightsOwner(rights, LocalFree);
    return SetRights(path, rights);
}

}  // namespace

bool ShareFile(const std::string& path) { return Share(path, NO_INHERITANCE); }

bool ShareFolder(const std::string& path) { return Share(path, SUB_CONTAINERS_AND_OBJECTS_INHERIT); }

}  // namespace Vantor::Platform
