#include "platform/FileReplacement.h"

#include <fcntl.h>
#include <linux/limits.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "platform/ClaimedFile.h"
#include "platform/LaterTime.h"
#include "platform/NeighbourName.h"
#include "platform/posix/DiskFile.h"
#include "platform/posix/FileState.h"
#include "platform/posix/LockedFile.h"
#include "platform/posix/Neighbour.h"
#include "platform/posix/PathLookup.h"
#include "platform/posix/SystemError.h"

namespace Vantor::Platform {

namespace {

constexpr mode_t kRightsMask = S_IRWXU | S_IRWXG | S_IRWXO;
constexpr int kMostLinks = 40;  // one after the other, as many as the system itself follows

std::optional<struct stat> StateAt(const std::string& path) {
    struct stat state = {};
    return stat(path.c_str(), &state) == 0 ? std::optional(state) : std::nullopt;
}

// Where a link leads; none when the path names no link.
std::optional<std::string> TargetOfLink(const std::string& path) {
    std::array<char, PATH_MAX> text = {};
    const ssize_t length = readlink(path.c_str(), text.data(), text.size());
    if (length <= 0) {
        return std::nullopt;
    }
    const std::string target(text.data(), static_cast<size_t>(length));
    const size_t separator = path.rfind('/');
    const bool isHere = target.front() == '/' || separator == std::string::npos;
    return isHere ? target : path.substr(0, separator + 1) + target;
}

// The path of the file to replace, as on disk. A rename would replace a link itself, so it is followed here,
// also when it leads to no file yet.
std::string FindTarget(const std::string& path) {
    LookedUpPath found = LookUpPath(path);
    if (found.fMissing == Missing::kFolder) {
        ThrowPathError(ENOENT, path);
    }
    for (int followed = 0; followed < kMostLinks; ++followed) {
        const std::optional<std::string> target = TargetOfLink(found.fPath);
        if (!target) {
            return found.fPath;
        }
        found.fPath = *target;
    }
    ThrowFileError(ELOOP, path);
}

// A rename asks for rights on the folder alone. What may not be written may not be replaced either, and what
// is no disk file keeps its place.
void RequireReplaceable(const std::string& target, const std::string& path) {
    const std::optional<struct stat> state = StateAt(target);
    if (state && !S_ISREG(state->st_mode)) {
        throw FileException(FileException::Cause::kAccessDenied, S_ISDIR(state->st_mode) ? EISDIR : EACCES,
                            path);
    }
    if (state && faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        ThrowPathError(errno, path);
    }
}

// People and groups beyond the file's own may have rights too; a new file may have such from its folder.
void CopyAccessList(const std::string& from, const std::string& to) {
    constexpr const char* kAccessList = "system.posix_acl_access";
    std::vector<char> list(XATTR_SIZE_MAX);
    const ssize_t size = getxattr(from.c_str(), kAccessList, list.data(), list.size());
    if (size > 0) {
        setxattr(to.c_str(), kAccessList, list.data(), static_cast<size_t>(size), 0);
    } else {
        removexattr(to.c_str(), kAccessList);
    }
}

// The owner first, because a change of it takes rights away. Only the administrator gives files to others; a
// group can be had by its members. Where it cannot be had, the new file's group gets what everybody has.
void CopyOwnerAndRights(const std::string& from, const struct stat& state, const std::string& to) {
    constexpr uid_t kSameOwner = static_cast<uid_t>(-1);
    constexpr int kGroupBits = 3;
    const bool isForGroup = chown(to.c_str(), state.st_uid, state.st_gid) == 0 ||
                            chown(to.c_str(), kSameOwner, state.st_gid) == 0;
    const mode_t rights = state.st_mode & kRightsMask;
    if (isForGroup) {
        chmod(to.c_str(), rights);
        CopyAccessList(from, to);
    } else {
        chmod(to.c_str(), (rights & ~mode_t{S_IRWXG}) | (rights & S_IRWXO) << kGroupBits);
    }
}

void SetLastWriteTime(const std::string& path, const FileTime& time) {
    timespec times[2] = {};
    times[0].tv_nsec = UTIME_OMIT;  // of the last reading
    times[1] = SystemTimeOf(time);
    utimensat(AT_FDCWD, path.c_str(), times, 0);
}

bool MakeLaterThan(const struct stat& before, const std::string& path) {
    const auto readTime = [&] { return LastWriteTimeOf(StateAt(path).value_or(before)); };
    const auto setTime = [&](const FileTime& time) { SetLastWriteTime(path, time); };
    return MakeLater(LastWriteTimeOf(before), readTime, setTime);
}

}  // namespace

// The claim is the lock, kept by a second descriptor beyond the first one's end.
std::unique_ptr<File> OpenDiskFileToReplace(const std::string& path) {
    Descriptor descriptor = OpenLocked(path, FileAccess::kReadWrite);
    auto claim = std::make_shared<Descriptor>(
        RetryInterrupted([&] { return fcntl(descriptor.Get(), F_DUPFD_CLOEXEC, 0); }));
    if (!claim->IsOpen()) {
        ThrowFileError(errno, path);
    }
    return std::make_unique<ClaimedFile>(
        std::move(claim), MakeDiskFile(std::move(descriptor), FileAccess::kReadWrite, path, path));
}

bool IsUnfinished(const std::string& path) { return IsNameOfNeighbour(path); }

class FileReplacement::State {
  public:
    // Whoever could not read the old file does not read the new one while it is written.
    State(const std::string& path, const std::string& target, Place place)
        : fPath(path),
          fTarget(target),
          fIsReplacing(place == Place::kAny && StateAt(target)),
          fNeighbour(target, fIsReplacing ? kRightsOfMaker : kRightsOfAll),
          fFile(MakeDiskFile(fNeighbour.TakeDescriptor(), FileAccess::kReadWrite, path,
                             fNeighbour.GetPath())) {}

    const std::string& GetPath() const { return fPath; }
    File& GetFile() { return *fFile; }

    FileMark PutInPlace(File* held) {
        const std::optional<struct stat> replaced = StateAt(fTarget);
        Complete(replaced);
        auto claim = std::make_shared<Descriptor>(OpenLocked(fNeighbour.GetPath(), FileAccess::kRead));
        const FileMark mark = MakeMark(*claim);
        if (fIsReplacing) {
            fNeighbour.TakePlaceOfTarget();
        } else {
            fNeighbour.TakeFreePlace();
        }
        NoteAdded(fTarget);
        // The lock on the old file binds nobody any more. The one on the new file, which was there before
        // anybody could open it, lets in readers only.
        if (auto* const claimed = dynamic_cast<ClaimedFile*>(held)) {
            claimed->ChangeClaim(std::move(claim));
        }
        return mark;
    }

  private:
    // Everything of the new file is as it is going to be, on the medium too.
    void Complete(const std::optional<struct stat>& replaced) {
        if (replaced) {
            CopyOwnerAndRights(fTarget, *replaced, fNeighbour.GetPath());
        }
        fFile->Flush();
        if (replaced && MakeLaterThan(*replaced, fNeighbour.GetPath())) {
            fFile->Flush();
        }
        fFile->Close();
    }

    FileMark MakeMark(const Descriptor& descriptor) const {
        struct stat state = {};
        if (fstat(descriptor.Get(), &state) != 0) {
            ThrowFileError(errno, fPath);
        }
        return MarkOf(state);
    }

    std::string fPath;    // as the caller gave it
    std::string fTarget;  // the same as on disk, links followed
    bool fIsReplacing;    // there was a file at the beginning
    Neighbour fNeighbour;
    std::unique_ptr<File> fFile;
};

FileReplacement::FileReplacement(const std::string& path, Place place) {
    const std::string target = FindTarget(path);
    RequireReplaceable(target, path);
    try {
        fState = std::make_unique<State>(path, target, place);
    } catch (const FileException& error) {
        throw error.WithFileName(path);
    }
}

FileReplacement::~FileReplacement() = default;

File& FileReplacement::GetFile() { return fState->GetFile(); }

FileMark FileReplacement::PutInPlace(File* held) {
    try {
        return fState->PutInPlace(held);
    } catch (const FileException& error) {
        throw error.WithFileName(fState->GetPath());
    }
}

}  // namespace Vantor::Platform
