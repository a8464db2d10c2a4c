#pragma once

#include <functional>
#include <memory>
#include <string>

#include "media/CCDBurn.h"
#include "platform/WindowHandle.h"

namespace Vantor {

// Writes discs through the system's own service: what is to be burned is put into the system's burning area
// first, a folder of the user's, with a player beside the data by which the disc opens itself.
//
// Failures are answers, never exceptions. Paths are full ones, with or without separators at their end. What
// is not in the folders that are named is not touched: links are never followed for writing or removing.
//
// The player comes from the host's installation, from a folder "ViewerFiles" in it. All that is in there goes
// to the root of the disc: starting and reading files, and the player itself in a folder "Viewer".
class TWritableCD {
  public:
    using TellProgress = std::function<void(int percent)>;

    // True when the system can burn discs, and there is a drive for it.
    bool CanBurnCDs() const;

    // That drive, as "E:\"; on systems without drive letters its device. Empty when there is none.
    std::string GetWriteCDDrive() const;

    // The burning area, without separators at its end; empty when discs cannot be burned.
    std::string GetWriteFolderPath() const;

    // Burns what is in the burning area: a DICOMDIR's file-set ID becomes the name of the disc where the
    // system does not ask for one. Comes back when the disc is written or the system has taken over. False
    // when there is no recorder, and when burning failed; the area is as it was.
    bool BurnCD(Platform::WindowHandle window, const TellProgress& tellProgress = nullptr) const;

    // True when there is no burning area, or no DICOMDIR in it, whatever else there is.
    bool CDFolderIsEmpty() const;

    // True when the folder has a player that can be put on discs.
    bool HasViewerFiles(const std::string& root) const;

    // Copies the player from the host's folder into the destination, or, if that is empty, the burning area.
    // True when it was copied. False when there is one already; when it brings a DICOMDIR of its own; and
    // when something could not be copied, or would have replaced a DICOM file: what was copied is taken away
    // again then.
    bool AddViewer(const std::string& destination, const std::string& sourceRoot) const;

    // Removes the player from the destination, or, if that is empty, the burning area: the files that players
    // have, the folder "Viewer", and every file that is beside the player in the host's folder, but no DICOM
    // file. True when none of it is there any more.
    bool DeleteViewer(const std::string& destination, const std::string& sourceRoot) const;

    // Copies a folder with all that is in it into another one, which is made when it is missing: see
    // FolderCopy. True when all of it is there.
    bool RecursiveCopyFolder(const std::string& source, const std::string& destination) const;

    // Removes a folder with all that is in it, but for folders in it whose name begins with a period. What
    // cannot be removed stays. True when the folder is gone. The root of a drive is never removed.
    bool RecursiveDeleteFolder(const std::string& folder) const;

  private:
    static std::unique_ptr<CCDBurn> MakeBurner();
    static std::unique_ptr<CCDBurn> MakeBurnerWithDrive();
    std::string DestinationOr(const std::string& destination) const;
};

}  // namespace Vantor
