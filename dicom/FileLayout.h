#pragma once

#include <cstdint>
#include <string_view>

// How a DICOM Part 10 file starts; sizes and places in bytes.
namespace Vantor::FileLayout {

inline constexpr int64_t kPreambleSize = 128;
inline constexpr std::string_view kPrefix = "DICM";
inline constexpr int64_t kMetaOffset = kPreambleSize + static_cast<int64_t>(kPrefix.size());

}  // namespace Vantor::FileLayout
