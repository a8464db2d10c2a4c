#include "platform/VideoFile.h"

#include <utility>

#include "platform/AviWriter.h"
#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/VideoCompression.h"

namespace Vantor::Platform {

namespace {

// Written by the library itself; the host brings the compressors.
class WrittenVideoFile final : public VideoFile {
  public:
    WrittenVideoFile(std::unique_ptr<File> file, const VideoStream& stream)
        : fStream(stream), fWriter(std::move(file), stream) {}

    bool StartFrames(FrameCompressor own) override {
        fCompress = std::move(own);
        fTakesFrames = fStream.fHandler == kUncompressedHandler || fCompress != nullptr;
        return fTakesFrames;
    }

    bool WriteFrame(const uint8_t* pixels) override {
        fTakesFrames = fTakesFrames && Append(pixels);
        return fTakesFrames;
    }

    int32_t Finish() override { return fWriter.Finish(); }

  private:
    bool Append(const uint8_t* pixels) {
        if (fStream.fHandler == kUncompressedHandler) {
            return fWriter.WriteFrame(pixels, fStream.GetFrameSize());
        }
        // An empty frame would stand for the one before.
        fCompressed.clear();
        return fCompress(pixels, fCompressed) && !fCompressed.empty() &&
               fWriter.WriteFrame(fCompressed.data(), fCompressed.size());
    }

    VideoStream fStream;
    AviWriter fWriter;
    FrameCompressor fCompress;
    std::vector<uint8_t> fCompressed;  // of the last frame; its room is used again
    bool fTakesFrames = false;
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
