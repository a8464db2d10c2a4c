// By libjpeg-turbo.
//
// The library ends a call that fails by calling back, and the callback must not come back to it. So each part
// of the work is a function without objects that would have to be destroyed, run by Guard, to which the
// callback jumps.

#include <algorithm>
#include <csetjmp>
#include <cstddef>
#include <cstdio>  // jpeglib.h relies on it
#include <exception>
#include <limits>

#include "cli/JpegCodec.h"
// Behind the headers that it needs.
#include <jpeglib.h>

namespace VantorCli {

namespace {

// Even a block of 64 pixels of one colour that are all the same takes two bits; where colours are stored for
// every 16th pixel only, there are most pixels in a byte.
constexpr uint64_t kMostPixelsOfByte = 256;

constexpr int kGray = 1;
constexpr int kColors = 3;
constexpr int32_t kBitsOfSample = 8;
constexpr size_t kRowUnit = 4;

// Where the library's calls back find what they are about. The first member is the library's own.
struct ErrorHandler {
    jpeg_error_mgr fManager;
    std::jmp_buf fWayOut;
};

[[noreturn]] void Leave(j_common_ptr jpeg) {
    std::longjmp(reinterpret_cast<ErrorHandler*>(jpeg->err)->fWayOut, 1);
}

// Warnings are counted, and nothing is printed.
void CountWarning(j_common_ptr jpeg, int level) {
    if (level < 0) ++jpeg->err->num_warnings;
}

jpeg_error_mgr* Prepare(ErrorHandler& handler) {
    jpeg_std_error(&handler.fManager);
    handler.fManager.error_exit = Leave;
    handler.fManager.emit_message = CountWarning;
    return &handler.fManager;
}

// Runs a part of the work. False when the library has given it up.
template <typename Work>
bool Guard(ErrorHandler& handler, void (*part)(Work&), Work& work) {
    if (setjmp(handler.fWayOut) != 0) return false;
    part(work);
    return true;
}

// ---- Decoding ----

class Decoding {
  public:
    Decoding() { fJpeg.err = Prepare(fHandler); }
    ~Decoding() { jpeg_destroy_decompress(&fJpeg); }
    Decoding(const Decoding&) = delete;
    Decoding& operator=(const Decoding&) = delete;

    bool Run(void (*part)(Decoding&)) { return Guard(fHandler, part, *this); }

    // What surrounds the picture in the frame may be odd; from here on it must be whole.
    void ForgetWarnings() { fHandler.fManager.num_warnings = 0; }
    bool HasWarnings() const { return fHandler.fManager.num_warnings != 0; }

    jpeg_decompress_struct fJpeg{};
    std::span<const uint8_t> fFrame;
    bool fIsRgb = false;
    uint8_t* fRow = nullptr;
    size_t fStride = 0;

  private:
    ErrorHandler fHandler{};
};

void ReadHeader(Decoding& decoding) {
    jpeg_create_decompress(&decoding.fJpeg);
    jpeg_mem_src(&decoding.fJpeg, decoding.fFrame.data(), static_cast<unsigned long>(decoding.fFrame.size()));
    jpeg_read_header(&decoding.fJpeg, TRUE);
}

void ReadRows(Decoding& decoding) {
    jpeg_decompress_struct& jpeg = decoding.fJpeg;
    if (decoding.fIsRgb && !jpeg.saw_Adobe_marker && !jpeg.saw_JFIF_marker) jpeg.jpeg_color_space = JCS_RGB;
    jpeg.out_color_space = jpeg.num_components == kGray ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_start_decompress(&jpeg);
    while (jpeg.output_scanline < jpeg.output_height) {
        jpeg_read_scanlines(&jpeg, &decoding.fRow, 1);
        decoding.fRow += decoding.fStride;
    }
}

bool IsExpected(const jpeg_decompress_struct& jpeg, int32_t width, int32_t height, int32_t colors) {
    return jpeg.image_width == static_cast<uint32_t>(width) &&
           jpeg.image_height == static_cast<uint32_t>(height) && jpeg.num_components == colors &&
           (colors == kGray || colors == kColors) && jpeg.data_precision == kBitsOfSample &&
           !jpeg.progressive_mode && !jpeg.arith_code;
}

// ---- Encoding ----

class Encoding {
  public:
    explicit Encoding(std::vector<uint8_t>& compressed) : fCompressed(compressed) {
        fJpeg.err = Prepare(fHandler);
        fJpeg.client_data = this;
    }
    ~Encoding() { jpeg_destroy_compress(&fJpeg); }
    Encoding(const Encoding&) = delete;
    Encoding& operator=(const Encoding&) = delete;

    bool Run(void (*part)(Encoding&)) { return Guard(fHandler, part, *this); }

    // Makes room for more of the compressed frame, behind what there is. False when there is no memory.
    bool Grow() {
        const size_t filled = fCompressed.size();
        try {
            fCompressed.resize(std::max(kSmallestRoom, filled * 2));
        } catch (const std::exception&) {
            return false;
        }
        fDestination.next_output_byte = fCompressed.data() + filled;
        fDestination.free_in_buffer = fCompressed.size() - filled;
        return true;
    }

    // Only of what is left over.
    void Shrink() { fCompressed.resize(fCompressed.size() - fDestination.free_in_buffer); }

    jpeg_compress_struct fJpeg{};
    jpeg_destination_mgr fDestination{};
    const uint8_t* fPixels = nullptr;
    size_t fStride = 0;
    uint32_t fWidth = 0;
    uint32_t fHeight = 0;
    int fQuality = 0;

  private:
    static constexpr size_t kSmallestRoom = 0x10000;

    std::vector<uint8_t>& fCompressed;
    ErrorHandler fHandler{};
};

Encoding& EncodingOf(j_compress_ptr jpeg) { return *static_cast<Encoding*>(jpeg->client_data); }

// The library calls this when the room is used up.
boolean MakeRoom(j_compress_ptr jpeg) {
    if (!EncodingOf(jpeg).Grow()) Leave(reinterpret_cast<j_common_ptr>(jpeg));
    return TRUE;
}

void BeginOutput(j_compress_ptr jpeg) { MakeRoom(jpeg); }
void EndOutput(j_compress_ptr jpeg) { EncodingOf(jpeg).Shrink(); }

void SetDestination(Encoding& encoding) {
    encoding.fDestination.init_destination = BeginOutput;
    encoding.fDestination.empty_output_buffer = MakeRoom;
    encoding.fDestination.term_destination = EndOutput;
    encoding.fJpeg.dest = &encoding.fDestination;
}

// Every frame has the usual tables in it, and colours for every second pixel of a row: what all readers of
// such movies can take.
void Configure(Encoding& encoding) {
    jpeg_compress_struct& jpeg = encoding.fJpeg;
    jpeg.image_width = encoding.fWidth;
    jpeg.image_height = encoding.fHeight;
    jpeg.input_components = kColors;
    jpeg.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, encoding.fQuality, TRUE);
    jpeg.comp_info[0].h_samp_factor = 2;
    jpeg.comp_info[0].v_samp_factor = 1;
}

void WriteFrame(Encoding& encoding) {
    jpeg_compress_struct& jpeg = encoding.fJpeg;
    jpeg_create_compress(&jpeg);
    SetDestination(encoding);
    Configure(encoding);
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < jpeg.image_height) {
        const size_t fromBottom = jpeg.image_height - 1 - jpeg.next_scanline;
        auto* row = const_cast<JSAMPLE*>(encoding.fPixels + fromBottom * encoding.fStride);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
}

}  // namespace

bool JpegCodec::IsThere() { return true; }

bool JpegCodec::Decode(std::span<const uint8_t> frame, int32_t width, int32_t height, int32_t colors,
                       bool isRgb, std::vector<uint8_t>& samples) {
    if (frame.empty() || frame.size() > std::numeric_limits<uint32_t>::max()) return false;
    Decoding decoding;
    decoding.fFrame = frame;
    decoding.fIsRgb = isRgb;
    if (!decoding.Run(ReadHeader) || !IsExpected(decoding.fJpeg, width, height, colors)) return false;
    const uint64_t pixels = static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
    if (pixels > frame.size() * kMostPixelsOfByte) return false;
    decoding.fStride = static_cast<size_t>(width) * static_cast<size_t>(colors);
    samples.resize(decoding.fStride * static_cast<size_t>(height));
    decoding.fRow = samples.data();
    decoding.ForgetWarnings();
    return decoding.Run(ReadRows) && !decoding.HasWarnings();
}

bool JpegCodec::Encode(const uint8_t* pixels, int32_t width, int32_t height, int32_t quality,
                       std::vector<uint8_t>& compressed) {
    constexpr int32_t kBest = 100;
    if (width < 1 || height < 1 || width > JPEG_MAX_DIMENSION || height > JPEG_MAX_DIMENSION) return false;
    compressed.clear();
    Encoding encoding(compressed);
    encoding.fPixels = pixels;
    encoding.fWidth = static_cast<uint32_t>(width);
    encoding.fHeight = static_cast<uint32_t>(height);
    encoding.fStride = (encoding.fWidth * size_t{kColors} + kRowUnit - 1) / kRowUnit * kRowUnit;
    encoding.fQuality = std::clamp(quality, 1, kBest);
    const bool isEncoded = encoding.Run(WriteFrame);
    if (!isEncoded) compressed.clear();
    return isEncoded;
}

}  // namespace VantorCli
