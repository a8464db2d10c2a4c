// Arbitrary bytes as a file in a stream: its meta information is read, then all of it, which is copied byte
// for byte, and what was read is the same when it is written and read again.

#include "dicom/TDicomFile.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using VantorFuzz::Require;
using VantorFuzz::Run;
using VantorTest::Bytes;
using VantorTest::MemoryStorage;

// Of both data sets: elements of low groups that were misplaced in the main one count as meta information
// when nothing stands in front of them any more.
Bytes BytesOf(TDicomFile& file) {
    Bytes bytes;
    for (TDicomDataSet* part : {file.GetMetaDataSet(), file.GetDataSet()}) {
        if (part != nullptr)
            bytes.insert(bytes.end(), part->GetDataSet(), part->GetDataSet() + part->GetDataSetSize());
    }
    return bytes;
}

void CheckCopy(MemoryStorage& storage) {
    const Bytes content = storage.GetContent("file");
    const TFileSpec target("copy", &storage);
    TDicomFile file(0, TFileSpec("file", &storage), 0);
    int64_t left = 0;
    Require(file.BeginCopy(target, left) == 0 && left == static_cast<int64_t>(content.size()));
    while (left > 0) left = file.CopyNextChunk();
    file.EndCopy(&target);
    Require(storage.GetContent("copy") == content && storage.GetContent("file") == content);
}

void CheckWriting(TDicomFile& file, MemoryStorage& storage) {
    file.OpenFile(Platform::FileAccess::kReadWrite);
    file.WriteFile();
    file.CloseFile();
    TDicomFile again(0, TFileSpec("file", &storage), 0);
    again.OpenFile(Platform::FileAccess::kRead);
    Require(again.ReadFile());
    Require(BytesOf(again) == BytesOf(file));
    again.CloseFile();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryStorage storage;
    storage.SetContent("file", VantorFuzz::ExactCopy(data, size));
    TDicomFile file(0, TFileSpec("file", &storage), 0);
    bool isRead = false;
    Run([&] {
        file.OpenFile(Platform::FileAccess::kRead);
        file.ReadMetaHeader();
        Require(file.GetHeaderSize() <= static_cast<int64_t>(size));
    });
    Run([&] { isRead = file.ReadFile(); });
    file.CloseFile();
    // From here on nothing may fail but what the elements do not allow.
    if (!isRead) return 0;
    CheckCopy(storage);
    CheckWriting(file, storage);
    Run([&] {
        char uid[kMaximumUidLength + 1];
        file.GetSOPClassUID(uid);
        file.SetSOPInstanceUID("1.2.3.4");
        CheckWriting(file, storage);
    });
    return 0;
}
