#pragma once

#include <sys/stat.h>

#include <chrono>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Vantor::Platform {

// The names in one folder, to be found without regard to the case of ASCII letters.
class FolderListing {
  public:
    // Reads the folder; one that cannot be read has no names.
    explicit FolderListing(const std::string& folder);

    const std::string& GetFolder() const { return fFolder; }

    // True when the folder is certainly as it was when it was read. Its time stamp tells, but not that of a
    // folder that was changed shortly before: file systems count in ticks, and two changes may fall into one.
    bool IsCurrent() const;

    // How the name is spelled on disk; null when there is none. Of several spellings the first in byte
    // order, so upper case before lower case.
    const std::string* Find(std::string_view name) const;

    // Enters a name that this process has just added to the folder, which was as listed until then. A writer
    // of many files so goes on with one listing for a while; it may miss what others add meanwhile.
    void Add(std::string_view name);

  private:
    void Enter(std::string_view name);

    std::string fFolder;
    struct stat fState = {};  // the folder's, when its names were as listed
    std::chrono::steady_clock::time_point fReadAt;
    bool fMayMissChanges = false;  // the folder was changed shortly before it was read
    std::unordered_map<std::string, std::string> fSpellings;  // by the name in lower case
};

// The listings that this thread used last, so that a medium whose names are spelled otherwise than a
// DICOMDIR spells them, and a folder that a series is written into, are not read again for every file.
class FolderListings {
  public:
    static FolderListings& OfThisThread();

    // A current listing, valid until the next call.
    FolderListing& Get(const std::string& folder);

    // Enters a name that this process has just added, when the folder is among the listings.
    void NoteAdded(const std::string& folder, std::string_view name);

  private:
    std::list<FolderListing> fListings;  // used last first
};

}  // namespace Vantor::Platform
