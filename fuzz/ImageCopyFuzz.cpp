// Two arbitrary image files in a storage: frames of both are put together in copies of the first, onto
// another stream and onto itself, committed and abandoned, on media that fail or lose bytes meanwhile. The
// first bytes are the steps, then how long the first file is; the rest are the two files.

#include <functional>
#include <iterator>
#include <optional>

#include "dicom/TImageFile.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/MemoryStorage.h"

namespace {

using Vantor::TFileSpec;
using Vantor::TImageFile;
using VantorTest::Bytes;
using VantorTest::MemoryStorage;

constexpr size_t kSteps = 12;
constexpr size_t kPrefixSize = kSteps + 2;
constexpr int32_t kFaults = 6;
constexpr char kNumber[] = "0123456789";
constexpr Vantor::Tag kNumberOfFrames{0x0028, 0x0008};

class Copying {
  public:
    Copying(const Bytes& first, const Bytes& second) {
        fStorage.SetContent("first", first);
        fStorage.SetContent("second", second);
        fFirst.emplace(0, fItself, 0);
        fSecond.emplace(0, TFileSpec("second", &fStorage), 0);
    }

    // One of the operations, and a small number for the frame or the length that it takes.
    void Take(uint8_t step) {
        const std::function<void(int32_t)> operations[] = {
            [&](int32_t) { Begin(fOther); },
            [&](int32_t) { Begin(fItself); },
            [&](int32_t) { End(fDestination); },
            [&](int32_t) { End(nullptr); },
            [&](int32_t) { fFirst->CopyNextChunk(); },
            [&](int32_t frame) { fFirst->AppendFrameOf(*fFirst, frame); },
            [&](int32_t frame) { fFirst->AppendFrameOf(*fSecond, frame); },
            [&](int32_t length) {
                fFirst->AppendFrame(kNumber, static_cast<uint32_t>(length) % sizeof(kNumber));
            },
            [&](int32_t frame) { fFirst->LoadFrame(frame); },
            [&](int32_t) { ReadAsPlainFile(); },
            [&](int32_t count) { Shorten(count % 2 == 0 ? "first" : "second", static_cast<size_t>(count)); },
            [&](int32_t number) {
                ChangeNumberOfFrames(kNumber + static_cast<size_t>(number) % sizeof(kNumber));
            },
            [&](int32_t fault) { fStorage.FailOn(static_cast<MemoryStorage::Fault>(fault % kFaults)); },
            [&](int32_t) { fFirst.emplace(0, fItself, 0); }};
        VantorFuzz::Run([&] { operations[step % std::size(operations)](step / std::size(operations)); });
    }

    // Whatever was put together must be readable as far as it goes.
    void Finish() {
        fStorage.FailOn(MemoryStorage::Fault::kNone);
        VantorFuzz::Run([&] { fFirst->CopyNextChunk(); });
        VantorFuzz::Run([&] { End(fDestination); });
        VantorFuzz::Run([&] { fFirst->LoadFrame(fFirst->GetFrameCount()); });
    }

  private:
    void Begin(const TFileSpec& destination) {
        int64_t frames = 0;
        fDestination = &destination;
        fFirst->BeginCopy(destination, frames);
    }

    void End(const TFileSpec* destination) {
        fFirst->EndCopy(destination);
        fFirst->GetDataSet();
    }

    // As callers do that need all of a file: the pixels are in its data set then.
    void ReadAsPlainFile() {
        fFirst->OpenFile(Vantor::Platform::FileAccess::kRead);
        VantorFuzz::Run([&] { fFirst->ReadFile(); });
        fFirst->CloseFile();
    }

    void Shorten(const char* name, size_t count) {
        if (!fStorage.HasStream(name)) return;
        Bytes content = fStorage.GetContent(name);
        content.resize(content.size() - std::min(count, content.size()));
        fStorage.SetContent(name, content);
    }

    void ChangeNumberOfFrames(const char* digit) {
        Vantor::TDicomDataSet* dataSet = fFirst->GetDataSet();
        if (dataSet != nullptr) dataSet->PutElement(kNumberOfFrames, Vantor::Vr::kIS, 1, digit, 1);
    }

    MemoryStorage fStorage;
    const TFileSpec fItself{"first", &fStorage};
    const TFileSpec fOther{"other", &fStorage};
    const TFileSpec* fDestination = &fOther;
    std::optional<TImageFile> fFirst;
    std::optional<TImageFile> fSecond;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < kPrefixSize) return 0;
    const uint8_t* files = data + kPrefixSize;
    const uint8_t* end = data + size;
    const size_t firstLength = static_cast<size_t>(data[kSteps]) << 8 | data[kSteps + 1];
    const uint8_t* second = files + std::min(firstLength, size - kPrefixSize);
    Copying copying(Bytes(files, second), second == end ? Bytes(files, end) : Bytes(second, end));
    for (size_t i = 0; i < kSteps; ++i) copying.Take(data[i]);
    copying.Finish();
    return 0;
}
