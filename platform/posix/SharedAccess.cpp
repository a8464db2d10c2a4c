#include "platform/SharedAccess.h"

#include <sys/stat.h>
#include <unistd.h>

#include "platform/PathStyle.h"
#include "platform/posix/PathLookup.h"

namespace Vantor::Platform {

namespace {

constexpr mode_t kRightsMask = S_ISVTX | S_ISGID | S_ISUID | S_IRWXU | S_IRWXG | S_IRWXO;

// The rights of one kind of user to a file and to a folder.
struct Rights {
    mode_t fRead;
    mode_t fWrite;
    mode_t fSearch;
};
constexpr Rights kGroup = {S_IRGRP, S_IWGRP, S_IXGRP};
constexpr Rights kOthers = {S_IROTH, S_IWOTH, S_IXOTH};

bool GetState(const std::string& path, struct stat& state) { return stat(path.c_str(), &state) == 0; }

// The folder that the path's last component stands in.
std::string FolderOf(const std::string& path) {
    const PathStyle& style = PathStyle::OfPlatform();
    const std::string folder = style.FolderOf(style.WithoutLastSeparators(path));
    return folder.empty() ? "." : folder;
}

// Open to all, but each keeps his own there.
bool IsPublicPlace(const struct stat& folder) {
    return (folder.st_mode & S_IWOTH) != 0 && (folder.st_mode & S_ISVTX) != 0;
}

mode_t MissingRights(const struct stat& state, const struct stat& folder) {
    mode_t wanted = 0;
    for (const Rights& rights : {kGroup, kOthers}) {
        if ((folder.st_mode & rights.fWrite) != 0) {
            wanted |= rights.fRead | rights.fWrite | (S_ISDIR(state.st_mode) ? rights.fSearch : 0);
        }
    }
    return wanted & ~state.st_mode;
}

// What the group may do and others may not, which is nothing unless a change of the group takes a right away.
bool HasGroupRightsOfItsOwn(const struct stat& state) {
    constexpr int kGroupBits = 3;
    return ((state.st_mode & S_IRWXG) >> kGroupBits & ~(state.st_mode & S_IRWXO)) != 0;
}

// Rights for the group are of use to those who have the folder only if it is their group.
bool HasGroupOf(const struct stat& folder, const struct stat& state, const std::string& path) {
    constexpr uid_t kSameOwner = static_cast<uid_t>(-1);
    return state.st_gid == folder.st_gid ||
           (!HasGroupRightsOfItsOwn(state) && chown(path.c_str(), kSameOwner, folder.st_gid) == 0);
}

bool Share(const std::string& givenPath) {
    const std::string path = LookUpPath(givenPath).fPath;
    struct stat state = {};
    struct stat folder = {};
    if (!GetState(path, state) || !GetState(FolderOf(path), folder)) {
        return false;
    }
    const mode_t missing = IsPublicPlace(folder) ? 0 : MissingRights(state, folder);
    if (missing == 0) {
        return true;
    }
    if ((folder.st_mode & S_IWGRP) != 0 && !HasGroupOf(folder, state, path)) {
        return false;
    }
    return chmod(path.c_str(), (state.st_mode | missing) & kRightsMask) == 0;
}

}  // namespace

bool ShareFile(const std::string& path) { return Share(path); }

bool ShareFolder(const std::string& path) { return Share(path); }

}  // namespace Vantor::Platform
