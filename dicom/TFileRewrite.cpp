#include "dicom/TFileRewrite.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "dicom/ByteOrder.h"
#include "dicom/FileLayout.h"
#include "dicom/TDicomDataSet.h"
#include "dicom/TDicomDataSetLayout.h"
#include "dicom/TException.h"
#include "dicom/Uids.h"
#include "dicom/ValueText.h"
#include "platform/FileException.h"

namespace Vantor {

using namespace DataSetLayout;
using namespace FileLayout;

namespace {

constexpr char kInvalidFile[] = "Invalid Dicom File";
constexpr auto kMetaStart = static_cast<size_t>(kMetaOffset);
constexpr Encoding kMetaEncoding{true, false};
constexpr uint16_t kMetaGroup = 0x0002;

// What is read of a file at first, and how much more each time that this was too little.
constexpr size_t kFirstRead = 0x10000;
constexpr size_t kReadFactor = 4;

constexpr int64_t kLargestPiece = 0x100000;
constexpr int64_t kBytesToFlush = 0x400000;

constexpr Tag kFloatPixelData{0x7FE0, 0x0008};
constexpr Tag kDoublePixelData{0x7FE0, 0x0009};

// Compressed as a whole: its elements cannot be read.
constexpr char kDeflated[] = "1.2.840.10008.1.2.1.99";

[[noreturn]] void ThrowInvalid() { throw new TException(ErrorNumbers::kRecordStructure, kInvalidFile); }

bool IsPixelData(Tag tag) {
    return tag == Tags::kPixelData || tag == kFloatPixelData || tag == kDoublePixelData;
}

// False when the bytes break off while they are parsed.
template <typename Parse>
bool IsWhole(Parse parse) {
    try {
        parse();
        return true;
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        return false;
    }
}

std::string FindText(std::span<const uint8_t> bytes, Encoding encoding, Tag tag) {
    ElementReader reader(bytes, encoding);
    for (auto element = reader.PeekHeader(); element; element = reader.PeekHeader()) {
        const size_t end = reader.Skip(*element);
        if (element->fTag != tag) continue;
        const std::string text(bytes.begin() + static_cast<std::ptrdiff_t>(element->fValueStart),
                               bytes.begin() + static_cast<std::ptrdiff_t>(end));
        return std::string(TrimValue(text));
    }
    return {};
}

}  // namespace

// ---- Reading ----

TFileRewrite::TFileRewrite(const std::string& path)
    : fSource(Platform::OpenDiskFile(path, Platform::FileAccess::kRead)), fSourceSize(fSource->GetLength()) {
    ReadStart();
    fStart.clear();
    fStart.shrink_to_fit();
}

// Reads so much of the file that the pixel data begin within.
void TFileRewrite::ReadStart() {
    ReadMore(kFirstRead);
    while (!ParseStart()) {
        if (static_cast<int64_t>(fStart.size()) >= fSourceSize) ThrowInvalid();
        ReadMore(fStart.size() * kReadFactor);
    }
}

void TFileRewrite::ReadMore(size_t count) {
    const auto wanted = static_cast<size_t>(std::min(static_cast<int64_t>(count), fSourceSize));
    fStart.resize(wanted);
    fSource->Seek(0);
    fStart.resize(fSource->Read(fStart.data(), wanted));
    if (fStart.size() < wanted) ThrowInvalid();
}

// False when the bytes break off too early.
bool TFileRewrite::ParseStart() {
    if (fStart.size() <= kMetaStart) ThrowInvalid();
    if (!std::equal(kPrefix.begin(), kPrefix.end(), fStart.begin() + kPreambleSize)) ThrowInvalid();
    const size_t dataStart = ParseMeta();
    return dataStart != 0 && TakeEncoding() && ParseElements(dataStart);
}

// Gives where the data set begins; 0 when the bytes break off.
size_t TFileRewrite::ParseMeta() {
    size_t dataStart = 0;
    const bool isWhole = IsWhole([&] {
        ElementReader meta(std::span<const uint8_t>(fStart).subspan(kMetaStart), kMetaEncoding);
        for (auto element = meta.PeekHeader(); element && element->fTag.fGroup == kMetaGroup;
             element = meta.PeekHeader()) {
            meta.Skip(*element);
        }
        dataStart = kMetaStart + meta.GetPosition();
        fMeta.assign(fStart.begin() + kMetaStart, fStart.begin() + static_cast<std::ptrdiff_t>(dataStart));
    });
    return isWhole ? dataStart : 0;
}

// False when there is no transfer syntax.
bool TFileRewrite::TakeEncoding() {
    const std::string syntax = GetMetaText(Tags::kTransferSyntaxUID);
    if (syntax == kDeflated) throw new TException(ErrorNumbers::kRecordStructure, kDeflatedFile);
    fEncoding.fIsExplicit = syntax != Uids::kImplicitVRLittleEndian;
    fEncoding.fIsBigEndian = syntax == Uids::kExplicitVRBigEndian;
    return !syntax.empty();
}

bool TFileRewrite::ParseElements(size_t dataStart) {
    bool isComplete = false;
    const bool isWhole = IsWhole([&] {
        ElementReader elements(std::span<const uint8_t>(fStart).subspan(dataStart), fEncoding);
        auto element = elements.PeekHeader();
        for (; element && !IsPixelData(element->fTag); element = elements.PeekHeader()) {
            elements.Skip(*element);
        }
        const size_t end = dataStart + elements.GetPosition();
        isComplete = element || static_cast<int64_t>(end) >= fSourceSize;
        if (!isComplete) return;
        fElements.assign(fStart.begin() + static_cast<std::ptrdiff_t>(dataStart),
                         fStart.begin() + static_cast<std::ptrdiff_t>(end));
        fPixelElement = static_cast<int64_t>(end);
        fPixelValue = element ? static_cast<int64_t>(dataStart + element->fValueStart) : fPixelElement;
        fPixelLength = element ? element->fLength : 0;
    });
    return isWhole && isComplete;
}

std::string TFileRewrite::GetText(Tag tag) const { return FindText(fElements, fEncoding, tag); }

std::string TFileRewrite::GetMetaText(Tag tag) const { return FindText(fMeta, kMetaEncoding, tag); }

// ---- Where the pixel data end ----

// A file that is cut off within its pixel data ends with them. What has no items where they should be could
// be anything.
int64_t TFileRewrite::FindPixelEnd() const {
    if (fPixelLength == TDicomDataSet::kUndefinedLength) return FindFragmentsEnd(fPixelValue);
    return std::min(fPixelValue + int64_t{fPixelLength}, fSourceSize);
}

int64_t TFileRewrite::FindFragmentsEnd(int64_t position) const {
    Tag tag;
    while (const auto length = ReadItemHeader(position, tag)) {
        position += kItemHeaderSize;
        if (tag == Tags::kSequenceDelimitation) return position;
        if (tag != Tags::kItem) ThrowInvalid();
        position += *length;
    }
    return std::min(position, fSourceSize);
}

std::optional<uint32_t> TFileRewrite::ReadItemHeader(int64_t position, Tag& tag) const {
    std::array<uint8_t, kItemHeaderSize> header;
    if (position + kItemHeaderSize > fSourceSize) return std::nullopt;
    fSource->Seek(position);
    if (fSource->Read(header.data(), header.size()) < header.size()) return std::nullopt;
    const auto read = [&](auto& number, size_t at) {
        ByteOrder::CopyNumber(&number, &header[at], sizeof(number), fEncoding.fIsBigEndian);
    };
    uint32_t length = 0;
    read(tag.fGroup, 0);
    read(tag.fElement, kElementField);
    read(length, kTagSize);
    return length;
}

// ---- Writing ----

void TFileRewrite::Begin(const std::string& target, const Bytes& meta, const Bytes& elements, Rest rest) {
    fEnd = rest == Rest::kKept ? fSourceSize : FindPixelEnd();
    fPosition = fCopied = fFlushed = fPixelElement;
    fReplacement = std::make_unique<Platform::FileReplacement>(target);
    Platform::File& file = fReplacement->GetFile();
    const std::array<uint8_t, kPreambleSize> preamble{};
    file.Reserve(static_cast<int64_t>(kMetaStart + meta.size() + elements.size()) + GetSizeToCopy());
    file.Write(preamble.data(), preamble.size());
    file.Write(kPrefix.data(), kPrefix.size());
    file.Write(meta.data(), meta.size());
    file.Write(elements.data(), elements.size());
    fSource->Seek(fPosition);
    Bytes().swap(fMeta);
    Bytes().swap(fElements);
}

int64_t TFileRewrite::CopyNext(int64_t count) {
    fPosition += std::clamp<int64_t>(count, 0, GetSizeLeft());
    while (fCopied < fPosition) CopyPiece();
    return GetSizeLeft();
}

void TFileRewrite::CopyPiece() {
    Platform::File& file = fReplacement->GetFile();
    const auto wanted = static_cast<size_t>(std::min(fEnd - fCopied, kLargestPiece));
    fPiece.resize(wanted);
    if (fSource->Read(fPiece.data(), wanted) < wanted) {
        throw Platform::FileException(Platform::FileException::Cause::kEndOfFile, 0, "image data");
    }
    file.Write(fPiece.data(), wanted);
    fCopied += static_cast<int64_t>(wanted);
    if (fCopied - fFlushed < kBytesToFlush && fCopied < fEnd) return;
    file.StartFlush();
    fFlushed = fCopied;
}

void TFileRewrite::Finish() {
    fSource.reset();  // it may be what is replaced
    fReplacement->PutInPlace(nullptr);
    fReplacement.reset();
}

}  // namespace Vantor
