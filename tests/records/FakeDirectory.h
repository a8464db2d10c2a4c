#pragma once

#include <gtest/gtest.h>

#include "records/TImageDoc.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/MemoryStorage.h"

namespace VantorTest {

using namespace Vantor;

class Streams final : public TFilePlaces {
  public:
    explicit Streams(MemoryStorage& storage) : TFilePlaces(1), fStorage(storage) {}
    TFileSpec Find(std::string_view fileID) const override {
        return TFileSpec(fileID.substr(0, fileID.find_last_not_of(' ') + 1), &fStorage);
    }
    bool MayBeRemoved(const TFileSpec& fileSpec) const override { return fileSpec.fPath[0] != '.'; }
    bool MayBeWritten(const TFileSpec& fileSpec) const override { return MayBeRemoved(fileSpec); }

  private:
    MemoryStorage& fStorage;
};

// A directory as its documents know it. Its files are streams in memory, named by their file IDs.
class FakeDirectory final : public TRecordDirectory {
  public:
    ~FakeDirectory() override {
        for (TDicomDoc* doc : fDocs) fKept.insert(fKept.end(), doc->GetParentObj() == nullptr ? 1 : 0, doc);
        for (TDicomDoc* doc : fKept) doc->Discard();
    }
    std::shared_ptr<const TFilePlaces> GetFilePlaces() override {
        return std::make_shared<const Streams>(fStorage);
    }
    void MakeRelativeFileID(char* buffer, uint32_t& length, const TFileSpec& fileSpec) override {
        length = static_cast<uint32_t>(("HERE\\" + std::string(fileSpec.fPath)).copy(buffer, 100));
    }
    double GetAvailableSpace() override { return fFreeSpace; }
    int32_t GetDirectoryType() const override { return fType; }
    uint32_t GetImageSetting() const override { return 42; }
    void RegisterDoc(TDicomDoc* doc) override {
        if (doc->GetDocType() != TDicomDoc::kPrivate && !Has(doc)) fDocs.emplace_back(doc)->Register();
    }
    void RemoveDoc(TDicomDoc* doc) override {
        if (std::erase(fDocs, doc) > 0) doc->Release();
    }
    void RemoveDocs(const TListOf<TDicomDoc>& docs) override {
        for (TDicomDoc* doc : docs) RemoveDoc(doc);
    }
    void KeepDoc(TDicomDoc* doc) override { fKept.push_back(doc); }
    std::unique_ptr<TDicomFile> TakeRegisteredFile(const char* classUID, const char* uid) override {
        return std::move(fRegistered[std::string(classUID) + " " + uid]);
    }
    bool Has(const TDicomDoc* doc) const { return std::find(fDocs.begin(), fDocs.end(), doc) != fDocs.end(); }
    MemoryStorage fStorage;
    double fFreeSpace = 7;
    int32_t fType = 0;
    std::vector<TDicomDoc*> fDocs, fKept;
    std::map<std::string, std::unique_ptr<TDicomFile>> fRegistered;  // by class and instance UID
};

using Texts = std::vector<std::pair<Tag, std::string>>;
// A document by itself, and one that is put below another. The directory may be null.
template <typename T>
T* NewDoc(TRecordDirectory* directory, const Texts& texts = {}) {
    const auto record = NewDataSet();
    PutText(*record, Tags::kDirectoryRecordType, Vr::kCS, "OLD TYPE");
    for (const auto& [tag, text] : texts) PutText(*record, tag, Vr::kUI, text);
    if constexpr (std::is_same_v<T, TImageDoc>) return new T(record.get(), directory, 17);
    if constexpr (!std::is_same_v<T, TImageDoc>) return new T(record.get(), directory);
}

template <typename T>
T* AddDoc(TDicomDoc& parent, const Texts& texts = {}) {
    T* const doc = NewDoc<T>(parent.GetDirectory(), texts);
    int32_t error = 1;
    EXPECT_TRUE(parent.AddChild(doc, nullptr, true, error) && error == 0);
    return doc;
}

}  // namespace VantorTest
