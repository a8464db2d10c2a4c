#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dicom/TDicomFile.h"
#include "dicom/TIODSource.h"
#include "records/TListOf.h"
#include "records/TRecordDirectory.h"
#include "records/TStoredRecord.h"

namespace Vantor {

// One record of a directory, held in memory: its elements as a data set of its own, the file that it names,
// and its place in the tree.
//
// Documents are counted. A document counts once for each list that holds it and for each child that has it as
// its parent, so one that nobody else holds has a count equal to the number of its children. Whoever keeps a
// document takes a count (Register), gives it back (Release) and destroys the document when it is not in use
// any more; a tree destroys what is in it by the same rule, and leaves what others hold, without parent.
//
// Texts are 8-bit, as stored. A getter copies at most size − 1 bytes and a terminator; it is false, with an
// empty text, when the element is absent. A setter writes at most kLongestText bytes, and
// throws TException 100 when the record has no room: one that was read grows to ten times its size.
class TDicomDoc : public TIODSource {
  public:
    // The document types, in the numbers that hosts know.
    static constexpr int32_t kPatient = 0;
    static constexpr int32_t kStudy = 1;
    static constexpr int32_t kSeries = 2;
    static constexpr int32_t kImage = 3;
    static constexpr int32_t kRawData = 4;
    static constexpr int32_t kPrivate = 5;
    static constexpr int32_t kSR = 6;
    static constexpr size_t kTypeCount = 7;

    static constexpr uint32_t kLongestText = 64;
    static constexpr uint32_t kFolderNameSize = 16;

    ~TDicomDoc() override;

    TDicomDataSet* GetDataSet() override { return Record(); }
    void SetSOPClassUID(const char* text) override;
    void SetSOPInstanceUID(const char* text) override;

    // Gives this document when `directory` is its own, else makes a copy that belongs to that directory: with
    // `parent` as its parent and entered in the directory's list of its type, but not in the parent's. A deep
    // copy has copies of all that is below as well. Files are not copied; an instance's record names the file
    // that was registered with the directory for it. `error` is 0; a copy that cannot be made is null.
    // Who does not add the copy to its parent's children discards it.
    virtual TDicomDoc* CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                                       int32_t& error) = 0;

    // True when the other document stands for the same patient, study, series or instance; each class says
    // how it tells.
    virtual bool IsSameRecord(TDicomDoc* other) = 0;

    // Appends the direct children to the list, type by type. Unless directOnly, each child's own follow
    // behind them in the same way.
    virtual void GetChildDocs(TListOf<TDicomDoc>& list, bool directOnly) = 0;

    // True when this document takes children of that type and the volume has room for the child's files.
    // `reserved` is not looked at; `error` is 0.
    virtual bool CanAddChild(TDicomDoc* child, int32_t reserved, int32_t& error) = 0;

    // Puts a child into the list of its type, in front of `before` or at the end: the child itself when it
    // belongs to this document's directory, and then it leaves the parent that it had; else a deep copy. True
    // when it is there now, or was already. Without keepSource the child that was given goes away in any
    // case, as Discard has it. `error` is 0.
    virtual bool AddChild(TDicomDoc* child, TDicomDoc* before, bool keepSource, int32_t& error) = 0;

    // Takes a child of this directory out of the list of its type, without destroying it. Does nothing when
    // it is not there.
    virtual void RemoveChild(TDicomDoc* child) = 0;

    // Adds the elements that every record has, where they are absent. Each class adds its record type and
    // looks for its mandatory elements: throws TException 102 with the name of the missing one.
    virtual void CompleteRecord();

    // What a document has in common with all that are the same record, as a text to be looked up by; empty
    // for one that is the same as itself only. The record stays as it is stored.
    virtual std::string GetIdentity() const { return {}; }

    // The text by which hosts look documents of this type up, as Platform::FromHostText gives it; empty for
    // types that they do not. The record stays as it is stored.
    virtual std::string GetHostKey() const { return {}; }

    // The file that the record names, owned by this document; null when it names none.
    void SetDicomFile(std::unique_ptr<TDicomFile> file);
    TDicomFile* GetDicomFile();

    // The full path of that file; empty when there is none. Makes no object of it.
    std::string GetFilePath();

    // The document above, or null. Setting one counts it and gives back none: that is the caller's business.
    TDicomDoc* GetParentObj() const { return fParent; }
    void SetParentObj(TDicomDoc* parent);

    // Leaves the parent's list, if it is there, gives the parent its count back, and has no parent then.
    void LeaveParent();

    // The directory that this document belongs to; null when it has none, or that is gone.
    TRecordDirectory* GetDirectory() const { return fDirectory == nullptr ? nullptr : *fDirectory; }
    void SetDirectory(TRecordDirectory* directory);

    int32_t GetDocType() const { return fDocType; }

    // The name of the folder that holds the document's files, for directories that have such: a buffer of
    // kFolderNameSize characters. At most kFolderNameSize − 1 are kept; true when the name is not empty then.
    void GetFolderName(char* buffer) const;
    bool SetFolderName(const char* text, uint32_t length);

    // Another document that goes where this one goes; neither counted nor looked at once it is not in its
    // list any more. Null when there is none.
    TDicomDoc* GetCompanionDoc() const { return fCompanion; }
    void SetCompanionDoc(TDicomDoc* companion) { fCompanion = companion; }

    // False when only the document's own children count on it: then it may be destroyed. True in doubt.
    bool IsInUse();

    // Lets go of the parent, which is about to be destroyed, and of what goes with it.
    void OutliveParent();
    bool HasOutlivedParent() const { return fHasOutlivedParent; }

    // Takes the document out of its parent and, with all that is below, out of its directory's lists, and
    // destroys it unless somebody holds it.
    void Discard();

    // Makes the record fit to be written: one without type is completed, and a document that was copied or
    // given its file here gets what the record lacks of its file's ID and transfer syntax. Throws what
    // CompleteRecord throws.
    void PrepareForWriting();

    // The record's elements as they are stored, with none when there is no data set; valid until the document
    // changes.
    TDicomDataSet ViewRecord() const;

    // Records that stand below this one on the medium although it takes none of their type. They are no
    // children, and only kept to be written back; they go with this document. A child that is taken over is
    // null then.
    void KeepForeignChild(std::unique_ptr<TDicomDoc>& child);
    const std::vector<TDicomDoc*>& GetForeignChildren() const;

    // True when the document has a file that is the medium's, which may be removed and replaced: a record may
    // name one that lies elsewhere (TFilePlaces::MayBeRemoved).
    bool OwnsFile();

    // Appends the files of this document and of all below it, as far as they are the medium's.
    void CollectFiles(TListOf<TDicomFile>& files);

    // Removes the files of this document and of all below it from disk, as far as that goes. Records stay,
    // and so do files that are not the medium's, and those that are to be kept.
    void DeleteFilesFromDisk(const std::function<bool(TDicomFile&)>& isKept = nullptr);

    // What the files of this document and of all below it take, in units of 1,024 bytes, counted file by file
    // as TDicomFile::GetFileSizeKB does.
    int32_t GetDiskSpace();

    // A copy of a record's elements in the same transfer syntax, with room to change them.
    static std::unique_ptr<TDicomDataSet> CopyRecord(const TDicomDataSet& record);

  protected:
    // Without data set and directory.
    explicit TDicomDoc(int32_t docType);

    // With a copy of the record's elements, in the same transfer syntax; or, when `record` is null, with a
    // new data set that has the elements of every record. `directory` may be null. Throws what the data set
    // throws.
    TDicomDoc(int32_t docType, const TDicomDataSet* record, TRecordDirectory* directory);

    // With a record that is made into a data set when it is first asked for, and its file with it. Nobody can
    // tell.
    TDicomDoc(int32_t docType, TStoredRecord record, TRecordDirectory* directory);

    // The record's elements; null without a data set.
    TDicomDataSet* Record() const;

    // Makes the object for the file that the record names, and hands it over with KeepFile, for the classes
    // that have one. Constructors of these end with FindFile, which asks for it when there is a directory.
    virtual void MakeFile(const TFilePlaces& /*places*/) {}
    void FindFile();
    void KeepFile(std::unique_ptr<TDicomFile> file) { fDicomFile = std::move(file); }

    // A new document of this class over a copy of a record.
    virtual std::unique_ptr<TDicomDoc> MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) = 0;

    // The part of CopyToDirectory that makes the copy and puts it into place, from this document's record or
    // one made from it.
    TDicomDoc* PlaceCopy(const TDicomDataSet* record, TRecordDirectory* directory, TDicomDoc* parent,
                         bool deep, int32_t& error);

    // Texts of the record.
    bool GetText(Tag tag, char* buffer, uint32_t size) const;
    void SetText(Tag tag, VrCode vr, const char* text);
    void SetRecordType(const char* recordType);

    bool HasElement(Tag tag) const { return Record() != nullptr && Record()->FindElement(tag); }

    // Throws TException 102 with this text when the element is absent.
    void RequireElement(Tag tag, const char* complaint) const;

    // Up to `limit` bytes of a text, as GetText gives them, from the record as it is stored.
    std::optional<std::string> PeekText(Tag tag, uint32_t limit = kLongestText) const;

    // The text of an element that was looked for in the stored record, made in its buffer what it is once a
    // data set is made of the record: odd lengths are made even, as far as there is room, and code strings
    // are in upper case. Empty when it was not found.
    static std::string_view FinishText(const TDicomDataSet::Wanted& element);

    // True while nobody has asked for the record's data set or file; and the path of the file that is named
    // by this file ID then.
    bool IsAsStored() const { return !fStored.IsEmpty() && fPlaces != nullptr; }
    std::string FindStoredFile(std::string_view fileID) const;

    // PeekText as hosts see it.
    std::string PeekHostText(Tag tag) const;

    // Tells the directory that an element by which documents are looked up may have changed.
    void NoteIdentity();

    // True when both documents have this text, and the same.
    bool HasSameText(const TDicomDoc& other, Tag tag) const;

  private:
    void Wake();
    void DropForeignChildren();
    void AddIfAbsent(Tag tag, VrCode vr, const void* value, uint32_t length);

    TStoredRecord fStored;  // empty once there is a data set
    std::unique_ptr<TDicomFile> fDicomFile;
    TDicomDoc* fParent = nullptr;
    TRecordDirectory::Link fDirectory;
    std::shared_ptr<const TFilePlaces> fPlaces;  // as the directory was at construction; null without one
    int32_t fDocType;
    bool fHasOutlivedParent = false;  // and has no other one since
    bool fIsNew = false;              // made here, not read from a medium
    std::array<char, kFolderNameSize> fFolderName{};
    TDicomDoc* fCompanion = nullptr;
    std::unique_ptr<std::vector<TDicomDoc*>> fForeignChildren;  // counted; null without
};

}  // namespace Vantor
