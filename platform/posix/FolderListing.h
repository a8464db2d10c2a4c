#pragma once

#include <sys/stat.h>

#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Vantor::Platform {

// The names in one folder, to be found without regard to the case of ASCII letters. The listings used last
// are kept, for all threads together, so that a medium whose names are spelled otherwise than a DICOMDIR
// spells them, and a folder that a series is written into, are not read again for every file. Any thread may
// call.
class FolderListing {
  public:
    // How a name in the folder is spelled on disk now; none when it is not there or the folder cannot be
    // read. Of several spellings the first in byte order, so upper case before lower case.
    static std::optional<std::string> Find(const std::string& folder, std::string_view name);

    // Enters a name that this process has just added to the folder, which was as listed until then. So a
    // writer of many files goes on with one listing; it may miss a name that others add at the same moment.
    static void NoteAdded(const std::string& folder, std::string_view name);

    // The same for a name that only this process uses and soon takes away, which is not entered.
    static void NoteAddedForNow(const std::string& folder);

  private:
    using Listings = std::list<FolderListing>;

    explicit FolderListing(const std::string& folder) : fFolder(folder) {}

    static Listings& KeptListings();
    static Listings::iterator FindKept(const std::string& folder);
    static const FolderListing& Current(const std::string& folder);

    // True when the folder is certainly as it was when it was read. Its time stamp tells, but not that of a
    // folder that was changed shortly before: file systems count in ticks, and two changes may fall into one.
    bool IsCurrent() const;
    void Read();
    void TakeState();
    void Enter(std::string_view name);

    std::string fFolder;
    struct stat fState = {};      // the folder's, when its names were as listed
    bool fMayMissChanges = true;  // not read yet, or read shortly after the folder was changed
    std::unordered_map<std::string, std::string> fSpellings;  // by the name in lower case
};

}  // namespace Vantor::Platform
