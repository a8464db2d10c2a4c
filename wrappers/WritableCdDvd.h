#pragma once

#include <cstdint>
#include <memory>

#include "media/TWritableCD.h"
#include "platform/WindowHandle.h"
#include "wrappers/Event.h"
#include "wrappers/HostString.h"

namespace VantorWrappers {

using Vantor::Platform::WindowHandle;

// Writes a directory to a CD or DVD through the system's own service: files are staged in the system's
// burning area, a player is put beside them so that the disc opens by itself, and the system burns the disc.
//
// There are no messages: what fails answers false or an empty text, and so does everything after Dispose.
// What the system says about a burn that failed is in the media trace. Full paths, with or without
// separators at their end. One thread at a time.
class WritableCdDvd {
  public:
    WritableCdDvd();
    ~WritableCdDvd();

    // Addition for hosts: how far a burn is, in percent, where the system does not show that itself. A
    // subscriber may dispose of the writer, which does not end the burn, but not destroy it. What it throws
    // passes when the burn has ended; nobody is told any more then.
    Event<int32_t> eBurnProgress;

    // True when the system can burn discs, and there is a drive for it.
    bool CanBurnCDs() const;

    // That drive, as "E:\"; on systems without drive letters its device, or the image that stands for it.
    // Empty when there is none.
    HostString GetWriteCDDrive() const;

    // The burning area, without a separator at its end; empty when discs cannot be burned.
    HostString GetWriteFolderPath() const;

    // Burns what is in the burning area. `window` is the one that the system's dialogs belong to; may be
    // null. Comes back when the disc is written, or when the system has taken over. The area stays as it is
    // unless the system clears it.
    bool BurnCD(WindowHandle window) const;

    // True when there is no burning area, or no DICOMDIR in it, whatever else there is.
    bool CDFolderIsEmpty() const;

    // True when the host's folder has a player: a folder "Viewer" in the folder "ViewerFiles".
    bool HasViewerFiles(const HostString& root) const;

    // Copies all that is in the folder "ViewerFiles" of the host's folder into the destination, or, if that
    // is empty, into the burning area. True when a copy was made: not when there is a folder "Viewer"
    // already, nor when it brings a DICOMDIR of its own. A player that could not be copied as a whole, or
    // only in place of a DICOM file, is taken away again.
    bool AddViewer(const HostString& destination, const HostString& sourceRoot) const;

    // Removes the player from the destination, or, if that is empty, from the burning area: the files that
    // players have, the folder "Viewer", and every file that lies in "ViewerFiles" of the host's folder.
    // DICOM files stay, whatever they are called. True when nothing of the player is left.
    bool DeleteViewer(const HostString& destination, const HostString& sourceRoot) const;

    // Copies a folder with all that is in it into another one, which is made when it is missing; files take
    // the place of those of the same name. Links are copied as what they lead to. True when all is there.
    bool RecursiveCopyFolder(const HostString& source, const HostString& destination) const;

    // Removes a folder with all that is in it, but for folders in it whose name begins with a period. Links
    // are removed, not what they lead to. True when the folder is gone.
    bool RecursiveDeleteFolder(const HostString& folder) const;

    // Gives the writer up. May be called twice.
    void Dispose();

  private:
    std::shared_ptr<Vantor::TWritableCD> fUmWritableCD;  // null when disposed of
};

}  // namespace VantorWrappers
