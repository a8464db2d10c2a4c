#include "platform/VideoFile.h"

#include <exception>
#include <functional>
#include <semaphore>
#include <thread>
#include <utility>

#include "platform/AviWriter.h"
#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/VideoCompression.h"

namespace Vantor::Platform {

namespace {

// A thread that does the same work each time it is told to, one time after the other. It stays between them,
// as making a thread for each frame of a movie takes longer than many a frame.
class RepeatedWork {
  public:
    explicit RepeatedWork(std::function<bool()> work) : fWork(std::move(work)) {}
    ~RepeatedWork() {
        Wait();
        if (!fThread.joinable()) return;
        fIsLeaving = true;
        fIsWanted.release();
        fThread.join();
    }
    RepeatedWork(const RepeatedWork&) = delete;
    RepeatedWork& operator=(const RepeatedWork&) = delete;

    // Does it here when there is no thread to be had. The time before must have been waited for.
    void Start() {
        if (!HasThread()) {
            fIsRight = fWork();
            return;
        }
        fIsAtWork = true;
        fIsWanted.release();
    }

    // Until it is done. What the last time gave, true before the first.
    bool Wait() {
        if (fIsAtWork) fIsDone.acquire();
        fIsAtWork = false;
        return fIsRight;
    }

  private:
    bool HasThread() {
        try {
            if (!fThread.joinable()) fThread = std::thread([this] { Repeat(); });
        } catch (const std::exception&) {
            return false;
        }
        return true;
    }

    void Repeat() {
        for (fIsWanted.acquire(); !fIsLeaving; fIsWanted.acquire()) {
            fIsRight = fWork();
            fIsDone.release();
        }
    }

    std::function<bool()> fWork;
    std::binary_semaphore fIsWanted{0};
    std::binary_semaphore fIsDone{0};
    bool fIsAtWork = false;
    bool fIsLeaving = false;  // this and the result are handed over by the semaphores
    bool fIsRight = true;
    std::thread fThread;
};

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
        fTakesFrames = fTakesFrames && Encode(pixels) && fWriting.Wait();
        if (fTakesFrames) {
            std::swap(fEncoded, fBeingWritten);
            fWriting.Start();
        }
        return fTakesFrames;
    }

    int32_t Finish() override {
        fWriting.Wait();
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

    VideoStream fStream;
    AviWriter fWriter;
    FrameCompressor fCompress;
    std::vector<uint8_t> fEncoded;  // the room of both is used again
    std::vector<uint8_t> fBeingWritten;
    bool fTakesFrames = false;
    // Goes first: its thread uses the others.
    RepeatedWork fWriting{[this] { return fWriter.WriteFrame(fBeingWritten.data(), fBeingWritten.size()); }};
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
