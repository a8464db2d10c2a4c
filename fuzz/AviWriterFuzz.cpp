// A movie of any frames on a medium of any size, and up to any limit: what the writer leaves has to be a
// movie of as many frames as it tells. The first bytes are the medium's room, the limit and the kind; each
// other one is the size of a frame.

#include <algorithm>
#include <memory>

#include "fuzz/FuzzInput.h"
#include "platform/AviWriter.h"
#include "platform/VideoCompression.h"
#include "tests/support/AviReader.h"

namespace {

using namespace Vantor;
using namespace Vantor::Platform;
using VantorFuzz::Require;

constexpr size_t kChoices = 5;
constexpr size_t kHeaders = 224;

class Medium : public File {
  public:
    Medium(VantorTest::Bytes& bytes, size_t room) : fBytes(bytes), fRoom(room) {}

    size_t Read(void*, size_t) override { return 0; }
    void Write(const void* bytes, size_t count) override {
        const size_t end = std::min(fPosition + count, std::max(fRoom, fBytes.size()));
        const size_t written = end > fPosition ? end - fPosition : 0;
        if (fPosition + written > fBytes.size()) fBytes.resize(fPosition + written);
        std::copy_n(static_cast<const uint8_t*>(bytes), written,
                    fBytes.begin() + static_cast<ptrdiff_t>(fPosition));
        fPosition += written;
        if (written < count) throw FileException(FileException::Cause::kDiskFull, 0, "medium");
    }
    void Seek(int64_t position) override { fPosition = static_cast<size_t>(position); }
    int64_t GetPosition() override { return static_cast<int64_t>(fPosition); }
    int64_t GetLength() override { return static_cast<int64_t>(fBytes.size()); }
    void SetLength(int64_t length) override { fBytes.resize(static_cast<size_t>(length)); }
    void Flush() override {}
    void Close() override {}

  private:
    VantorTest::Bytes& fBytes;
    size_t fRoom;
    size_t fPosition = 0;
};

VideoStream StreamOf(bool isCompressed) {
    VideoStream stream;
    stream.fHandler = isCompressed ? FourCharacterCode('T', 'E', 'S', 'T') : kUncompressedHandler;
    stream.fRate = isCompressed;
    stream.fWidth = stream.fHeight = 1;
    return stream;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < kChoices) return 0;
    const size_t room = data[0] * 256U + data[1];
    const auto largest = static_cast<int64_t>(data[2] * 256U + data[3]);
    VantorTest::Bytes bytes;
    VantorFuzz::Run([&] {
        AviWriter writer(std::make_unique<Medium>(bytes, room), StreamOf(data[4] % 2 != 0), largest);
        int32_t accepted = 0;
        for (size_t place = kChoices; place < size; ++place) {
            const VantorTest::Bytes frame(data[place], static_cast<uint8_t>(place));
            accepted += writer.WriteFrame(frame.data(), frame.size());
        }
        const int32_t finished = writer.Finish();
        Require(finished >= 0 && finished <= accepted);
        Require(bytes.size() <= std::max<size_t>(static_cast<size_t>(largest), kHeaders + 8));
        const VantorTest::AviMovie movie = VantorTest::ParseAvi(bytes);
        Require(movie.fFault.empty() && movie.fBehind == 0 &&
                movie.fFrames.size() == static_cast<size_t>(finished));
    });
    return 0;
}
