#include "wrappers/RecordTexts.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "dicom/CharacterSet.h"
#include "dicom/ValueText.h"
#include "platform/CodePage.h"
#include "records/TDicomDoc.h"
#include "wrappers/StoredText.h"

namespace VantorWrappers {

using Vantor::Tag;
using Vantor::TDicomDoc;
using Vantor::VrCode;
using Vantor::Platform::FromHostText;
using Vantor::Platform::ToHostText;
namespace CharacterSet = Vantor::CharacterSet;
namespace Tags = Vantor::Tags;
namespace Vr = Vantor::Vr;

namespace {

// As much as a record shows.
std::string Cut(std::string bytes) {
    bytes.resize(std::min(bytes.find('\0'), bytes.size()));
    bytes.resize(Vantor::Platform::CutPosition(bytes, TDicomDoc::kLongestText));
    return bytes;
}

void Put(TDicomDoc& record, Tag tag, VrCode vr, const std::string& bytes) {
    const auto length = static_cast<uint32_t>(bytes.size());
    record.GetDataSet()->PutElement(tag, vr, length, bytes.data(), length);
}

}  // namespace

RecordTexts::RecordTexts(const TDicomDoc* source) : fSource(source) {}

void RecordTexts::Add(Tag tag, VrCode vr, const HostString& text) {
    fTexts.push_back({tag, vr, text, FindStoredText(Read(tag), vr, text)});
}

void RecordTexts::PutInto(TDicomDoc& record) const {
    const Encoded encoded = Encode();
    for (size_t i = 0; i < fTexts.size(); ++i) {
        Put(record, fTexts[i].fTag, fTexts[i].fVr, encoded.fBytes[i]);
    }
    if (!encoded.fCharacterSet.empty()) {
        Put(record, Tags::kSpecificCharacterSet, Vr::kCS, encoded.fCharacterSet);
    }
}

std::string RecordTexts::Read(Tag tag) const {
    constexpr size_t kLongestStored = 1024;
    std::array<char, kLongestStored> bytes = {};
    if (fSource != nullptr) fSource->ViewRecord().GetText(tag, bytes.data(), kLongestStored);
    return std::string(Vantor::TrimValue(bytes.data()));
}

RecordTexts::Encoded RecordTexts::Encode() const {
    const bool needsOld = std::any_of(fTexts.begin(), fTexts.end(), [](const Text& each) {
        return each.fOld && !Vantor::IsPlainAscii(*each.fOld);
    });
    auto encoded = needsOld ? EncodeBesideOld() : std::nullopt;
    return encoded ? std::move(*encoded) : EncodeAsSeen();
}

std::optional<RecordTexts::Encoded> RecordTexts::EncodeBesideOld() const {
    const std::string own = Read(Tags::kSpecificCharacterSet);
    auto encoded = EncodeIn(own);
    if (encoded || !(own.empty() || own == CharacterSet::kAscii)) return encoded;
    std::string old;
    for (const Text& text : fTexts) {
        if (text.fOld && !Vantor::IsPlainAscii(*text.fOld)) old.append(*text.fOld).push_back('\n');
    }
    const auto characterSet = CharacterSet::OfUnnamed(old);
    return characterSet ? EncodeIn(*characterSet) : std::nullopt;
}

std::optional<RecordTexts::Encoded> RecordTexts::EncodeIn(const std::string& characterSet) const {
    Encoded encoded{characterSet, {}};
    for (const Text& text : fTexts) {
        if (text.fOld) {
            encoded.fBytes.push_back(*text.fOld);
            continue;
        }
        auto bytes = CharacterSet::Encode(text.fText, characterSet);
        if (!bytes) return std::nullopt;
        encoded.fBytes.push_back(Cut(std::move(*bytes)));
    }
    return encoded;
}

RecordTexts::Encoded RecordTexts::EncodeAsSeen() const {
    const bool isNative = std::all_of(fTexts.begin(), fTexts.end(), [](const Text& each) {
        return ToHostText(FromHostText(each.fText)) == each.fText;
    });
    Encoded encoded;
    for (const Text& text : fTexts) {
        encoded.fBytes.push_back(
            Cut(isNative ? FromHostText(text.fText) : Vantor::Platform::ToUtf8(text.fText)));
        const auto term = CharacterSet::OfNativeText(encoded.fBytes.back());
        if (isNative && term) encoded.fCharacterSet = *term;
    }
    if (!isNative) encoded.fCharacterSet = CharacterSet::kUtf8;
    return encoded;
}

}  // namespace VantorWrappers
