#include "tests/support/BitmapBuilder.h"

namespace VantorTest {

namespace {

void Append(Bytes& bytes, uint64_t number, size_t count = 4) {
    for (size_t index = 0; index < count; ++index)
        bytes.push_back(static_cast<uint8_t>(number >> (8 * index)));
}

}  // namespace

Bytes BitmapBuilder::Build(const std::function<uint32_t(int x, int y)>& pixelAt) const {
    Bytes bytes;
    Append(bytes, fHeaderSize);
    Append(bytes, static_cast<uint32_t>(fWidth));
    Append(bytes, static_cast<uint32_t>(fIsTopDown ? -fHeight : fHeight));
    Append(bytes, 1, 2);
    Append(bytes, fBits, 2);
    Append(bytes, fCompression);
    for (const uint32_t number : {0U, 2835U, 2835U, fColorsUsed, 0U}) Append(bytes, number);
    for (const uint32_t mask : fMasks) Append(bytes, mask);
    if (bytes.size() < fHeaderSize) bytes.resize(fHeaderSize);
    for (const uint32_t color : fColors) Append(bytes, color);

    for (int row = 0; row < fHeight; ++row) {
        const int y = fIsTopDown ? row : fHeight - 1 - row;
        const size_t start = bytes.size();
        uint32_t collected = 0, collectedBits = 0;
        for (int x = 0; x < fWidth; ++x) {
            if (fBits >= 8) {
                Append(bytes, pixelAt(x, y), fBits / 8);
                continue;
            }
            collected = collected << fBits | pixelAt(x, y);
            collectedBits += fBits;
            if (collectedBits == 8 || x == fWidth - 1) {
                bytes.push_back(static_cast<uint8_t>(collected << (8 - collectedBits)));
                collected = collectedBits = 0;
            }
        }
        while ((bytes.size() - start) % 4 != 0) bytes.push_back(0xEE);
    }
    return bytes;
}

}  // namespace VantorTest
