// Arbitrary bytes as a file that is entered into a directory: what its records hold comes back from the
// DICOMDIR that is written.

#include <cstdlib>

#include "directory/FileRecords.h"
#include "directory/TDicomDirectory.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/DirectoryBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;

int32_t CountDocs(TDicomDirectory& directory) {
    TListOf<TDicomDoc> docs;
    for (TPatientDoc* patient : *directory.GetPatientDocs()) {
        docs.InsertItemAt(docs.kAtEnd, patient);
        patient->GetChildDocs(docs, false);
    }
    return docs.GetCount();
}

void Enter(TDicomDirectory& directory, const FileToEnter& file, const char* fileID) {
    FileRecords records(file, fileID);
    int32_t error = 0;
    if (directory.FindOrCreateDoc(&records.GetInstance(), error) == nullptr) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    VantorTest::MemoryStorage storage;
    storage.SetContent("FILE", VantorFuzz::ExactCopy(data, size));
    storage.SetContent("DICOMDIR", VantorTest::DirectoryBuilder().Build());
    const auto file = FileToEnter::Read(TFileSpec("FILE", &storage));
    if (file == nullptr) return 0;
    VantorFuzz::Run([&] {
        TDicomDirectory directory(TFileSpec("DICOMDIR", &storage), 0);
        Enter(directory, *file, "FILE");
        Enter(directory, *file, "IMAGES\\2");
        directory.WriteDICOMDIR();
        TDicomDirectory reloaded(TFileSpec("DICOMDIR", &storage), 0);
        if (CountDocs(reloaded) != CountDocs(directory)) std::abort();
    });
    return 0;
}
