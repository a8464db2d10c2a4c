#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "dicom/TDicomDataSet.h"

namespace VantorWrappers {

// Reads elements that are there whole: half a patient ID is another patient's. Everything throws
// Vantor::TException* where the data set is damaged in the element or in front of it.

// Finds an element at the top level; the outputs are filled when it is there.
bool FindWhole(const Vantor::TDicomDataSet& dataSet, Vantor::Tag tag, uint32_t& length, int32_t& offset);
bool FindWhole(const Vantor::TDicomDataSet& dataSet, Vantor::Tag tag, int32_t& offset);

// The text of a value: its first `maxLength` bytes, up to a NUL, never cut inside a character of UTF-8. The
// next kLongestCharacter bytes of the value tell where one ends.
inline constexpr uint32_t kLongestCharacter = 4;
std::string_view TextOfValue(std::string_view value, uint32_t maxLength);

// The text of an element; none when it is absent. It stands in the data set.
std::optional<std::string_view> ViewText(const Vantor::TDicomDataSet& dataSet, Vantor::Tag tag,
                                         uint32_t maxLength);

}  // namespace VantorWrappers
