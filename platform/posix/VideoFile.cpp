#include "platform/VideoFile.h"

#include <exception>
#include <future>
#include <utility>

#include "platform/AviWriter.h"
#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/VideoCompression.h"

namespace Vantor::Platform {

namespace {

// Written by the library itself; the host brings the compressors. A frame is written while the caller makes
// the next one, and no other thread touches the writer meanwhile.
class WrittenVideoFile final : public VideoFile {
  public:
    WrittenVideoFile(std::unique_ptr<File> file, const VideoStream& stream)
        : fStream(stream), fWriter(std::move(file), stream) {}

    bool StartFrames(FrameCompressor own) override {
        fCompress = std::move(own);
        fTakesFrames = fStream.fHandler == kUncompressedHandler || fCompress != nullptr;
        return fTakesFrames;
    }

    bool WriteFrame(std::vector<uint8_t>& pixels) override {
        fTakesFrames = fTakesFrames && Encode(pixels) && IsWritten();
        if (fTakesFrames) StartWriting();
        return fTakesFrames;
    }

    int32_t Finish() override {
        if (fWriting.valid()) fWriting.wait();
        fTakesFrames = false;
        return fWriter.Finish();
    }

  private:
    // Puts what the file is to have into fEncoded. An empty frame would stand for the one before.
    bool Encode(std::vector<uint8_t>& pixels) {
        if (fStream.fHandler == kUncompressedHandler) {
            fEncoded.resize(pixels.size());
            fEncoded.swap(pixels);
            return true;
        }
        fEncoded.clear();
        return fCompress(pixels.data(), fEncoded) && !fEncoded.empty();
    }

    // Waits for the frame before.
    bool IsWritten() { return !fWriting.valid() || fWriting.get(); }

    void StartWriting() {
        std::swap(fEncoded, fBeingWritten);
        const auto write = [this] { return fWriter.WriteFrame(fBeingWritten.data(), fBeingWritten.size()); };
        try {
            fWriting = std::async(std::launch::async, write);
        } catch (const std::exception&) {  // there is no thread to be had
            fTakesFrames = write();
        }
    }

    VideoStream fStream;
    AviWriter fWriter;
    FrameCompressor fCompress;
    std::vector<uint8_t> fEncoded;  // the room of both is used again
    std::vector<uint8_t> fBeingWritten;
    bool fTakesFrames = false;
    std::future<bool> fWriting;  // goes first: it waits for the thread
};

}  // namespace

std::unique_ptr<VideoFile> VideoFile::Create(const std::string& path, const VideoStream& stream) {
    std::unique_ptr<File> file = CreateDiskFile(path);
    try {
        return std::make_unique<WrittenVideoFile>(std::move(file), stream);
    } catch (const FileException&) {
        RemoveFile(path);
        throw;
    }
}

}  // namespace Vantor::Platform
