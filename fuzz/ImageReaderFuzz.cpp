// Arbitrary bytes as an image file: read without its pixels, its frames loaded, and copied frame by frame.
// The file lies on disk, as on a medium, so that it is read through a mapped view.

#include "dicom/TImageFile.h"
#include "fuzz/FuzzInput.h"
#include "platform/MappedFile.h"
#include "tests/support/MemoryStorage.h"
#include "tests/support/TestFolder.h"

namespace {

using Vantor::Platform::MappedFile;

constexpr int32_t kFramesLoaded = 4;

void Visit(Vantor::TImageFile& image) {
    VantorFuzz::Run([&] { image.ReadAllButPixels(); });
    VantorFuzz::Run([&] { image.GetNumberOfFrames(); });
    for (int32_t frame = 0; frame <= kFramesLoaded; ++frame) {
        VantorFuzz::Run([&] { image.LoadFrame(frame); });
    }
}

void Copy(Vantor::TImageFile& image, const Vantor::TFileSpec& destination) {
    VantorFuzz::Run([&] {
        int64_t frames = 0;
        if (image.BeginCopy(destination, frames) != 0) return;
        VantorFuzz::Run([&] {
            for (int32_t frame = 0; frame < kFramesLoaded; ++frame) {
                if (image.CopyNextChunk() <= 0) break;
            }
        });
        image.EndCopy(&destination);
        image.GetDataSet();
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const VantorTest::TestFolder folder;
    const VantorTest::Bytes bytes(data, data + size);
    const Vantor::TFileSpec spec(folder.WriteFile("image", bytes));
    Vantor::TImageFile onDisk(0, spec, 0);
    Visit(onDisk);

    // Again where less than the file fits into memory, so that it has to be read behind the view.
    MappedFile::LimitViewSizeForTesting(static_cast<int64_t>(size / 2 + 1));
    Vantor::TImageFile beyondView(0, spec, 0);
    Visit(beyondView);
    MappedFile::LimitViewSizeForTesting(0);

    VantorTest::MemoryStorage storage;
    storage.SetContent("image", bytes);
    Vantor::TImageFile stream(0, Vantor::TFileSpec("image", &storage), 0);
    VantorFuzz::Run([&] { stream.OpenFile(Vantor::Platform::FileAccess::kRead); });
    Visit(stream);
    stream.CloseFile();
    Copy(stream, Vantor::TFileSpec("copy", &storage));
    return 0;
}
