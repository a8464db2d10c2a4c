#include "sr/SRItemReader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "host/DateAndTime.h"
#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "wrappers/DataSetText.h"
#include "wrappers/ValueText.h"

namespace VantorWrappers {

using Vantor::Tag;
using Vantor::TDicomDataSet;
namespace Platform = Vantor::Platform;
namespace Tags = Vantor::Tags;

namespace {

// The parts of a code, in the order of their tags.
enum CodePart { kValue, kScheme, kVersion, kMeaning, kCodePartCount };
constexpr std::array<Tag, kCodePartCount> kCodeTags = {Tags::kCodeValue, Tags::kCodingSchemeDesignator,
                                                       Tags::kCodingSchemeVersion, Tags::kCodeMeaning};
constexpr std::array<uint32_t, kCodePartCount> kCodeSizes = {kCodeStringSize, kCodeStringSize,
                                                             kCodeStringSize, kCodeMeaningSize};

using CodeTexts = std::array<std::optional<HostString>, kCodePartCount>;

HostString ToTrimmedText(std::string_view text) { return Platform::ToHostText(Platform::Trimmed(text)); }

// Finds the parts in one walk. False for an item that is not plain: one with a sequence in it, or damaged.
bool ReadPlainCode(const TDicomDataSet& item, CodeTexts& texts) {
    std::array<std::array<char, kCodeMeaningSize + kLongestCharacter>, kCodePartCount> values;
    const auto want = [&](CodePart part) {
        return TDicomDataSet::Wanted(kCodeTags[part], values[part].data(),
                                     kCodeSizes[part] + kLongestCharacter);
    };
    std::array wanted = {want(kValue), want(kScheme), want(kVersion), want(kMeaning)};
    if (!item.FindElements(wanted)) return false;
    for (size_t part = 0; part < kCodePartCount; ++part) {
        if (!wanted[part].fIsFound) continue;
        const std::string_view value(values[part].data(),
                                     std::min(wanted[part].fLength, wanted[part].fCapacity));
        texts[part] = ToTrimmedText(TextOfValue(value, kCodeSizes[part]));
    }
    return true;
}

CodeTexts ReadCode(const TDicomDataSet& item) {
    CodeTexts texts;
    if (ReadPlainCode(item, texts)) return texts;
    for (size_t part = 0; part < kCodePartCount; ++part) {
        const auto text = ViewText(item, kCodeTags[part], kCodeSizes[part]);
        if (text) texts[part] = ToTrimmedText(*text);
    }
    return texts;
}

// The part, or "" when it is absent, which is traced.
HostString Take(std::optional<HostString>& part, const char* complaint) {
    if (part) return std::move(*part);
    TraceReport(TraceLevel::kWarning, [&] { return complaint; });
    return {};
}

}  // namespace

std::optional<std::string_view> ViewTrimmed(const TDicomDataSet& item, Tag tag, uint32_t maxLength) {
    const auto text = ViewText(item, tag, maxLength);
    return text ? std::optional(Platform::Trimmed(*text)) : std::nullopt;
}

HostString ReadTrimmed(const TDicomDataSet& item, Tag tag, uint32_t maxLength) {
    return Platform::ToHostText(ViewTrimmed(item, tag, maxLength).value_or(std::string_view()));
}

std::string ReadCodeString(const TDicomDataSet& item, Tag tag) {
    return Platform::UpperCased(ViewTrimmed(item, tag, kCodeStringSize).value_or(std::string_view()));
}

HostString ReadMoment(const TDicomDataSet& item, Tag tag) {
    constexpr uint32_t kDateTimeSize = 26;
    const auto text = ViewTrimmed(item, tag, kDateTimeSize);
    const auto moment = text ? ParseDateTime(*text) : std::nullopt;
    return moment ? VantorHost::DateAndTime::Format(*moment) : HostString();
}

SRCodedEntry ParseCodeSequenceMacro(const TDicomDataSet& item) {
    CodeTexts texts = ReadCode(item);
    HostString meaning = Take(texts[kMeaning], "No Code Meaning found in Code Sequence Macro.");
    HostString value = Take(texts[kValue], "No code value found in Code Sequence Macro.");
    HostString scheme = Take(texts[kScheme], "No coding Scheme Designator found in Code Sequence Macro.");
    HostString version = texts[kVersion].value_or(HostString());
    return {std::move(value), std::move(scheme), std::move(version), std::move(meaning)};
}

}  // namespace VantorWrappers
