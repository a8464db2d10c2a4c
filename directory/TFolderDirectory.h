#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "directory/TDicomDirectory.h"

namespace Vantor {

// A folder of DICOM files, or one single file, that is browsed like a DICOMDIR. With a DICOMDIR in the folder
// the documents are those of its records; without one they are made from the files below the folder.
//
// The directory type stays kFolderDirectory, whatever layout the folder's studies had; new files are named by
// the standard layout.
class TFolderDirectory final : public TDicomDirectory {
  public:
    // What the directory stands for; every other mode means a folder as well.
    static constexpr int32_t kFolder = 0;
    static constexpr int32_t kSingleFile = 2;

    // Opens a DICOMDIR; the folder is the one that it is in. Throws as TDicomDirectory does.
    explicit TFolderDirectory(const TFileSpec& fileSpec);

    // A folder, or a file, by its full path. What cannot be read leaves a directory that is empty and usable.
    // A path of 256 characters or more is not kept. `directoryName` does not stay: hosts that want a name set
    // it afterwards.
    //
    // The files are entered as AddFile does, in the order of their names, those of sub-folders among them;
    // what is no DICOM file is left out, and so is a DICOMDIR. A series whose files have no number is given
    // its place in the study.
    TFolderDirectory(const std::string& path, const char* directoryName, int32_t mode);

    // With a DICOMDIR, as TDicomDirectory. Without, the files are looked through again when the folder's
    // last-write time has changed. Hosts rely on the answer: false without a DICOMDIR, and when nothing has
    // changed.
    bool ReloadIfChanged() override;

    // Without a DICOMDIR, looks through the files again, whether or not the folder has changed.
    void LookAgain();

    // Enters the files below the folder, or the one file; those that are there stay there.
    void ScanFiles() override;

    // Takes all documents out, and destroys those that nobody holds.
    void RemoveAllDocs() override;

    // Only with a DICOMDIR; failures are not thrown. False from HasWritten tells of one.
    void WriteDICOMDIR() override;
    bool HasWritten() const { return fHasWritten; }

    // True when the documents come from a DICOMDIR in the folder, and are written into it.
    bool GetHasDICOMDIRflag() const { return fHasDICOMDIR; }
    void SetHasDICOMDIRflag(bool hasDICOMDIR) { fHasDICOMDIR = hasDICOMDIR; }

    // Makes a folder in this one, if it is missing and can be made, and takes it as the image folder.
    void CreateImageFolder(const std::string& name);

    // As CreateImageFolder made it; empty before.
    std::string GetImageFolderFullPath() const { return GetImageFolder(); }

    // Writes a new, empty DICOMDIR with the File-set ID into the folder. The documents stay, and
    // WriteDICOMDIR enters them. Throws FileException, and TException 102 when there is one that is not this
    // object's; the folder is then without a DICOMDIR of this object's, as before.
    void CreateDICOMDIR();

    // The same with a name and the records of all documents, at once.
    void CreateFilledDICOMDIR(const char* name);

  protected:
    // File IDs count from the folder; for a single file each of them means that file. One that begins with
    // the folder's path is a full path already.
    std::shared_ptr<const MediaPlaces> MakePlaces() override;

    bool HasDICOMDIR() const override { return fHasDICOMDIR; }

  private:
    void OpenDICOMDIR();
    template <typename Write>
    void MakeDICOMDIR(Write write);
    void ScanAnew();
    void NumberSeries();

    int32_t fMode = kFolder;
    bool fHasDICOMDIR = false;
    bool fHasWritten = true;  // the last time that there was something to write
};

}  // namespace Vantor
