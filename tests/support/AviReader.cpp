#include "tests/support/AviReader.h"

#include <gtest/gtest.h>

#include "platform/VideoCompression.h"

namespace VantorTest {

namespace {

constexpr size_t kChunkHeader = 8;
constexpr size_t kFirstChunk = 12;

uint32_t Number(const Bytes& bytes, size_t place, size_t count = 4) {
    uint32_t number = 0;
    for (size_t index = 0; index < count; ++index) {
        number |= uint32_t{bytes.at(place + index)} << (8 * index);
    }
    return number;
}

std::string Code(const Bytes& bytes, size_t place) {
    std::string code;
    for (size_t index = 0; index < 4; ++index) code += static_cast<char>(bytes.at(place + index));
    return code;
}

class Reader {
  public:
    explicit Reader(const Bytes& file) : fFile(file) {}

    AviMovie Read() {
        if (fFile.size() < kFirstChunk || Code(fFile, 0) != "RIFF" || Code(fFile, 8) != "AVI ") {
            Require(false, "no AVI file: " + std::to_string(fFile.size()) + " bytes");
            return fMovie;
        }
        const size_t end = Number(fFile, 4) + kChunkHeader;
        if (end < kFirstChunk || end > fFile.size()) {
            Require(false, "the size of the whole");
            return fMovie;
        }
        fMovie.fBehind = fFile.size() - end;
        ReadChunks(kFirstChunk, end);
        Require(fMovie.fFrames.size() == fMovie.fTotalFrames, "the frames of the main header");
        Require(fMovie.fFrames.size() == fMovie.fLength, "the frames of the stream header");
        Require(!fMovie.fHasIndex || fNamed == fMovie.fFrames.size(), "the entries of the index");
        return fMovie;
    }

  private:
    // The first fault is the one that is told.
    void Require(bool isRight, const std::string& fault) {
        if (!isRight && fMovie.fFault.empty()) fMovie.fFault = fault;
    }

    void ReadChunks(size_t place, size_t end) {
        while (place < end) {
            if (end - place < kChunkHeader || Number(fFile, place + 4) > end - place - kChunkHeader) {
                Require(false, "a chunk that does not end, at " + std::to_string(place));
                return;
            }
            Require(place % 2 == 0, "a chunk at an odd place: " + std::to_string(place));
            const size_t size = Number(fFile, place + 4);
            ReadChunk(Code(fFile, place), place, size);
            place += kChunkHeader + size + size % 2;
        }
        Require(place == end, "a list that does not end with a chunk, at " + std::to_string(end));
    }

    void ReadChunk(const std::string& code, size_t chunk, size_t size) {
        const size_t place = chunk + kChunkHeader;
        if (code == "LIST") {
            const std::string type = Code(fFile, place);
            if (type == "movi") fMovieList = place;
            ReadChunks(place + 4, place + size);
        } else if (code == "avih") {
            ReadMainHeader(place);
        } else if (code == "strh") {
            ReadStreamHeader(place);
        } else if (code == "strf") {
            ReadFormat(place);
        } else if (code == "00db" || code == "00dc") {
            fPlaces.push_back(chunk);
            fMovie.fFrames.emplace_back(fFile.begin() + static_cast<ptrdiff_t>(place),
                                        fFile.begin() + static_cast<ptrdiff_t>(place + size));
        } else if (code == "idx1") {
            ReadIndex(place, size);
        } else {
            Require(code == "JUNK", "a chunk " + code);
        }
    }

    void ReadMainHeader(size_t place) {
        fMovie.fMicrosecondsPerFrame = Number(fFile, place);
        fMovie.fFlags = Number(fFile, place + 12);
        fMovie.fTotalFrames = Number(fFile, place + 16);
        fMovie.fStreams = Number(fFile, place + 24);
    }

    void ReadStreamHeader(size_t place) {
        fMovie.fType = Code(fFile, place);
        fMovie.fHandler = Number(fFile, place + 4);
        fMovie.fScale = Number(fFile, place + 20);
        fMovie.fRate = Number(fFile, place + 24);
        fMovie.fLength = Number(fFile, place + 32);
        fMovie.fQuality = Number(fFile, place + 40);
        for (size_t side = 0; side < 4; ++side) {
            fMovie.fRectangle.push_back(static_cast<int>(Number(fFile, place + 48 + 2 * side, 2)));
        }
    }

    void ReadFormat(size_t place) {
        fMovie.fFormatSize = Number(fFile, place);
        fMovie.fWidth = static_cast<int32_t>(Number(fFile, place + 4));
        fMovie.fHeight = static_cast<int32_t>(Number(fFile, place + 8));
        fMovie.fPlanes = Number(fFile, place + 12, 2);
        fMovie.fBits = Number(fFile, place + 14, 2);
        fMovie.fCompression = Number(fFile, place + 16);
        fMovie.fImageSize = Number(fFile, place + 20);
        fMovie.fPixelsPerMeter = {Number(fFile, place + 24), Number(fFile, place + 28)};
        fMovie.fColorsUsed = Number(fFile, place + 32);
    }

    // Places are counted from the word "movi", or from the start of the file.
    void ReadIndex(size_t place, size_t size) {
        constexpr size_t kEntry = 16;
        constexpr uint32_t kKeyFrame = 0x10;
        fMovie.fHasIndex = true;
        for (size_t entry = place; entry < place + size; entry += kEntry, ++fNamed) {
            if (fNamed >= fPlaces.size()) {
                Require(false, "more entries than frames");
                return;
            }
            const size_t named = Number(fFile, entry + 8);
            const bool isPlace = named == fPlaces[fNamed] || named + fMovieList == fPlaces[fNamed];
            const bool isSize = Number(fFile, entry + 12) == fMovie.fFrames[fNamed].size();
            Require(isPlace && isSize, "an entry of the index: " + std::to_string(fNamed));
            if ((Number(fFile, entry + 4) & kKeyFrame) != 0) ++fMovie.fKeyFrames;
        }
    }

    const Bytes& fFile;
    AviMovie fMovie;
    size_t fMovieList = 0;
    size_t fNamed = 0;            // frames in the index
    std::vector<size_t> fPlaces;  // of the frames
};

}  // namespace

Bytes AviMovie::GetPixel(size_t frame, int x, int y) const {
    const int rowSize = (fWidth * 3 + 3) / 4 * 4;
    const auto place = static_cast<size_t>((fHeight - 1 - y) * rowSize + x * 3);
    const Bytes& pixels = fFrames.at(frame);
    return {pixels.at(place), pixels.at(place + 1), pixels.at(place + 2)};
}

AviMovie ParseAvi(const Bytes& file) { return Reader(file).Read(); }

AviMovie ReadAvi(const Bytes& file) {
    AviMovie movie = ParseAvi(file);
    EXPECT_EQ(movie.fFault, "");
    return movie;
}

AviMovie ReadAviFile(const std::string& path) { return ReadAvi(ReadWholeFile(path)); }

Vantor::Platform::VideoStream SmallStream(uint32_t handler) {
    Vantor::Platform::VideoStream stream;
    stream.fHandler = handler;
    stream.fRate = 25;
    stream.fLength = 3;
    stream.fQuality = 7500;
    stream.fWidth = 5;
    stream.fHeight = 3;
    stream.fImageSize = 45;
    return stream;
}

void ExpectHeaders(const AviMovie& movie, const Vantor::Platform::VideoStream& stream) {
    const bool isCompressed = stream.fHandler != Vantor::Platform::kUncompressedHandler;
    EXPECT_EQ(movie.fType, "vids");
    EXPECT_EQ(movie.fHandler, stream.fHandler);
    EXPECT_EQ(movie.fScale, 1U);
    EXPECT_EQ(movie.fRate, stream.fRate);
    EXPECT_EQ(movie.fQuality, stream.fQuality);
    EXPECT_EQ(movie.fWidth, stream.fWidth);
    EXPECT_EQ(movie.fHeight, stream.fHeight);
    EXPECT_EQ(movie.fBits, 24U);
    EXPECT_EQ(movie.fCompression, isCompressed ? stream.fHandler : 0U);
    EXPECT_EQ(movie.fImageSize, stream.fImageSize);
    EXPECT_EQ(movie.fPixelsPerMeter, std::vector<uint32_t>({2835, 2835}));
    EXPECT_EQ(movie.fKeyFrames, movie.fFrames.size());
}

}  // namespace VantorTest
