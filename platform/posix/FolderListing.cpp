#include "platform/posix/FolderListing.h"

#include <dirent.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <mutex>

namespace Vantor::Platform {

namespace {

// The longest tick of a file system's time stamps: FAT counts in two seconds.
constexpr int64_t kTickInSeconds = 2;

constexpr size_t kListingsKept = 8;

std::mutex gKeptListings;

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

std::optional<std::string> FolderListing::Find(const std::string& folder, std::string_view name) {
    const std::lock_guard lock(gKeptListings);
    const FolderListing& listing = Current(folder);
    const auto found = listing.fSpellings.find(InLowerCase(name));
    return found != listing.fSpellings.end() ? std::optional(found->second) : std::nullopt;
}

void FolderListing::NoteAdded(const std::string& folder, std::string_view name) {
    const std::lock_guard lock(gKeptListings);
    const auto kept = FindKept(folder);
    if (kept != KeptListings().end()) {
        kept->Enter(name);
        kept->TakeState();
    }
}

void FolderListing::NoteAddedForNow(const std::string& folder) {
    const std::lock_guard lock(gKeptListings);
    const auto kept = FindKept(folder);
    if (kept != KeptListings().end()) {
        kept->TakeState();
    }
}

// Used last first. The caller holds the lock, here and below.
FolderListing::Listings& FolderListing::KeptListings() {
    static Listings listings;
    return listings;
}

const FolderListing& FolderListing::Current(const std::string& folder) {
    Listings& listings = KeptListings();
    const auto kept = FindKept(folder);
    if (kept != listings.end()) {
        listings.splice(listings.begin(), listings, kept);
    } else {
        listings.push_front(FolderListing(folder));
    }
    if (listings.size() > kListingsKept) {
        listings.pop_back();
    }
    if (!listings.front().IsCurrent()) {
        listings.front().Read();
    }
    return listings.front();
}

FolderListing::Listings::iterator FolderListing::FindKept(const std::string& folder) {
    Listings& listings = KeptListings();
    return std::find_if(listings.begin(), listings.end(),
                        [&](const FolderListing& listing) { return listing.fFolder == folder; });
}

bool FolderListing::IsCurrent() const {
    struct stat state = {};
    return !fMayMissChanges && stat(fFolder.c_str(), &state) == 0 && IsSameState(state, fState);
}

void FolderListing::Read() {
    fSpellings.clear();
    fMayMissChanges = true;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(fFolder.c_str()), closedir);
    if (stream == nullptr || fstat(dirfd(stream.get()), &fState) != 0) {
        return;
    }
    fMayMissChanges = IsJustNow(fState.st_mtim);
    while (const dirent* entry = readdir(stream.get())) {
        Enter(entry->d_name);
    }
}

void FolderListing::TakeState() { fMayMissChanges = stat(fFolder.c_str(), &fState) != 0; }

void FolderListing::Enter(std::string_view name) {
    const auto [entry, isNew] = fSpellings.try_emplace(InLowerCase(name), name);
    if (!isNew && name < entry->second) {
        entry->second = name;
    }
}

}  // namespace Vantor::Platform
