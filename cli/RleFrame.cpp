#include "cli/RleFrame.h"

#include <algorithm>
#include <bit>

namespace VantorCli {

namespace {

// The table at the frame's start: how many segments there are, and where up to 15 of them start.
constexpr size_t kTableSize = 64;
constexpr size_t kMostSegments = 15;

// A run has a byte that says how long it is and one to be repeated, and is at most so long.
constexpr size_t kShortestRun = 2;
constexpr size_t kLongestRun = 128;

// Bytes up to 127 are followed by one more than so many as they are; those from 129 on by one to be repeated
// 257 less so many times; and 128 means nothing.
constexpr uint8_t kNothing = 128;
constexpr size_t kRepetitions = 257;

// Unpacks a segment to every `step`th byte of the target, which ends at `end`. False when there are too few.
// What follows the last one fills the segment up, and is not looked at.
bool Unpack(std::span<const uint8_t> segment, uint8_t* target, const uint8_t* end, size_t step) {
    const uint8_t* source = segment.data();
    const uint8_t* sourceEnd = source + segment.size();
    auto left = (static_cast<size_t>(end - target) + step - 1) / step;
    while (left > 0 && source < sourceEnd) {
        const uint8_t code = *source++;
        if (code == kNothing) continue;
        const bool isRun = code > kNothing;
        const size_t count = std::min<size_t>(isRun ? kRepetitions - code : code + size_t{1}, left);
        const size_t taken = isRun ? 1 : count;
        if (static_cast<size_t>(sourceEnd - source) < taken) return false;
        if (isRun) {
            for (size_t i = 0; i < count; ++i) target[i * step] = *source;
        } else {
            for (size_t i = 0; i < count; ++i) target[i * step] = source[i];
        }
        source += taken;
        left -= count;
        if (left > 0) target += count * step;
    }
    return left == 0;
}

}  // namespace

bool RleFrame::Decode(size_t pixels, size_t colors, size_t sampleSize, std::vector<uint8_t>& samples) const {
    const size_t segments = colors * sampleSize;
    if (fBytes.size() < kTableSize || segments > kMostSegments || NumberAt(0) != segments) return false;
    if (pixels > fBytes.size() / kShortestRun * kLongestRun) return false;
    samples.resize(pixels * segments);
    for (size_t i = 0; i < segments; ++i) {
        const size_t color = i / sampleSize;
        const size_t significance = sampleSize - 1 - i % sampleSize;
        constexpr bool kIsLowByteFirst = std::endian::native == std::endian::little;
        const size_t place = kIsLowByteFirst ? significance : sampleSize - 1 - significance;
        uint8_t* start = samples.data() + color * pixels * sampleSize;
        const uint8_t* end = start + pixels * sampleSize;
        if (!Unpack(FindSegment(i, segments), start + place, end, sampleSize)) return false;
    }
    return true;
}

uint32_t RleFrame::NumberAt(size_t field) const {
    constexpr int kBitsOfByte = 8;
    uint32_t number = 0;
    for (size_t i = sizeof(number); i > 0; --i) {
        number = number << kBitsOfByte | fBytes[field * sizeof(number) + i - 1];
    }
    return number;
}

// Empty when the table leads out of the frame, or back.
std::span<const uint8_t> RleFrame::FindSegment(size_t index, size_t count) const {
    const size_t start = NumberAt(index + 1);
    const size_t end = index + 1 < count ? NumberAt(index + 2) : fBytes.size();
    if (start < kTableSize || start > end || end > fBytes.size()) return {};
    return fBytes.subspan(start, end - start);
}

}  // namespace VantorCli
