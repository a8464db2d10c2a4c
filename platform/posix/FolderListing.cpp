#include "platform/posix/FolderListing.h"

#include <dirent.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "platform/Clock.h"

namespace Vantor::Platform {

namespace {

// How long a listing serves before it is read again in any case.
constexpr std::chrono::milliseconds kTrusted{250};

// The longest tick of a file system's time stamps: FAT counts in two seconds.
constexpr int64_t kTickInSeconds = 2;

constexpr size_t kListingsKept = 8;

std::string InLowerCase(std::string_view name) {
    std::string lower(name);
    for (char& letter : lower) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
    return lower;
}

bool IsSameTime(const timespec& first, const timespec& second) {
    return first.tv_sec == second.tv_sec && first.tv_nsec == second.tv_nsec;
}

bool IsSameState(const struct stat& first, const struct stat& second) {
    return first.st_dev == second.st_dev && first.st_ino == second.st_ino &&
           IsSameTime(first.st_mtim, second.st_mtim) && IsSameTime(first.st_ctim, second.st_ctim);
}

// A time stamp far in the future comes from a machine whose clock is wrong, not from a change just now.
bool IsJustNow(const timespec& time) {
    const int64_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    return std::abs(now - int64_t{time.tv_sec}) <= kTickInSeconds;
}

}  // namespace

FolderListing::FolderListing(const std::string& folder) : fFolder(folder), fReadAt(Clock::Current().Now()) {
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(folder.c_str()), closedir);
    if (stream == nullptr || fstat(dirfd(stream.get()), &fState) != 0) {
        return;
    }
    fMayMissChanges = IsJustNow(fState.st_mtim);
    while (const dirent* entry = readdir(stream.get())) {
        Enter(entry->d_name);
    }
}

bool FolderListing::IsCurrent() const {
    const auto age = Clock::Current().Now() - fReadAt;
    struct stat state = {};
    return !fMayMissChanges && age >= age.zero() && age <= kTrusted && stat(fFolder.c_str(), &state) == 0 &&
           IsSameState(state, fState);
}

const std::string* FolderListing::Find(std::string_view name) const {
    const auto found = fSpellings.find(InLowerCase(name));
    return found != fSpellings.end() ? &found->second : nullptr;
}

void FolderListing::Add(std::string_view name) {
    Enter(name);
    stat(fFolder.c_str(), &fState);
    fMayMissChanges = false;
}

void FolderListing::Enter(std::string_view name) {
    const auto [entry, isNew] = fSpellings.try_emplace(InLowerCase(name), name);
    if (!isNew && name < entry->second) {
        entry->second = name;
    }
}

FolderListings& FolderListings::OfThisThread() {
    thread_local FolderListings listings;
    return listings;
}

FolderListing& FolderListings::Get(const std::string& folder) {
    const auto isOfFolder = [&](const FolderListing& listing) { return listing.GetFolder() == folder; };
    const auto known = std::find_if(fListings.begin(), fListings.end(), isOfFolder);
    if (known != fListings.end() && known->IsCurrent()) {
        fListings.splice(fListings.begin(), fListings, known);
        return fListings.front();
    }
    fListings.remove_if(isOfFolder);
    fListings.emplace_front(folder);
    if (fListings.size() > kListingsKept) {
        fListings.pop_back();
    }
    return fListings.front();
}

void FolderListings::NoteAdded(const std::string& folder, std::string_view name) {
    for (FolderListing& listing : fListings) {
        if (listing.GetFolder() == folder) {
            listing.Add(name);
        }
    }
}

}  // namespace Vantor::Platform
