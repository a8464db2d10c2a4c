#include "platform/VideoFile.h"

#include <windows.h>

#include <vfw.h>

#include <algorithm>
#include <limits>

#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/VideoCompression.h"
#include "platform/windows/SystemError.h"

namespace Vantor::Platform {

namespace {

constexpr LONG kSampleOfFormat = 0;

// The system chooses what it writes by the ending of the file's name, unless it is told.
constexpr GUID kAviFile = {0x00020000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

class AviLibrary {
  public:
    AviLibrary() { AVIFileInit(); }
    ~AviLibrary() { AVIFileExit(); }
    AviLibrary(const AviLibrary&) = delete;
    AviLibrary& operator=(const AviLibrary&) = delete;
};

struct ReleaseFile {
    void operator()(IAVIFile* file) const { AVIFileRelease(file); }
};

struct ReleaseStream {
    void operator()(IAVIStream* stream) const { AVIStreamRelease(stream); }
};

using AviFile = std::unique_ptr<IAVIFile, ReleaseFile>;
using AviStream = std::unique_ptr<IAVIStream, ReleaseStream>;

FileException::Cause CauseOfAviError(HRESULT result) {
    switch (result) {
        case AVIERR_FILEOPEN:
        case AVIERR_READONLY:
            return FileException::Cause::kAccessDenied;
        case AVIERR_FILEWRITE:
            return FileException::Cause::kDiskFull;
        default:
            return FileException::Cause::kGeneric;
    }
}

void Require(HRESULT result, const std::string& path) {
    if (FAILED(result)) throw FileException(CauseOfAviError(result), result, path);
}

AviFile OpenAviFile(const std::string& path) {
    IAVIFile* file = nullptr;
    CLSID handler = kAviFile;
    Require(AVIFileOpenA(&file, path.c_str(), OF_WRITE | OF_CREATE | OF_SHARE_EXCLUSIVE, &handler), path);
    return AviFile(file);
}

AviStream CreateAviStream(IAVIFile& file, const VideoStream& stream, const std::string& path) {
    AVISTREAMINFOA info = {};
    info.fccType = streamtypeVIDEO;
    info.fccHandler = stream.fHandler;
    info.dwScale = 1;
    info.dwRate = stream.fRate;
    info.dwLength = stream.fLength;
    info.dwQuality = stream.fQuality;
    info.rcFrame = {0, 0, stream.fWidth, stream.fHeight};
    IAVIStream* created = nullptr;
    Require(AVIFileCreateStreamA(&file, &created, &info), path);
    return AviStream(created);
}

BITMAPINFOHEADER FrameFormat(const VideoStream& stream) {
    constexpr LONG kPixelsOfMeter = 2835;  // 72 dots to the inch
    BITMAPINFOHEADER format = {};
    format.biSize = sizeof(format);
    format.biWidth = stream.fWidth;
    format.biHeight = stream.fHeight;
    format.biPlanes = 1;
    format.biBitCount = 24;
    format.biCompression = BI_RGB;
    format.biSizeImage = stream.fImageSize;
    format.biXPelsPerMeter = kPixelsOfMeter;
    format.biYPelsPerMeter = kPixelsOfMeter;
    return format;
}

// Null when the system has no such compressor.
AviStream MakeCompressed(IAVIStream& stream, const VideoStream& wanted) {
    AVICOMPRESSOPTIONS options = {};
    options.fccType = streamtypeVIDEO;
    options.fccHandler = wanted.fHandler;
    options.dwKeyFrameEvery = 1;
    options.dwQuality = wanted.fQuality;
    options.dwFlags = AVICOMPRESSF_VALID | AVICOMPRESSF_KEYFRAMES;
    IAVIStream* compressed = nullptr;
    if (FAILED(AVIMakeCompressedStream(&compressed, &stream, &options, nullptr))) return nullptr;
    return AviStream(compressed);
}

// Nothing tells whether the system could write the end of a file. So it is given no frame that would leave no
// room for it.
class RoomOnVolume {
  public:
    explicit RoomOnVolume(const std::string& path)
        : fFolder(FolderOf(path)), fIsKnown(GetFreeBytes(fFolder) != 0) {}

    bool Has(uint64_t bytes) const { return !fIsKnown || GetFreeBytes(fFolder) >= bytes; }

  private:
    static std::string FolderOf(const std::string& path) {
        const size_t separator = path.find_last_of("\\/");
        return separator == std::string::npos ? "." : path.substr(0, separator + 1);
    }

    std::string fFolder;
    bool fIsKnown;  // some volumes do not tell
};

class SystemVideoFile final : public VideoFile {
  public:
    SystemVideoFile(const std::string& path, const VideoStream& stream)
        : fPath(path), fVideo(stream), fFile(OpenAviFile(path)), fRoom(path) {
        try {
            fStream = CreateAviStream(*fFile, stream, path);
        } catch (const FileException&) {
            fFile.reset();
            RemoveFile(path);
            throw;
        }
    }

    ~SystemVideoFile() override { SystemVideoFile::Finish(); }
    SystemVideoFile(const SystemVideoFile&) = delete;
    SystemVideoFile& operator=(const SystemVideoFile&) = delete;

    bool StartFrames(FrameCompressor /*own*/) override {
        BITMAPINFOHEADER format = FrameFormat(fVideo);
        fCompressed = MakeCompressed(*fStream, fVideo);
        fTakesFrames =
            fCompressed != nullptr &&
            SUCCEEDED(AVIStreamSetFormat(fCompressed.get(), kSampleOfFormat, &format, sizeof(format)));
        return fTakesFrames;
    }

    bool WriteFrame(std::vector<uint8_t>& pixels) override {
        fTakesFrames = fTakesFrames && HasRoom() && Append(pixels.data());
        return fTakesFrames;
    }

    int32_t Finish() override {
        fTakesFrames = false;
        fCompressed.reset();
        fStream.reset();
        fFile.reset();
        return fFrames;
    }

  private:
    // What the system may write beside the frames: headers with their padding, and an entry of the index for
    // each frame.
    static constexpr uint64_t kBeside = 64 * 1024;
    static constexpr uint64_t kBesideFrame = 64;

    uint64_t SizeOfNextFrame() const { return fVideo.GetFrameSize() + kBesideFrame; }
    uint64_t SizeOfEnd() const { return kBeside + static_cast<uint64_t>(fFrames) * kBesideFrame; }

    bool HasRoom() const {
        const uint64_t size = fWritten + SizeOfEnd() + SizeOfNextFrame();
        return size <= static_cast<uint64_t>(kLargestMovieFile) && fRoom.Has(SizeOfNextFrame() + SizeOfEnd());
    }

    bool Append(const uint8_t* pixels) {
        constexpr LONG kOneFrame = 1;
        LONG samples = 0, bytes = 0;
        const HRESULT result =
            AVIStreamWrite(fCompressed.get(), fFrames, kOneFrame, const_cast<uint8_t*>(pixels),
                           static_cast<LONG>(fVideo.GetFrameSize()), AVIIF_KEYFRAME, &samples, &bytes);
        if (FAILED(result)) return false;
        fWritten += static_cast<uint64_t>(std::max<LONG>(bytes, 0)) + kBesideFrame;
        ++fFrames;
        return true;
    }

    // In the order in which they are made; they go in the other one.
    AviLibrary fLibrary;
    std::string fPath;
    VideoStream fVideo;
    AviFile fFile;
    AviStream fStream;
    AviStream fCompressed;  // null before StartFrames
    RoomOnVolume fRoom;
    uint64_t fWritten = 0;  // bytes of the frames, at least
    int32_t fFrames = 0;
    bool fTakesFrames = false;
};

}  // namespace

std::unique_ptr<VideoFile> VideoFile::Create(const std::string& path, const VideoStream& stream) {
    return std::make_unique<SystemVideoFile>(path, stream);
}

}  // namespace Vantor::Platform
