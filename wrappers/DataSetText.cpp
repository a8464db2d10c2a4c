#include "wrappers/DataSetText.h"

#include <algorithm>

#include "dicom/TException.h"
#include "platform/CodePage.h"

namespace VantorWrappers {

using Vantor::Tag;
using Vantor::TDicomDataSet;
using Vantor::TException;

namespace {

// Where the element at an offset ends. It may be the last, but not be cut off, be it by a few bytes.
int32_t EndOfWhole(const TDicomDataSet& dataSet, int32_t offset) {
    const int32_t end = dataSet.GetNextElementOffset(offset);
    if (end == 0 || end > dataSet.GetDataSetSize()) {
        throw new TException(Vantor::ErrorNumbers::kRecordStructure,
                             "Invalid DICOM element length, longer than the data set.");
    }
    return end;
}

}  // namespace

bool FindWhole(const TDicomDataSet& dataSet, Tag tag, uint32_t& length, int32_t& offset) {
    if (!dataSet.FindElement(tag, nullptr, &length, nullptr, 0, &offset)) return false;
    EndOfWhole(dataSet, offset);
    return true;
}

bool FindWhole(const TDicomDataSet& dataSet, Tag tag, int32_t& offset) {
    if (!dataSet.FindElement(tag, nullptr, nullptr, nullptr, 0, &offset)) return false;
    EndOfWhole(dataSet, offset);
    return true;
}

std::string_view TextOfValue(std::string_view value, uint32_t maxLength) {
    const uint64_t looked = std::min<uint64_t>(uint64_t{maxLength} + kLongestCharacter, value.size());
    const std::string_view start = value.substr(0, static_cast<size_t>(looked));
    const std::string_view text = start.substr(0, std::min(start.find('\0'), start.size()));
    return text.substr(0, Vantor::Platform::CutPosition(text, maxLength));
}

std::optional<std::string_view> ViewText(const TDicomDataSet& dataSet, Tag tag, uint32_t maxLength) {
    uint32_t length = 0;
    int32_t offset = 0;
    if (!dataSet.FindElement(tag, nullptr, &length, nullptr, 0, &offset)) return std::nullopt;
    const uint8_t* const end = dataSet.GetDataSet() + EndOfWhole(dataSet, offset);
    return TextOfValue({reinterpret_cast<const char*>(end - length), length}, maxLength);
}

}  // namespace VantorWrappers
