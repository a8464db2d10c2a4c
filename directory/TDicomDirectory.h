#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
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

class MediaPaths;

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

    // A directory that is still to be filled and written: creates or empties the file, with the identity that
    // the texts give (see TDicomFile::InitNewFile), and sets the layout. Throws FileException.
    TDicomDirectory(const TFileSpec& fileSpec, const char* directoryName, int32_t directoryType,
                    const char* sopClassUID, const char* sopInstanceUID, const char* transferSyntaxUID,
                    const char* implementationClassUID, bool isBigEndian);

    ~TDicomDirectory() override;

    // Reads the DICOMDIR again when it has changed on disk. True when it has not, or was read; false when it
    // could not be, and the documents are then the old ones unless their order could not be made out.
    virtual bool ReloadIfChanged();

    // Takes every patient out of its list; the other lists stay. The directory keeps counting the patients,
    // and destroys them when it is read again or goes.
    virtual void RemoveAllDocs();

    // Takes a document out of the list of its type and gives the list's count back. Does nothing for one that
    // is not there, and for private documents. A document that is below no other is the caller's then, who
    // destroys it unless it is in use.
    void RemoveDoc(TDicomDoc* doc) override;

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

    // Takes every patient out of its list and destroys it with its tree, as far as nobody holds it.
    void ClearAllDocs();

    // The first document of the list of its type that is the same record (TDicomDoc::IsSameRecord); null when
    // there is none, or no document is given. Types without a list are looked for among the patients.
    TDicomDoc* FindDoc(TDicomDoc* doc);

    // As FindDoc; when there is none, makes it here, and the documents above it that are missing, from the
    // given one and those above that. A document that belongs to this directory already is itself entered.
    // What is below a document is not copied. `error` is 0.
    TDicomDoc* FindOrCreateDoc(TDicomDoc* doc, int32_t& error);

    // Put the series of a study, or the images of a series, into ascending order of their numbers, in place;
    // equal ones stay as they are. A series without number stays where it is, and none passes it.
    void SortSeriesByNumber(TStudyDoc* study);
    void SortImagesByNumber(TSeriesDoc* series);

    // Hands in a file that is to be entered into the DICOMDIR. False when there is none.
    bool RegisterDicomFile(std::unique_ptr<TDicomFile> file);

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

    // Removes the exam folder of a study, or those of a patient's studies, with all that is in them, as far
    // as that goes. Nothing happens for others, and but in the exam layout.
    void DeleteFolders(TDicomDoc* doc);

    // What the files of all series take, in units of 1,024 bytes, counted anew.
    float GetFileSpaceUsed();

    // ---- Properties ----

    int32_t GetDirectoryType() const override { return fDirectoryType; }

    // The DICOMDIR's full path.
    std::string GetFullPath() const { return GetFileSpec()->fPath; }

    // Texts kept for the host.
    const std::string& GetFolderPath() const { return fFolderPath; }
    void SetFolderpath(const std::string& path) { fFolderPath = path; }
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
    void RegisterDoc(TDicomDoc* doc) override;
    void RemoveDocs(const TListOf<TDicomDoc>& docs) override;
    void KeepDoc(TDicomDoc* doc) override;
    std::unique_ptr<TDicomFile> TakeRegisteredFile(const char* sopClassUID,
                                                   const char* sopInstanceUID) override;

  protected:
    // For subclasses, which may start at another number.
    void SetNextImageNumber(int32_t number);

  private:
    // Documents that the directory counts outside its lists.
    using HeldDocs = std::vector<TDicomDoc*>;

    class FilePlaces;

    const FilePlaces& GetPlaces();
    const MediaPaths& GetPaths();
    void SetImageFolderName(const char* name);
    int32_t FindRecordSequence() const;
    void FillLists(std::vector<std::unique_ptr<TDicomDoc>> rootDocs);
    void DetectExamLayout();
    void LeaveFalseParents();
    void ClearLists();
    template <typename T>
    void ClearList(TListOf<T>& list, HeldDocs& withoutParent);
    static void Drop(HeldDocs& docs);
    std::string MakeNumberedFolder(std::string_view prefix, const std::string& baseFolder, std::string& name);
    std::string MakeImageFolderPath();
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

    std::string fPathsOf;
    std::shared_ptr<const FilePlaces> fPlaces;  // for fPathsOf; null when they have to be made anew
    int64_t fRecordShift = 0;  // how far the records have moved in the data set since it was read
    HeldDocs fOtherRootDocs;   // on the top level of the tree without being patients
    HeldDocs fPlacelessDocs;   // in no list and below no document
    HeldDocs fRetiredDocs;     // raw data of earlier trees
};

}  // namespace Vantor
