#include "platform/posix/Neighbour.h"

#include <fcntl.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

#include "platform/MediumWatch.h"
#include "platform/NeighbourName.h"
#include "platform/posix/PathLookup.h"
#include "platform/posix/SystemError.h"

namespace Vantor::Platform {

namespace {

constexpr std::string_view kDigits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr int kAttempts = 100;

std::string FolderOf(const std::string& path) {
    const size_t separator = path.rfind('/');
    return separator == std::string::npos ? "./" : path.substr(0, separator + 1);
}

// A name that hardly anybody else uses: the time, and for the threads of this process a number of its own.
std::string AnyName() {
    static std::atomic<uint64_t> counter = 0;
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    std::string name(kNeighbourStart);
    for (uint64_t rest = static_cast<uint64_t>(now) + counter++; rest > 0; rest /= kDigits.size()) {
        name += kDigits[rest % kDigits.size()];
    }
    return name.append(kNeighbourEnd);
}

}  // namespace

// mkostemps would do, but its files are always their maker's alone, and the user mask, which other threads
// depend on, cannot be asked for without changing it.
Neighbour::Neighbour(const std::string& target, mode_t rights) : fTarget(target) {
    constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
    const std::string folder = FolderOf(target);
    for (int attempt = 0; attempt < kAttempts && !fDescriptor.IsOpen(); ++attempt) {
        fPath = folder + AnyName();
        AnnounceChange(MediumChange::kCreateFile, fPath);
        fDescriptor = Descriptor(RetryInterrupted([&] { return open(fPath.c_str(), kFlags, rights); }));
        if (!fDescriptor.IsOpen() && errno != EEXIST) {
            break;
        }
    }
    if (!fDescriptor.IsOpen()) {
        ThrowFileError(errno, target);
    }
    NoteAddedForNow(fPath);
}

Neighbour::~Neighbour() {
    if (!fPath.empty() && MayChange(MediumChange::kRemoveFile, fPath)) {
        unlink(fPath.c_str());
    }
}

Descriptor Neighbour::TakeDescriptor() { return std::move(fDescriptor); }

void Neighbour::TakePlaceOfTarget() {
    AnnounceChange(MediumChange::kMove, fPath, fTarget);
    if (rename(fPath.c_str(), fTarget.c_str()) != 0) {
        ThrowFileError(errno, fTarget);
    }
    EndInPlace();
}

void Neighbour::TakeFreePlace() {
    AnnounceChange(MediumChange::kMove, fPath, fTarget);
    if (renameat2(AT_FDCWD, fPath.c_str(), AT_FDCWD, fTarget.c_str(), RENAME_NOREPLACE) == 0) {
        return EndInPlace();
    }
    if (errno == EEXIST) {
        throw FileException(FileException::Cause::kSharingViolation, errno, fTarget);
    }
    if (errno != EINVAL && errno != ENOSYS) {
        ThrowFileError(errno, fTarget);
    }
    TakePlaceOfTarget();
}

void Neighbour::EndInPlace() {
    fPath.clear();
    FlushFolderOf(fTarget);
}

void FlushFolderOf(const std::string& path) {
    if (!MayChange(MediumChange::kFlush, FolderOf(path))) {
        return;
    }
    const Descriptor folder(open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.IsOpen()) {
        fsync(folder.Get());
    }
}

}  // namespace Vantor::Platform
