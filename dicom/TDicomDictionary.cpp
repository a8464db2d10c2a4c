#include "dicom/TDicomDictionary.h"

#include <algorithm>
#include <array>

#include "dicom/TTextUtil.h"

namespace Vantor {

namespace {

// An entry's tag in the text: "(gggg,eeee)".
constexpr uint32_t kTagTextLength = 11;
constexpr uint32_t kGroupPosition = 1;
constexpr uint32_t kGroupLength = 4;
constexpr uint32_t kCommaPosition = 5;
constexpr uint32_t kClosingPosition = 10;

// No entry is shorter than this, so the search for the next one starts behind it.
constexpr uint32_t kShortestEntry = 32;

using TagText = std::array<char, kTagTextLength>;

TagText TextOf(Tag tag) {
    TagText text{};
    const std::array<uint8_t, 2> group = {static_cast<uint8_t>(tag.fGroup >> 8),
                                          static_cast<uint8_t>(tag.fGroup)};
    const std::array<uint8_t, 2> element = {static_cast<uint8_t>(tag.fElement >> 8),
                                            static_cast<uint8_t>(tag.fElement)};
    const TTextUtil util;
    const int32_t capacity = static_cast<int32_t>(text.size());
    text.front() = '(';
    util.AppendHex(group.data(), group.size(), text.data(), capacity, kGroupPosition);
    text[kCommaPosition] = ',';
    util.AppendHex(element.data(), element.size(), text.data(), capacity, kCommaPosition + 1);
    text[kClosingPosition] = ')';
    return text;
}

}  // namespace

TDicomDictionary::TDicomDictionary(const char* text, uint32_t length) : fText(text, length) {
    IndexEntries();
}

void TDicomDictionary::IndexEntries() {
    uint32_t position = 0;
    while (fEntries.size() < kMaximumEntries) {
        const size_t opening = fText.find('(', position);
        if (opening == std::string_view::npos || opening + kTagTextLength > fText.size()) return;
        position = static_cast<uint32_t>(opening);
        if (fText[position + kCommaPosition] != ',' || fText[position + kClosingPosition] != ')') {
            ++position;
            continue;
        }
        if (!fEntries.empty() && TagTextAt(fEntries.back()) > TagTextAt(position)) fIsSorted = false;
        fEntries.push_back(position);
        position += kShortestEntry;
    }
}

std::string_view TDicomDictionary::TagTextAt(uint32_t entry) const {
    return fText.substr(entry, kTagTextLength);
}

const uint32_t* TDicomDictionary::FindEntry(Tag tag) const {
    const TagText tagText = TextOf(tag);
    const std::string_view wanted(tagText.data(), tagText.size());
    auto entry = fEntries.begin();
    if (fIsSorted) {
        entry = std::lower_bound(
            fEntries.begin(), fEntries.end(), wanted,
            [this](uint32_t left, std::string_view right) { return TagTextAt(left) < right; });
        return entry != fEntries.end() && TagTextAt(*entry) == wanted ? &*entry : nullptr;
    }
    const std::string_view wantedGroup = wanted.substr(kGroupPosition, kGroupLength);
    for (; entry != fEntries.end(); ++entry) {
        const std::string_view text = TagTextAt(*entry);
        if (text == wanted) return &*entry;
        if (text.substr(kGroupPosition, kGroupLength) > wantedGroup) return nullptr;
    }
    return nullptr;
}

int32_t TDicomDictionary::AppendField(Tag tag, std::string_view key, char* buffer, int32_t capacity,
                                      int32_t position) const {
    const uint32_t* entry = FindEntry(tag);
    if (entry == nullptr) return position;
    const size_t end = std::min(fText.find('(', *entry + 1), fText.size());
    const std::string_view fields = fText.substr(*entry, end - *entry);
    const size_t keyStart = fields.find(key);
    if (keyStart == std::string_view::npos) return position;
    const size_t valueStart = keyStart + key.size() + 1;  // behind the opening quote
    if (valueStart > fields.size()) return position;
    const std::string_view behind = fText.substr(*entry + valueStart);
    const std::string_view value = behind.substr(0, behind.find('"'));
    return TTextUtil().AppendText(value.data(), static_cast<uint32_t>(value.size()), buffer, capacity,
                                  position);
}

}  // namespace Vantor
