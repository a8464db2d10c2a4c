#pragma once

#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "dicom/TDataSetEdit.h"
#include "dicom/ValueText.h"
#include "wrappers/SavedImages.h"

namespace VantorWrappers {

using UidMap = std::map<std::string, std::string, std::less<>>;

// What the editors of images that are saved together know of each other.
class SavedImages::State {
  public:
    // An image is going to be saved.
    void Add(const std::string& uid);
    bool IsAmong(std::string_view uid) const;

    // The UID that an image has been saved with; none before.
    std::optional<std::string> FindNewUid(std::string_view uid) const;

    // A UID that stands for this one in all files, and says nothing of it.
    std::string FindReplacement(std::string_view uid);

    // An image has been saved, in a file that still names others, which had not been saved then, by these
    // UIDs: each with the one that the other image had.
    void NoteSaved(const std::string& uid, const std::string& newUid, const std::string& path,
                   UidMap unresolved);

    // Writes the files again that name images which have been saved meanwhile, and forgets new UIDs. The
    // number of the last failure, or 0.
    int32_t FinishAll();

  private:
    // A file, and what it names images by that may have been saved since.
    struct File {
        std::string fPath;
        UidMap fUnresolved;
    };

    mutable std::mutex fLock;
    std::set<std::string, std::less<>> fImages;
    UidMap fNewUids;
    UidMap fReplacements;
    std::vector<File> fFiles;
};

// The value of an element that may have UIDs, with others; see Vantor::ReplaceUids.
std::optional<std::string> ReplaceUidsOf(const Vantor::TDataSetEdit::Element& element,
                                         const Vantor::UidFinder& find);

// A text cannot be written in the character set that a file has to keep.
class CharacterSetFailure : public std::exception {};

// Runs work on files. 0, or the number that hosts are told of its failure.
int32_t FailureNumberOf(const std::function<void()>& work);

}  // namespace VantorWrappers
