#pragma once

#include <cstdint>
#include <memory>

#include "dicom/TDicomFile.h"
#include "dicom/TFileSpec.h"
#include "dicom/TSRFile.h"
#include "records/TFilePlaces.h"
#include "records/TListOf.h"

namespace Vantor {

class TDicomDoc;

// What a record document asks of the directory that it belongs to. Documents may outlive their directory,
// when somebody holds them: they have none then.
class TRecordDirectory {
  public:
    TRecordDirectory();
    TRecordDirectory(const TRecordDirectory&) = delete;
    TRecordDirectory& operator=(const TRecordDirectory&) = delete;

    // The directory types that documents know: how files are named and put into folders.
    static constexpr int32_t kStandardLayout = 0;
    static constexpr int32_t kExamLayout = 1;
    static constexpr int32_t kFolderDirectory = 2;

    // Where the directory's files are.
    virtual std::shared_ptr<const TFilePlaces> GetFilePlaces() = 0;

    // The file ID of a full path, in a buffer of TFileSpec::kPathSize characters, NUL-terminated, and its
    // length.
    virtual void MakeRelativeFileID(char* buffer, uint32_t& length, const TFileSpec& fileSpec) = 0;

    // Free space on the directory's volume, in units of 1,024 bytes.
    virtual double GetAvailableSpace() = 0;

    // The layout, or another number that means neither.
    virtual int32_t GetDirectoryType() const = 0;

    // What the directory passes on to its image files.
    virtual uint32_t GetImageSetting() const = 0;

    // Enters a document into the directory's list of its type, counted, unless it is there; takes it out
    // again and gives the count back. Private documents have no list.
    virtual void RegisterDoc(TDicomDoc* doc) = 0;
    virtual void RemoveDoc(TDicomDoc* doc) = 0;

    // Does RemoveDoc for each of many, in a time that grows with their number and the lists' together.
    virtual void RemoveDocs(const TListOf<TDicomDoc>& docs) = 0;

    // An element by which a document is looked up may have changed.
    virtual void NoteIdentity(TDicomDoc* /*doc*/) {}

    // Has a report's file look whether it is one of the reporting product. A directory that is being loaded
    // remembers the answer for the next record that names the file.
    virtual void CheckReport(TSRFile& file) { file.CheckForQuantixReport(); }

    // Takes in a document that has lost its place in the tree, so that it goes when the tree goes.
    virtual void KeepDoc(TDicomDoc* doc) = 0;

    // Hands over the file of this instance that was registered with the directory; null when there is none.
    virtual std::unique_ptr<TDicomFile> TakeRegisteredFile(const char* sopClassUID,
                                                           const char* sopInstanceUID) = 0;

    // This directory, as its documents know it: null once it is gone.
    using Link = std::shared_ptr<TRecordDirectory* const>;
    Link GetLink() const { return fLink; }

  protected:
    virtual ~TRecordDirectory();

  private:
    std::shared_ptr<TRecordDirectory*> fLink;
};

}  // namespace Vantor
