#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "dicom/TDicomFile.h"
#include "records/TDicomDoc.h"
#include "records/TImageDoc.h"
#include "records/TListOf.h"
#include "records/TPatientDoc.h"
#include "records/TRawDataDoc.h"
#include "records/TRecordDirectory.h"
#include "records/TSR_Doc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"

namespace Vantor {

class DocIndex;
class MediaPaths;
class MediaPlaces;
class TSeriesTransfer;

// A DICOM media directory in memory: a DICOMDIR file and the files beside it. Its records are a tree of
// documents (see TDicomDoc), which hosts reach through one list for each level. The lists count their
// members.
//
// Lists and documents are for one thread at a time. Documents stay until the directory is read again or
// destroyed; who counts one keeps it beyond that, without the documents above it.
class TDicomDirectory : public TDicomFile, public TRecordDirectory {
  public:
    static constexpr uint32_t kDirectoryNameSize = 17;  // a File-set ID and a terminator
    static constexpr uint32_t kVolumeNameSize = 32;
    static constexpr uint32_t kImageFolderNameSize = 32;

    // Opens and reads a DICOMDIR, and makes its image folder if that is missing and can be made.
    // `imageDocFlag` goes to every image file as its context. Throws what OpenFile and ReadFile throw, and
    // TException 102 when the data set cannot be walked up to its records.
    TDicomDirectory(const TFileSpec& fileSpec, uint32_t imageDocFlag);

    // A directory that is still to be filled and written, with the identity that the texts give (see
    // TDicomFile::InitNewFile), and the layout that is told. A file that may be there stays until
    // WriteDICOMDIR or CreateEmptyDICOMDIR puts the new one in its place. Inside structured storage the
    // stream is created or emptied; throws FileException.
    TDicomDirectory(const TFileSpec& fileSpec, const char* directoryName, int32_t directoryType,
                    const char* sopClassUID, const char* sopInstanceUID, const char* transferSyntaxUID,
                    const char* implementationClassUID, bool isBigEndian);

    ~TDicomDirectory() override;

    // Reads the DICOMDIR again when it has changed on disk. True when it has not, or was read; false when it
    // could not be, and the documents are then the old ones.
    virtual bool ReloadIfChanged();

    // Enters every DICOM file below the image folder that can be entered (see AddFile), in the order of their
    // names, those of a sub-folder where that stands among them. Files that are there stay there; links to
    // folders are not followed.
    virtual void ScanFiles();

    // Takes every patient out of its list; the other lists stay, but nothing in them is found any more. The
    // directory keeps counting the patients, and destroys them when it is read again or goes. Records on the
    // top level that are no patients go as well.
    virtual void RemoveAllDocs();

    // Takes a document out of the list of its type and gives the list's count back. Does nothing for one that
    // is not there, and for private documents. A document that is below no other is the caller's then, who
    // destroys it unless it is in use.
    void RemoveDoc(TDicomDoc* doc) override;

    // Writes the documents into the DICOMDIR and closes it. The new content takes the place of the old at
    // once; on failure the old one is still there. It need not be open for updating; if it is not and has
    // changed since it was read, TException 102 "DICOMDIR has changed" is thrown rather than the change lost.
    // Also throws FileException, and what completing a record throws.
    //
    // Records that nobody changed keep every element, also those that the library does not know, with code
    // strings in upper case and without group lengths; the elements beside the record sequence stay as well.
    // Records that were not in use, or that no other pointed at, are left out. It is always written in
    // explicit little endian, and keeps its instance UID.
    virtual void WriteDICOMDIR();

    // The full path of a file that a record names by its file ID. Empty when there can be none.
    virtual void MakeFileSpec(std::string_view fileID, TFileSpec& fileSpec);
    void MakeRelativeFileID(char* buffer, uint32_t& length, const TFileSpec& fileSpec) override;

    // An empty text, for media that carry none.
    virtual void GetExtraText(char* buffer);

    // Makes the next exam folder, EXAM0000 to EXAM9999, with its folders for clips and images, and gives its
    // name in a buffer of `size` characters. A study is told: its record names the folder from then on.
    // Nothing happens, and the name is empty, but in the exam layout. `reserved` is not looked at. Throws
    // TException 102 "Cannot make folder.".
    virtual void CreateExamFolders(char* name, uint32_t size, int32_t reserved, TStudyDoc* study);

    // An empty text, and the directory type.
    virtual int32_t GetExtraInfo(char* buffer);

    // ---- The documents ----

    // The lists themselves, in the order of the tree: all children of the first document above, then those of
    // the second, and so on. Not to be kept across RefreshDocs.
    TListOf<TPatientDoc>* GetPatientDocs() { return &fPatientDocs; }
    TListOf<TStudyDoc>* GetStudyDocs() { return &fStudyDocs; }
    TListOf<TSeriesDoc>* GetSeriesDocs() { return &fSeriesDocs; }
    TListOf<TImageDoc>* GetImageDocs() { return &fImageDocs; }
    TListOf<TRawDataDoc>* GetRawDataDocs() { return &fRawDataDocs; }
    TListOf<TSR_Doc>* GetSRDocs() { return &fSRDocs; }

    // Makes all documents anew from the loaded data set; without records there are none. A directory whose
    // first study has a folder of its own becomes one of the exam layout. Throws TException 102 when the data
    // set cannot be walked up to its records.
    void RefreshDocs();

    // True when RefreshDocs has found that records are missing, as in a DICOMDIR that was cut short: the
    // documents are then not all of the medium. No longer so once they are written.
    bool HasLostRecords() const { return fHasLostRecords; }

    // Takes every patient out of its list and destroys it with its tree, as far as nobody holds it.
    void ClearAllDocs();

    // The first document of the list of its type that is the same record (TDicomDoc::IsSameRecord); null when
    // there is none, or no document is given. Types without a list are looked for among the patients.
    // Documents that are still listed although what they were below has been taken out do not count: what is
    // entered below them would not be written.
    TDicomDoc* FindDoc(TDicomDoc* doc);

    // As FindDoc; when there is none, makes it here, and the documents above it that are missing, from the
    // given one and those above that. A document that belongs to this directory already is itself entered.
    // What is below a document is not copied. `error` is 0.
    TDicomDoc* FindOrCreateDoc(TDicomDoc* doc, int32_t& error);

    // False for a document that is still listed although what it was below has been taken out or destroyed.
    bool IsInTree(const TDicomDoc& doc);

    // Documents as hosts name them: the first one of the list that is in the tree and has these texts, which
    // are as Platform::FromHostText gives them; null when there is none. Without regard to blanks around a
    // patient's name and number and to carets at the end of the name.
    TPatientDoc* FindPatient(std::string_view name, std::string_view number);
    TStudyDoc* FindStudy(std::string_view uid);
    TSeriesDoc* FindSeries(std::string_view uid);
    TImageDoc* FindImage(std::string_view instanceUID);
    TRawDataDoc* FindRawData(std::string_view instanceUID);
    TSR_Doc* FindReport(std::string_view instanceUID);

    // Put the series of a study, or the images of a series, into ascending order of their numbers, in place;
    // equal ones stay as they are. A series without number stays where it is, and none passes it.
    void SortSeriesByNumber(TStudyDoc* study);
    void SortImagesByNumber(TSeriesDoc* series);

    // Hands in a file that is on the medium already, and whose records are still to be made: a document that
    // is copied into this directory takes the file of its class and instance, by the UIDs of both file
    // objects. False when there is none.
    bool RegisterDicomFile(std::unique_ptr<TDicomFile> file);

    // ---- Writing ----

    // Makes the directory a new one with an instance UID of its own, and writes it: a valid DICOMDIR with the
    // File-set ID and without records, in place of a file that may be there. The documents in memory stay.
    // Throws FileException.
    void CreateEmptyDICOMDIR();

    // The same with the records of the documents, at once: whoever replaces a DICOMDIR has the old one until
    // the new one is complete. TException as WriteDICOMDIR.
    void CreateFilledDICOMDIR();

    // Opens the DICOMDIR to be changed, alone, and reads it again when it is not the one that was read last.
    // False when that fails, or there is none; it is then closed, and the documents are the old ones.
    // WriteDICOMDIR closes it. For a directory that is still to be written a file that is there is held, and
    // is not read.
    bool OpenForUpdating();

    // False when the DICOMDIR is a link to a file in another folder, which is not the medium's to be changed.
    bool OwnsDICOMDIR();

    // True until a directory that was not read from a file is written for the first time.
    bool IsUnwritten() const { return fIsUnwritten; }

    // Enters one file below the directory's folder, by its full path: an image (any file with pixel data), a
    // report (by its modality), raw data, or a private record for any other DICOM file, with the documents
    // above it that are missing. Gives its series; null, and nothing is entered, when the file cannot be read
    // as DICOM, is a DICOMDIR, lies elsewhere or has a path of 255 characters or more. A file whose instance
    // is there already is not entered again; raw data and others cannot be told and are. Throws TException
    // 102 ("No Patient ID", "No Series Instance UID") for a file that lacks what its records must have;
    // nothing is entered then.
    TDicomDoc* AddFile(const std::string& path);

    // ---- Taking in documents of other directories ----
    // What SetImportDocs was given is copied bit by bit, so that a host can show progress: ImportDocs is
    // called until it is true. The files get names of the standard layout; the records are in the tree at the
    // end, and in the DICOMDIR when the host calls WriteDICOMDIR.

    // Documents of this or another directory, with all that is below them. They are counted until the
    // import ends.
    void SetImportDocs(const TListOf<TDicomDoc>& docs);

    // Works for about `timeBudget` milliseconds, and gives the place of the document at hand, 1 for the
    // first, and how many there are; `doneKB` and `totalKB`, in units of 1,024 bytes, count its files. True
    // once every document is done; false while work remains, and without documents. `message`, a buffer of
    // kMessageSize characters, is given "Can not open DICOMDIR for updating." when that is so; the files
    // are then copied but not entered.
    //
    // A file that cannot be read is passed by. Throws what naming, creating and writing a new file throws;
    // part of it may then be on disk, and the next call starts with that file again.
    bool ImportDocs(int32_t timeBudget, int32_t& index, int32_t& count, int32_t& doneKB, int32_t& totalKB,
                    char* message);

    // Ends the import, wherever it is. What was copied so far stays on disk. A DICOMDIR that was opened for
    // updating at the end of a document stays open: WriteDICOMDIR closes it, or CloseFile.
    void ClearDocsToMove();

    // As RegisterDicomFile, for a file of the import under way.
    void RegisterImportedFile(std::unique_ptr<TDicomFile> file);

    // Called at the end of each document, with the one in this directory, or null, and the one that it was
    // taken from. For subclasses; does nothing.
    virtual void AfterTransfer(TDicomDoc* imported, TDicomDoc* source);

    static constexpr uint32_t kMessageSize = 256;

    // ---- Names and folders of new files ----
    // Names that are taken are passed by. Nothing is created; who asks for a name uses it before the next one
    // is asked for.

    // A file ID of the standard layout, for a report (TSRFile::kReportKind) or any other kind, in a buffer of
    // TFileSpec::kPathSize characters, and its length. Throws TException 102 "Exceeded 999999 files!" when
    // the numbers are used up; the last one is never given.
    void MakeNextFileName(char* fileID, uint32_t& length, int32_t kind);

    // The full path of a new image file in the directory's layout, in a buffer of TFileSpec::kPathSize
    // characters, and its length. `subFolder` is below the image folder; in the exam layout it is the exam
    // folder's name with a backslash, the class decides between clips and images, and `preferredName` may be
    // given. The first two characters of a name stay when it is taken. An empty path and 0 when there is none
    // left or it is too long.
    void MakeImageFileName(char* path, int32_t& length, const char* subFolder, const char* sopClassUID,
                           const char* preferredName);

    // Removes the files of a document and of all below it from disk, as far as that goes. Files that are not
    // the medium's stay, and those that a record elsewhere names as well.
    void DeleteFiles(TDicomDoc& doc);

    // Removes the exam folder of a study, or those of a patient's studies, with all that is in them, as far
    // as that goes. Nothing happens for others, for a folder that another study has too or has files in, and
    // but in the exam layout.
    void DeleteFolders(TDicomDoc* doc);

    // What the files of all series take, in units of 1,024 bytes, counted anew.
    float GetFileSpaceUsed();

    // ---- Properties ----

    int32_t GetDirectoryType() const override { return fDirectoryType; }

    // The DICOMDIR's full path.
    std::string GetFullPath() const { return GetFileSpec()->fPath; }

    // Texts kept for the host.
    const std::string& GetFolderPath() const { return fFolderPath; }
    void SetFolderpath(const std::string& path) {
        fFolderPath = path;
        ForgetPlaces();
    }
    const std::string& GetImageFolder() const { return fImageFolder; }
    void SetImageFolder(const std::string& folder) { fImageFolder = folder; }

    // The File-set ID, of at most kDirectoryNameSize − 1 characters. Setting it also puts it into the data
    // set.
    void GetDirName(char* buffer, uint32_t size) const;
    void SetDirName(const char* text);

    // A buffer of kVolumeNameSize characters, the terminator among them.
    void GetVolumeName(char* buffer) const;
    void SetVolumeName(const char* text);

    // What the host found out about the volume; not looked at.
    void SetDriveType(int32_t driveType) { fDriveType = driveType; }
    int32_t GetDriveType() const { return fDriveType; }
    void SetRemovable(bool isRemovable) { fIsRemovable = isRemovable; }
    bool IsRemovable() const { return fIsRemovable; }
    void SetWritable(bool isWritable) { fIsWritable = isWritable; }
    bool IsWritable() const { return fIsWritable; }

    // ---- For the documents ----

    std::shared_ptr<const TFilePlaces> GetFilePlaces() override;
    double GetAvailableSpace() override;
    uint32_t GetImageSetting() const override { return fImageDocFlag; }
    void CheckReport(TSRFile& file) override;
    void RegisterDoc(TDicomDoc* doc) override;
    void NoteIdentity(TDicomDoc* doc) override;
    void RemoveDocs(const TListOf<TDicomDoc>& docs) override;
    void KeepDoc(TDicomDoc* doc) override;
    std::unique_ptr<TDicomFile> TakeRegisteredFile(const char* sopClassUID,
                                                   const char* sopInstanceUID) override;

  protected:
    // Of the file at `fileSpec`, which is not looked at.
    TDicomDirectory(const TFileSpec& fileSpec, uint32_t imageDocFlag, int32_t directoryType);

    // The part of the opening constructor that reads; and what is left to do when that fails.
    void ReadDirectory();
    void ForgetContent();

    // Who numbers a series whose files do not.
    enum class SeriesNumbers { kFromRecord, kLater };
    TDicomDoc* EnterFile(const std::string& path, SeriesNumbers numbers);

    // Enters what can be of the files below a folder.
    void EnterFilesBelow(const std::string& folder, SeriesNumbers numbers);

    // Takes all documents out and destroys those that nobody holds.
    void ClearLists();

    // False for a directory that cannot be updated, as it has no DICOMDIR.
    virtual bool HasDICOMDIR() const { return true; }

    // Where the files are; asked again when the directory's path or folder path has changed, or what else
    // it depends on.
    virtual std::shared_ptr<const MediaPlaces> MakePlaces();
    void ForgetPlaces() { fPlaces.reset(); }

    void SetImageFolderName(const char* name);

    // For subclasses, which may start at another number.
    void SetNextImageNumber(int32_t number);

  private:
    // Documents that the directory counts outside its lists.
    using HeldDocs = std::vector<TDicomDoc*>;

    const MediaPlaces& GetPlaces();
    const MediaPaths& GetPaths();
    DocIndex& GetIndex();
    DocIndex& GetHostIndex(int32_t docType);
    template <typename T>
    T* FindByHostKey(const std::string& key);
    template <typename Action>
    void ForIndexesOf(int32_t docType, Action action);
    void ForgetIndexes();
    bool HasDoc(const TDicomDoc* doc);
    class OldContent;
    void ReadContent();
    void TakeDirName();
    void RequireOwnFile();
    bool HoldWhatIsThere();
    bool ReadAgain(Platform::FileAccess access);
    bool IsAsRead();
    bool IsMissing() const;
    void FlushNewFiles();
    bool IsOfDocs() const;
    std::string MakeStoredFileID(const TFileSpec& fileSpec);
    void StartMoving(int32_t index);
    void CreateDICOMDIROf(const HeldDocs& rootDocs);
    void WriteRecords(TDicomDataSet* present, const HeldDocs& rootDocs);
    HeldDocs GetRootDocs() const;
    std::unordered_set<std::string> CollectFileIDs(const TDicomDoc* without);
    int32_t FindRecordSequence() const;
    void FillLists(std::vector<std::unique_ptr<TDicomDoc>> rootDocs);
    void DetectExamLayout();
    void LeaveFalseParents();
    template <typename T>
    void ClearList(TListOf<T>& list, HeldDocs& withoutParent);
    static void Drop(HeldDocs& docs);
    std::string MakeNumberedFolder(std::string_view prefix, const std::string& baseFolder, std::string& name);
    std::string MakeImageFolderPath();
    void MakeImageFolder(const char* name, const MediaPaths& paths);
    bool HasOwnExamFolder(const TStudyDoc& study) const;
    bool HasFilesOfOthers(const TStudyDoc& study, const std::string& folder);
    void RemoveExamFolder(const TStudyDoc& study);
    template <typename Action>
    void WithListOf(int32_t docType, Action action);

    std::string fFolderPath;
    std::string fImageFolder;
    TListOf<TPatientDoc> fPatientDocs;
    TListOf<TStudyDoc> fStudyDocs;
    TListOf<TSeriesDoc> fSeriesDocs;
    TListOf<TImageDoc> fImageDocs;
    TListOf<TRawDataDoc> fRawDataDocs;
    TListOf<TSR_Doc> fSRDocs;
    std::deque<std::unique_ptr<TDicomFile>> fRegisteredFiles;
    std::vector<std::string> fNewFiles;  // registered since the DICOMDIR was written
    int32_t fDirectoryType = kStandardLayout;
    int32_t fNextImageNumber = 0;
    char fVolumeName[kVolumeNameSize] = {};
    char fDirectoryName[kDirectoryNameSize] = {};
    char fImageFolderName[kImageFolderNameSize] = {};
    int32_t fDriveType = 0;
    bool fIsRemovable = false;
    bool fIsWritable = false;
    float fSpaceUsed = 0;
    uint32_t fImageDocFlag = 0;

    TListOf<TDicomDoc> fDocsToMove;
    HeldDocs fHeldToMove;                                  // these documents and those above them
    std::unordered_set<const TDicomFile*> fImportedFiles;  // registered by the import under way
    int32_t fMoveCount = 0;
    int32_t fMoveIndex = 0;
    bool fIsMoving = false;
    std::unique_ptr<TSeriesTransfer> fTransfer;

    std::string fPlacesOf;
    std::shared_ptr<const MediaPlaces> fPlaces;  // for fPlacesOf; null when they have to be made anew
    // Of the documents in the lists, by what makes them the same record, and of each list by what hosts call
    // them. Null until one is looked for.
    std::unique_ptr<DocIndex> fIndex;
    std::array<std::unique_ptr<DocIndex>, TDicomDoc::kTypeCount> fHostIndexes;
    bool fIsUnwritten = false;
    Platform::FileMark fReadMark;  // of the file that the documents are of
    std::optional<std::unordered_map<std::string, bool>> fReportAnswers;  // by path, while loading
    bool fHasLostRecords = false;
    int64_t fRecordShift = 0;  // how far the records have moved in the data set since it was read
    HeldDocs fOtherRootDocs;   // on the top level of the tree without being patients
    HeldDocs fPlacelessDocs;   // in no list and below no document
    HeldDocs fRetiredDocs;     // raw data of earlier trees
};

}  // namespace Vantor
