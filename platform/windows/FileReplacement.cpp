#include "platform/FileReplacement.h"

#include <windows.h>

#include <array>
#include <optional>
#include <utility>

#include "platform/ClaimedFile.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/LaterTime.h"
#include "platform/MediumWatch.h"
#include "platform/NeighbourName.h"
#include "platform/windows/DiskFile.h"
#include "platform/windows/FileState.h"
#include "platform/windows/Neighbour.h"
#include "platform/windows/OpenHandle.h"
#include "platform/windows/SystemError.h"

namespace Vantor::Platform {

namespace {

constexpr std::string_view kClaimSuffix = ".lck";

// How often the claim may be refused although nobody seems to have it.
constexpr int kClaimAttempts = 16;

// Somebody who reads the old file is done with it in less.
constexpr std::chrono::seconds kLongestWait(10);
constexpr std::chrono::milliseconds kRest(20);

constexpr DWORD kSharedWithNobody = 0;
constexpr DWORD kSharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool HasAttribute(const std::string& path, DWORD attribute) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & attribute) != 0;
}

// The path that the system gives an open file, in the form that all its operations take; empty when the code
// page has no letters for it.
std::string PathOf(const Handle& handle) {
    constexpr std::string_view kLocalStart = "\\\\?\\";
    constexpr std::string_view kNetworkStart = "\\\\?\\UNC\\";
    std::array<char, MAX_PATH + kNetworkStart.size()> text = {};
    const DWORD length = GetFinalPathNameByHandleA(handle.Get(), text.data(), static_cast<DWORD>(text.size()),
                                                   FILE_NAME_NORMALIZED);
    const std::string path(text.data(), length < text.size() ? length : 0);
    if (path.starts_with(kNetworkStart)) {
        return "\\\\" + path.substr(kNetworkStart.size());
    }
    return path.starts_with(kLocalStart) ? path.substr(kLocalStart.size()) : path;
}

// The path of the file to replace. A link would be replaced itself, and whoever names the file by another
// path would claim something else, so it is followed here.
std::string FindTarget(const std::string& path) {
    if (!IsLink(path)) {
        return path;
    }
    const Handle handle = OpenToLookAt(path);
    if (!handle.IsOpen()) {
        ThrowLastError(path);
    }
    const std::string target = PathOf(handle);
    if (GetFileAttributesA(target.c_str()) == INVALID_FILE_ATTRIBUTES) {
        ThrowFileError(ERROR_BAD_PATHNAME, path);
    }
    return target;
}

// The claim on a file: another one beside it, which one program at a time can have, and which goes when that
// program is done or ends. A program that ended without the system's help leaves a file that is nobody's.
// A link of that name is claimed, and goes, itself: what it leads to is not ours to remove.
Handle TryClaim(const std::string& claimPath) {
    AnnounceChange(MediumChange::kCreateFile, claimPath);
    constexpr DWORD kFlags = FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT;
    return Handle(CreateFileA(claimPath.c_str(), GENERIC_READ | GENERIC_WRITE, kSharedWithNobody, nullptr,
                              OPEN_ALWAYS, kFlags, nullptr));
}

bool IsThere(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES ||
           GetLastError() != ERROR_FILE_NOT_FOUND;
}

// The file of a claim that is just being given back is there for one more moment, and refuses everybody as a
// folder without rights does, where it would not be there.
Handle Claim(const std::string& target, const std::string& path) {
    const std::string claimPath = target + std::string(kClaimSuffix);
    DWORD error = ERROR_SUCCESS;
    for (int attempt = 0; attempt < kClaimAttempts; ++attempt) {
        Handle claim = TryClaim(claimPath);
        if (claim.IsOpen()) {
            return claim;
        }
        error = GetLastError();
        if (error != ERROR_ACCESS_DENIED) {
            break;
        }
        if (IsThere(claimPath)) {
            ThrowFileError(ERROR_SHARING_VIOLATION, path);
        }
    }
    ThrowFileError(error, path);
}

// The path is a folder's or a file's that may not be written: the system would say so at the very end only,
// and in the same words as of a file that is being read.
void RequireReplaceable(const std::string& target, const std::string& path) {
    if (HasAttribute(target, FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) {
        ThrowFileError(ERROR_ACCESS_DENIED, path);
    }
}

Handle OpenNeighbour(const std::string& neighbour, const std::string& path) {
    Handle handle(CreateFileA(neighbour.c_str(), GENERIC_READ | GENERIC_WRITE, kSharedWithNobody, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle.IsOpen()) {
        ThrowLastError(path);
    }
    return handle;
}

FileMark RequireMarkAt(const std::string& where, const std::string& path) {
    const std::optional<FileMark> mark = GetMarkAt(where);
    if (!mark) {
        ThrowLastError(path);
    }
    return *mark;
}

// A volume that has no such times does without.
void SetLastWriteTime(const std::string& path, const FileTime& time) {
    const Handle handle(CreateFileA(path.c_str(), FILE_WRITE_ATTRIBUTES, kSharedWithAll, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const FILETIME systemTime = {time.fLow, time.fHigh};
    if (handle.IsOpen()) {
        SetFileTime(handle.Get(), nullptr, nullptr, &systemTime);
    }
}

bool IsTransient(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
           error == ERROR_LOCK_VIOLATION || error == ERROR_USER_MAPPED_FILE;
}

// Of a file that is open the system says that access to it is denied. What it answers to somebody who wants
// to remove that file tells it from one that may not be replaced at all.
DWORD WhyNotReplaced(DWORD error, const std::string& target) {
    const Handle removable(
        CreateFileA(target.c_str(), DELETE, kSharedWithAll, nullptr, OPEN_EXISTING, 0, nullptr));
    const bool isInUse = !removable.IsOpen() && GetLastError() == ERROR_SHARING_VIOLATION;
    return isInUse ? ERROR_SHARING_VIOLATION : error;
}

}  // namespace

std::unique_ptr<File> OpenDiskFileToReplace(const std::string& path) {
    const std::string target = FindTarget(path);
    auto claim = std::make_shared<Handle>(Claim(target, path));
    return std::make_unique<ClaimedFile>(std::move(claim), OpenDiskFile(path, FileAccess::kReadWrite));
}

bool IsUnfinished(const std::string& path) {
    const bool isClaim =
        path.ends_with(kClaimSuffix) && PathExists(path.substr(0, path.size() - kClaimSuffix.size()));
    return isClaim || IsNameOfNeighbour(path);
}

class FileReplacement::State {
  public:
    State(const std::string& path, const std::string& target, Place place)
        : fPath(path),
          fTarget(target),
          fIsReplacing(place == Place::kAny && PathExists(target)),
          fNeighbour(target),
          fFile(MakeDiskFile(OpenNeighbour(fNeighbour.GetPath(), path), FileAccess::kReadWrite, path,
                             fNeighbour.GetPath())) {}

    const std::string& GetPath() const { return fPath; }
    File& GetFile() { return *fFile; }

    FileMark PutInPlace(File* held) {
        fFile->Flush();
        fFile->Close();
        TakeOverTimeAndAttributes();
        const FileMark mark = RequireMarkAt(fNeighbour.GetPath(), fPath);
        if (held != nullptr) {
            held->Close();
        }
        WaitForPlace();
        return GetMarkAt(fTarget).value_or(mark);
    }

  private:
    void TakeOverTimeAndAttributes() {
        const DWORD attributes = GetFileAttributesA(fTarget.c_str());
        const std::optional<FileMark> replaced = GetMarkAt(fTarget);
        const std::string path = fNeighbour.GetPath();
        if (replaced) {
            const auto readTime = [&] { return RequireMarkAt(path, fPath).fLastWriteTime; };
            const auto setTime = [&](const FileTime& time) { SetLastWriteTime(path, time); };
            MakeLater(replaced->fLastWriteTime, readTime, setTime);
        }
        if (attributes != INVALID_FILE_ATTRIBUTES) {
            SetFileAttributesA(path.c_str(), attributes);
        }
    }

    void WaitForPlace() {
        Clock& clock = Clock::Current();
        const auto end = clock.Now() + kLongestWait;
        while (!(fIsReplacing ? fNeighbour.TakePlaceOfTarget() : fNeighbour.TakeFreePlace())) {
            const DWORD error = GetLastError();
            if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS) {
                ThrowFileError(ERROR_SHARING_VIOLATION, fPath);
            }
            if (!IsTransient(error) || clock.Now() >= end) {
                ThrowFileError(WhyNotReplaced(error, fTarget), fPath);
            }
            clock.Sleep(kRest);
        }
    }

    std::string fPath;    // as the caller gave it
    std::string fTarget;  // the same, links followed
    bool fIsReplacing;    // there was a file at the beginning
    Neighbour fNeighbour;
    std::unique_ptr<File> fFile;  // closed before its path is removed
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
