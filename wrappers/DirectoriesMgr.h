#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "wrappers/AvailableDrive.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/HostString.h"
#include "wrappers/Linked.h"
#include "wrappers/LuminaError.h"
#include "wrappers/WritableCdDvd.h"

namespace VantorWrappers {

// The directories that a host works with: the DICOMDIRs that lie in the roots of the drives, those that it
// has created, and the folders that the user has chosen, which are remembered for the next time.
//
// Each call of GetDirList or GetFolderDirList looks at the drives again: discs that were taken out or
// exchanged are dropped, new ones come in. A directory that is dropped is not valid from then on; who holds
// it may go on holding it.
//
// What is remembered is in the current user's registry (see docs/registry.md). Nothing is thrown but what
// the host's own hooks throw (host/); these must not destroy
// the manager. One thread at a time.
class DirectoriesMgr : public Linked<DirectoriesMgr> {
  public:
    using DirectoryList = std::vector<std::shared_ptr<DicomDirectory>>;

    // At most so many folders are remembered.
    static constexpr int32_t kRememberedFolders = 15;

    // Finds the DICOMDIRs on the drives, and the remembered folders.
    //     skipFloppy    the drive "A:\" is never looked at
    //     isViewer      for programs that run from a disc: only the drive named `viewerVolume` is looked at,
    //                   and the registry is neither read nor written
    //     withCdWriter  for programs that burn discs: there is a writer, and, if it can burn, its burning
    //                   area is one of the folder directories, not marked to be remembered. What is saved
    //                   or copied there is staged for the disc; an empty area takes a DICOMDIR first,
    //                   like any folder (CreateOrReplaceDirectory, DicomDirectory::CreateDICOMDIR).
    DirectoriesMgr(bool skipFloppy, bool isViewer, const HostString& viewerVolume, bool withCdWriter = false);

    // As Dispose.
    ~DirectoriesMgr();

    // Writes the registry and drops all directories. May be called twice.
    void Dispose();

    // ---- The directories ----

    // Each looks at the drives first.
    DirectoryList GetDirList();
    DirectoryList GetFolderDirList();
    std::vector<AvailableDrive> GetAvailableDriveList();

    // The first directory of that full path, or of that native directory; null when there is none.
    std::shared_ptr<DicomDirectory> FindManagedDirectory(const HostString& path) const;
    std::shared_ptr<DicomDirectory> FindManagedDirectory(
        const Vantor::TDicomDirectory* nativeDirectory) const;

    // The drive of that name, or that is the same; none when it was not ready when the drives were looked at
    // last.
    std::optional<AvailableDrive> FindAvailableDrive(const HostString& driveLetter) const;
    std::optional<AvailableDrive> FindAvailableDrive(const DriveInfo& driveInfo) const;

    // The first directory whose root path this is, else a new one of the folder, or the single file, which is
    // not marked to be remembered. Null when there is nothing at the path.
    std::shared_ptr<DicomDirectory> FindOrCreateFolderDirectory(const HostString& path);

    // Addition for hosts: opens a directory anywhere, without looking at the drives: a DICOMDIR, of whatever
    // name; a folder with a DICOMDIR in it, which is opened; any other folder; or a single file. One that is
    // there already is given again. Null when there is nothing at the path, or another program is changing
    // the DICOMDIR. GetDirList keeps it only while its drive is one of those that are looked at.
    std::shared_ptr<DicomDirectory> OpenDirectory(const HostString& path);

    // A new directory in place of one of that full path: with `isDicomdir` a DICOMDIR there, with that
    // File-set ID, and the records of an old one are gone; else the folder there, with a new DICOMDIR of that
    // File-set ID and an image folder, or null when there is no folder. DicomDirectory::GetError tells
    // whether a folder's DICOMDIR could be written.
    std::shared_ptr<DicomDirectory> CreateOrReplaceDirectory(const HostString& path, const HostString& name,
                                                             bool isDicomdir);

    // Addition for hosts: as CreateOrReplaceDirectory for a DICOMDIR, which is not written before the
    // directory is saved (DicomDirectory::OpenForUpdating, AddFile, Save). Until then what is at the path
    // stays: who enters many files has the old DICOMDIR until the new one is complete.
    std::shared_ptr<DicomDirectory> PrepareDirectory(const HostString& path, const HostString& name);

    // Drops a directory; nothing on disk is deleted. One that was marked to be remembered is forgotten.
    void DeleteDirectory(const std::shared_ptr<DicomDirectory>& directory);

    // Empties a directory, gives it a name and writes it anew; it is the current read directory then. The
    // files stay.
    //     (InternalError, RepairFailure)  no directory
    //     (Fatal, RepairFailure)          it could not be written
    LuminaError RepairDirectory(const std::shared_ptr<DicomDirectory>& directory, const HostString& name);

    // ---- The host's choices ----

    // The current ones; null for none, and when they have been dropped.
    const std::shared_ptr<DicomDirectory>& GetReadDir() const { return fCurrentReadDirectory; }
    void SetReadDir(std::shared_ptr<DicomDirectory> directory) {
        fCurrentReadDirectory = std::move(directory);
    }
    const std::shared_ptr<DicomDirectory>& GetWriteDir() const { return fCurrentWriteDirectory; }
    void SetWriteDir(std::shared_ptr<DicomDirectory> directory) {
        fCurrentWriteDirectory = std::move(directory);
    }

    // The folder where discs are staged, and the one for images from the network. Their paths are remembered.
    const std::shared_ptr<DicomDirectory>& GetStagingDir() const { return fStagingDirectory; }
    void SetStagingDir(std::shared_ptr<DicomDirectory> directory);
    const std::shared_ptr<DicomDirectory>& GetNetworkDir() const { return fNetworkImagesDirectory; }
    void SetNetworkDir(std::shared_ptr<DicomDirectory> directory);

    // The writer of discs, which the manager disposes of with itself; null without one.
    WritableCdDvd* GetWritableCd() const { return fWritableCd.get(); }

    // True for a directory of the same full path as the staging one; and for the DICOMDIR in the network
    // folder, whose path has to be spelled the same.
    bool IsStagingFolder(const DicomDirectory& directory) const;
    bool IsNetworkFolder(const DicomDirectory& directory) const;

    void SetSkipFloppy(bool skipFloppy) { fSkipFloppy = skipFloppy; }
    void SetIsViewer(bool isViewer) { fIsViewer = isViewer; }

    // Remembers the folders that are marked, the first kRememberedFolders of them, and the paths of the
    // staging and the network folder. Does nothing in viewer mode.
    void WriteToRegistry();

  private:
    void UpdateAvailableDriveList();
    bool IsWanted(const DriveInfo& drive) const;
    void UpdateDirList();
    void DropChangedDirectories();
    bool IsStillThere(const DicomDirectory& directory) const;
    void AddFoundDirectories();
    void UpdateFolderDirList();
    bool IsFolderStillThere(const DicomDirectory& directory) const;
    bool Drop(const std::shared_ptr<DicomDirectory>& directory);
    static void MakeAnew(Vantor::TDicomDirectory& native, const std::string& name);
    static LuminaError GiveUpRepair(Vantor::TDicomDirectory& native, const std::string& reason);
    std::shared_ptr<DicomDirectory> Construct(const HostString& path, const HostString& name, bool create,
                                              bool isDicomdir);
    std::shared_ptr<DicomDirectory> AddToDirList(const HostString& path);
    std::shared_ptr<DicomDirectory> AddToFolderDirList(const HostString& path, bool remember);
    void UpdateFromRegistry();
    void MakeWritableCd();
    std::shared_ptr<DicomDirectory> OpenRememberedFolder(const HostString& path);

    DirectoryList fDirList;
    DirectoryList fFolderDirList;
    std::vector<AvailableDrive> fAvailableDrivesList;
    std::unique_ptr<WritableCdDvd> fWritableCd;
    std::shared_ptr<DicomDirectory> fCurrentReadDirectory;
    std::shared_ptr<DicomDirectory> fCurrentWriteDirectory;
    std::shared_ptr<DicomDirectory> fNetworkImagesDirectory;
    std::shared_ptr<DicomDirectory> fStagingDirectory;
    bool fIsViewer;
    bool fSkipFloppy;
    HostString fViewerVolume;
    HostString fStagingFolderPath;
    HostString fNetworkFolderPath;
    bool fReadingRegistry = false;
    bool fIsDisposed = false;
};

}  // namespace VantorWrappers
