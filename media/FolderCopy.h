#pragma once

#include <string>
#include <vector>

namespace Vantor {

// Copies a folder with all that is in it. Files take the place of those of the same name; what else is in the
// destination stays. Links in the source are copied as what they lead to; links in the destination are
// replaced, or, where a folder has to be, not followed.
//
// What cannot be copied is left out, and the rest copied nevertheless; of names that are one in the
// destination, which may not tell case apart, the first.
class FolderCopy {
  public:
    // The destination is made when it is missing; the folder that it lies in must exist.
    FolderCopy(std::string source, std::string destination);

    // Files in the destination of which this is true are not replaced, and what would replace them counts as
    // not copied.
    void Keep(bool (*isKept)(const std::string& path)) { fIsKept = isKept; }

    // True when all of it is there.
    bool Run();

    // Removes what Run has made, as far as that goes; files that it has replaced stay replaced.
    void Undo() const;

  private:
    bool CopyFolder(const std::string& from, const std::string& to);
    bool CopyEntries(const std::string& from, const std::string& to);
    bool CopyEntry(const std::string& from, const std::string& to);
    bool LeadsBack(const std::string& folder) const;

    std::string fSource;
    std::string fDestination;
    std::vector<std::string> fFoldersOnTheWay;  // that are being copied, and their copies
    bool (*fIsKept)(const std::string& path) = nullptr;
    std::vector<std::string> fMadeFolders;
    std::vector<std::string> fMadeFiles;
};

}  // namespace Vantor
