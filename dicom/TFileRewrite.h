#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dicom/ElementReader.h"
#include "platform/File.h"
#include "platform/FileReplacement.h"

namespace Vantor {

// Writes a DICOM Part 10 file anew with other elements in front of its pixel data. Pixel data are copied byte
// for byte, whatever they are, and never held in memory as a whole; a file without any has all its elements
// in front of them.
//
//     TFileRewrite rewrite(path);
//     rewrite.Begin(target, meta, elements, TFileRewrite::Rest::kKept);
//     while (rewrite.CopyNext(bytesOfAFrame) > 0) ...
//     rewrite.Finish();
//
// The new file is written beside the target and takes its place in Finish; before, and without it, the target
// is as it was. The target may be the file itself. The source is denied to writers all the time.
//
// Throws FileException, and TException 102 "Invalid Dicom File" for what is no such file, or damaged in front
// of its pixel data; with kDeflatedFile as its text for one that is compressed as a whole.
class TFileRewrite {
  public:
    using Bytes = std::vector<uint8_t>;

    // What becomes of elements behind the pixel data: padding, signatures, private ones.
    enum class Rest { kKept, kLeftOut };

    static constexpr char kDeflatedFile[] = "Deflated Dicom File";

    explicit TFileRewrite(const std::string& path);

    // The meta information, which is always in explicit little endian, and the elements in front of the pixel
    // data, in the encoding of the transfer syntax. Empty after Begin.
    const Bytes& GetMeta() const { return fMeta; }
    const Bytes& GetElements() const { return fElements; }
    Encoding GetEncoding() const { return fEncoding; }

    // The text of an element in front of the pixel data, and of one of the meta information, without blanks
    // and padding; "" when there is none. Before Begin.
    std::string GetText(Tag tag) const;
    std::string GetMetaText(Tag tag) const;

    // Makes the new file, sets room for all of it aside, and writes what comes in front of the pixel data.
    // Compressed pixel data whose end cannot be found are damaged as well, if nothing behind them is kept.
    void Begin(const std::string& target, const Bytes& meta, const Bytes& elements, Rest rest);

    // Goes on by up to so many bytes of the pixel data, which are copied then, and gives how many remain.
    // They are copied in larger pieces: small steps cost nothing.
    int64_t CopyNext(int64_t count);

    // How many bytes Begin has left to be copied, and how many of them remain.
    int64_t GetSizeToCopy() const { return fEnd - fPixelElement; }
    int64_t GetSizeLeft() const { return fEnd - fPosition; }

    // Puts the complete file in its place; it is on the medium then.
    void Finish();

  private:
    void ReadMore(size_t count);
    void ReadStart();
    bool ParseStart();
    size_t ParseMeta();
    bool TakeEncoding();
    bool ParseElements(size_t dataStart);
    void CopyPiece();
    int64_t FindPixelEnd() const;
    int64_t FindFragmentsEnd(int64_t position) const;
    std::optional<uint32_t> ReadItemHeader(int64_t position, Tag& tag) const;

    std::unique_ptr<Platform::File> fSource;
    int64_t fSourceSize = 0;
    Bytes fStart;  // while it is read: the first bytes of the file
    Bytes fMeta;
    Bytes fElements;
    Encoding fEncoding;
    int64_t fPixelElement = 0;  // where the pixel data's element starts in the file; its size without
    int64_t fPixelValue = 0;
    uint32_t fPixelLength = 0;  // as stored

    std::unique_ptr<Platform::FileReplacement> fReplacement;
    int64_t fPosition = 0;  // how far the caller has gone, and how far the source has been copied
    int64_t fCopied = 0;
    int64_t fFlushed = 0;  // how far the system has been told to hand the copy to the medium
    int64_t fEnd = 0;
    Bytes fPiece;
};

}  // namespace Vantor
