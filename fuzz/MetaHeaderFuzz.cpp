// Arbitrary bytes as the start of a file: its meta information, from a stream as from a disk.

#include "dicom/TDicomFile.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/MemoryStorage.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    VantorTest::MemoryStorage storage;
    storage.SetContent("file", VantorFuzz::ExactCopy(data, size));
    Vantor::TDicomFile file(0, Vantor::TFileSpec("file", &storage), 0);
    VantorFuzz::Run([&] {
        file.OpenFile(Vantor::Platform::FileAccess::kRead);
        file.ReadMetaHeader();
    });
    VantorFuzz::Run([&] {
        char uid[Vantor::kMaximumUidLength + 1];
        file.GetSOPClassUID(uid);
        file.SetSOPInstanceUID("1.2.3.4");
        file.ReadFile();
    });
    file.CloseFile();
    return 0;
}
