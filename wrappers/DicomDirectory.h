#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "wrappers/CopySeriesEventArgs.h"
#include "wrappers/DriveInfo.h"
#include "wrappers/Event.h"
#include "wrappers/HostString.h"
#include "wrappers/Linked.h"
#include "wrappers/LuminaError.h"
#include "wrappers/PatientDirRec.h"
#include "wrappers/SeriesDirRec.h"
#include "wrappers/StudyDirRec.h"

namespace Vantor {
class TDicomDirectory;
class TFolderDirectory;
template <typename T>
class TListOf;
class TImageDoc;
class TPatientDoc;
class TRawDataDoc;
class TSeriesDoc;
class TSR_Doc;
class TStudyDoc;
}  // namespace Vantor

namespace VantorWrappers {

class DirectoriesMgr;

// A directory of DICOM files: a DICOMDIR with the files beside it, or a folder. Hosts get it from their
// DirectoriesMgr, which also says whether it is still valid: most operations do nothing on one that is not,
// and answer false, "", 0 or nothing.
//
// The lists of patients, studies and series are as the records were when they were made. Changes mark them
// as not current, and the host has them made anew with UpdateDirRecs.
//
// Nothing is thrown, but for IsWritable and what the host's own hooks throw (host/). What fails writes one
// line to the directory trace, and where an operation has no result of its own GetError tells.
//
// Files are entered with OpenForUpdating, AddFile for each, Save. For one thread at a time.
class DicomDirectory : public Linked<DicomDirectory>, public std::enable_shared_from_this<DicomDirectory> {
  public:
    // Takes a native directory, which may be null. `manager` has to list the new object before it is valid.
    DicomDirectory(std::unique_ptr<Vantor::TDicomDirectory> nativeDirectory, DirectoriesMgr& manager);

    // Opens or creates a directory.
    //     isDicomdir                 opens the DICOMDIR at `path`
    //     isDicomdir and create      makes a new one there, with the File-set ID `fileSetName`, in place of a
    //                                file of that name
    //     neither                    a folder, or a single file, at `path`
    // Without a file or folder the object is without a directory, and never valid; likewise for a DICOMDIR
    // that another program has open to change it, for as long as OpenFile waits. When anything else goes
    // wrong, the user is told and the process ends: see VantorHost::DamagedDirectory.
    DicomDirectory(const HostString& path, DirectoriesMgr& manager, const HostString& fileSetName,
                   bool create, bool isDicomdir);

    // Addition for the manager: a new DICOMDIR that Save writes for the first time. What is at the path until
    // then stays.
    DicomDirectory(const HostString& path, DirectoriesMgr& manager, const HostString& fileSetName);
    ~DicomDirectory();

    // Raised again and again while CopySeries is under way.
    Event<CopySeriesEventArgs> eCopySeriesProgress;

    // False when the manager does not have it any more, or it is without a directory.
    bool IsValid() const;

    // Releases the native directory; nothing is valid afterwards. May be called twice, and the destructor
    // does it too.
    void Dispose();

    // Addition for hosts: how the last of the operations that write the DICOMDIR ended, among them Save.
    const LuminaError& GetError() const { return fError; }

    // ---- Records ----

    // As they were made last; also of a directory that is not valid. Not to be kept across UpdateDirRecs.
    const std::vector<PatientDirRec>& GetPatientList() const { return fPatientList; }
    const std::vector<StudyDirRec>& GetStudyList() const { return fStudyList; }
    const std::vector<SeriesDirRec>& GetSeriesList() const { return fSeriesList; }

    // True when the DICOMDIR on disk is the one that was read, and nothing has been entered, copied or
    // deleted here, nor ForceRefresh called, since the lists were made. Setters of records do not count.
    bool IsCurrent() const;

    // Marks the lists as not current.
    void ForceRefresh() { fWrapperIsCurrent = false; }

    // Reads the DICOMDIR again when it has changed on disk, and makes the lists anew.
    void UpdateDirRecs();

    // Makes the records anew from what was read of the DICOMDIR last, or of a folder without one from its
    // files; changes that were not saved are gone.
    void SyncWithDiskVersion();

    // Takes all records out.
    void ClearAllDirectoryRecords();

    bool IsSeriesInDirectory(const HostString& uid) const { return GetUmSeries(uid) != nullptr; }

    // The native documents: the first one of that name, for what is built on native classes. Without regard
    // to blanks around a patient's name and number and to carets at the end of the name; UIDs have to be the
    // same. Null when there is none.
    Vantor::TPatientDoc* GetUmPatient(const HostString& name, const HostString& id) const;
    Vantor::TStudyDoc* GetUmStudy(const HostString& uid) const;
    Vantor::TSeriesDoc* GetUmSeries(const HostString& uid) const;
    Vantor::TImageDoc* GetUmImage(const HostString& uid) const;
    Vantor::TSR_Doc* GetUmSR(const HostString& uid) const;
    Vantor::TRawDataDoc* GetUmRawData(const HostString& uid) const;

    // The native directory, owned by this object; null without one.
    Vantor::TDicomDirectory* GetUmDirectory() const { return fUmDicomDirectory.get(); }

    // ---- Changing it ----

    // Opens the DICOMDIR to be changed, alone, and reads it again if it has changed: native documents that
    // were found before may be gone then. False when that fails, and for folders without a DICOMDIR.
    bool OpenForUpdating();

    // Enters a file that lies below the directory's folder. True when it is entered, or was.
    bool AddFile(const HostString& path);
    bool AddFileToDir(const HostString& path) { return AddFile(path); }

    // Addition for hosts: gives the reason of a failure as well, "" without one.
    bool AddFile(const HostString& path, HostString& reason);

    // Addition for hosts: true until a directory of DirectoriesMgr::PrepareDirectory is saved.
    bool IsUnwritten() const;

    // Opens the DICOMDIR for updating, unless it is, writes the records into it and closes it. GetError tells
    // how it ended; (Fatal, DirectoryReadOnly) when it could not be opened.
    void Save();

    // Writes the records into the DICOMDIR, as Save, unless another program has changed it.
    void WriteDirectory();

    // Gives up an update: closes the DICOMDIR, also that of a directory which has been dropped. The records
    // stay as they are.
    void CloseFile();

    // Makes a new, empty DICOMDIR with the directory's name on disk, which others may change too. The records
    // in memory stay.
    void CreateDICOMDIR();

    // Addition for the manager, for folders only: the same with a name and the records in memory, at once.
    void CreateFilledDICOMDIR(const HostString& name);

    // For folders only: makes a folder for new images in it, if it is missing, and lets others use it; takes
    // note that all files have been deleted, and the DICOMDIR as well.
    void CreateImageFolder(const HostString& name);
    void AllFilesDeleted();

    // Copies a series of another directory into this one, file by file, and enters it; progress is told by
    // eCopySeriesProgress. Success, and nothing is copied, when the directory holds the series already.
    //     (InternalError, MissingDirectoryObject)  this object is without a directory
    //     (Fatal, CopySeriesFailure)               the source or a record is at fault; also when the series
    //                                              is not found in its own directory
    //     (Fatal, CopySeriesVolumeFull)            a new file could not be written; when the volume is one of
    //     (Fatal, CopySeriesFAT32)                 FAT32, which holds no large files, or
    //     (Fatal, CopySeriesDestMissing)           when the folder for it is not there
    //     (Fatal, CopySeriesDirUpdateFailure)      the DICOMDIR could not be opened or written; the files are
    //                                              copied
    // The first of several failures counts. What was copied stays on disk, but the directory does not hold
    // the series; where the DICOMDIR could not be written, its records are those on disk again, and changes
    // that were not saved are gone. A source file that is missing or cannot be read is passed by: its image
    // is entered as one whose file was not copied.
    LuminaError CopySeries(const SeriesDirRec& series);

    // Deletes a series with its files, and the study and the patient that are empty then. Success when there
    // is no such series.
    //     (InternalError, MissingDirectoryObject)  this object is without a directory
    //     (Fatal, DirectoryReadOnly)               the DICOMDIR cannot be opened; nothing is deleted
    //     (Fatal, DeleteFailed)                    anything else, such as a DICOMDIR that cannot be written
    LuminaError DeleteSeries(const SeriesDirRec& series);

    // ---- Properties ----

    // False for discs. A folder that is marked as read-only is tried out: writable when a file "test.txt" can
    // be made in it. True when not valid. Throws Vantor::Platform::FileException when the system denies
    // access to the file that it tries.
    bool IsWritable() const;
    void SetWritable(bool isWritable);

    bool IsRemovable() const;
    void SetRemovable(bool isRemovable);

    // True when the drive is known and one for discs.
    bool IsCDDVD() const;

    // The drive that the directory is on; null when it is not known.
    const std::shared_ptr<const DriveInfo>& GetDriveInfo() const { return fDriveInfo; }
    void SetDriveInfo(std::shared_ptr<const DriveInfo> driveInfo) { fDriveInfo = std::move(driveInfo); }

    // For the host: whether the manager keeps the directory for the next time. At first false.
    bool IsMarkedToRemember() const { return fMarkedToRemember; }
    void SetMarkedToRemember(bool isMarked) { fMarkedToRemember = isMarked; }

    // Texts of the native directory.
    std::optional<HostString> GetFolderPath() const;
    void SetFolderPath(const HostString& path);
    void SetImageFolder(const HostString& path);
    std::optional<HostString> GetVolumeName() const;
    void SetVolumeName(const HostString& name);

    // Of a folder, as CreateImageFolder made it; "" for others.
    HostString GetImageFolderFullPath() const;

    // The File-set ID, of up to 16 characters. Setting it also writes the DICOMDIR.
    std::optional<HostString> GetDirName() const;
    void SetDirName(const HostString& name);

    // In units of 1,024 bytes: what the files of all series take, and what the volume has left.
    float GetFileSpaceUsed() const;
    double GetAvailableSpace() const;

    // The instance UID of the DICOMDIR.
    std::optional<HostString> GetDirectoryUID() const;

    // The full path of the DICOMDIR, or of a folder without one, or of the single file.
    HostString GetFullPath() const;

    // The drive that the path is on, as "C:\"; "\\" for a network path of Windows; "" without a path.
    HostString GetDrive() const;

    // The folder, or the single file; for a DICOMDIR, the folder that it is in.
    HostString GetRootPath() const;

    // What to call the directory in a list: its drive and its name, such as "C: Exams". A folder without a
    // name of its own is called after itself.
    HostString GetDisplayName() const;

    bool IsFolder() const;

    // Addition for hosts: true when the DICOMDIR speaks of records that are not in it, as one that was cut
    // short does. What is shown is then not all of the medium, and writing the DICOMDIR gives up the rest.
    bool HasLostRecords() const;

    // For folders: whether there is a DICOMDIR. Hosts rely on the other answers: false for a DICOMDIR, true
    // when not valid.
    bool HasDICOMDIR() const;

    // True for a folder that holds one named "IC_transfers", where downloads arrive.
    bool IsDownloadFolder() const;

    // True for two handles on the same native directory.
    bool Equals(const DicomDirectory& other) const { return GetUmDirectory() == other.GetUmDirectory(); }

  private:
    void Open(const std::string& path, const std::string& fileSetName, bool create, bool isDicomdir);
    void OpenFolder(const std::string& path);
    void StartNew(const std::string& path, const std::string& fileSetName);
    void CreateNew(const std::string& path, const std::string& fileSetName);
    void TakeDrive(const std::string& path);
    void TakeDriveType();
    bool MayBeWritten(const std::string& path) const;
    void ReportDamage(const HostString& path);
    void UpdateManagedLists();
    template <typename Doc>
    std::vector<Doc*> InTree(const Vantor::TListOf<Doc>& docs) const;
    Vantor::TFolderDirectory* GetFolder() const;
    void Write(const std::function<void()>& operation);
    static bool CanWriteInto(const std::string& folder);
    std::string GetNativePath() const;

    std::vector<PatientDirRec> fPatientList;
    std::vector<StudyDirRec> fStudyList;
    std::vector<SeriesDirRec> fSeriesList;
    LuminaError fError;
    std::unique_ptr<Vantor::TDicomDirectory> fUmDicomDirectory;
    std::shared_ptr<DirectoriesMgr* const> fDirectoriesMgr;
    CopySeriesEventArgs fCopySeriesEventArgs;
    bool fWrapperIsCurrent = false;
    bool fMarkedToRemember = false;
    std::shared_ptr<const DriveInfo> fDriveInfo;
};

}  // namespace VantorWrappers
