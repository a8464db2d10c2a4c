#include "platform/windows/PositionedFile.h"

#include <windows.h>

#include <algorithm>
#include <vector>

#include "platform/windows/SystemError.h"

namespace Vantor::Platform {

namespace {

// Larger transfers to a network drive may find the system short of resources.
constexpr size_t kLargestTransfer = size_t{16} * 1024 * 1024;
constexpr int64_t kZerosAtOnce = int64_t{64} * 1024;

uint32_t TransferSize(size_t count) { return static_cast<uint32_t>(std::min(count, kLargestTransfer)); }

}  // namespace

size_t PositionedFile::Read(void* buffer, size_t count) {
    auto* const bytes = static_cast<char*>(buffer);
    size_t done = 0;
    while (done < count) {
        const uint32_t got = ReadAt(fPosition, bytes + done, TransferSize(count - done));
        if (got == 0) {
            break;
        }
        done += got;
        fPosition += got;
    }
    return done;
}

void PositionedFile::Write(const void* bytes, size_t count) {
    if (count == 0) {
        return;
    }
    if (fMayBeBehindEnd) {
        FillWithZeros(GetLength(), fPosition);
        fMayBeBehindEnd = false;
    }
    WriteAllAt(fPosition, bytes, count);
    fPosition += static_cast<int64_t>(count);
}

void PositionedFile::Seek(int64_t position) {
    RequireOffset(position);
    fPosition = position;
    fMayBeBehindEnd = true;
}

void PositionedFile::SetLength(int64_t length) {
    RequireOffset(length);
    const int64_t before = GetLength();
    Resize(length);
    FillWithZeros(before, length);
    fMayBeBehindEnd = true;
}

void PositionedFile::WriteAllAt(int64_t position, const void* bytes, size_t count) {
    const auto* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const uint32_t put = WriteAt(position, next, TransferSize(count));
        next += put;
        position += put;
        count -= put;
    }
}

void PositionedFile::FillWithZeros(int64_t from, int64_t to) {
    const std::vector<char> zeros(static_cast<size_t>(std::clamp<int64_t>(to - from, 0, kZerosAtOnce)));
    while (from < to) {
        const int64_t count = std::min(to - from, kZerosAtOnce);
        WriteAllAt(from, zeros.data(), static_cast<size_t>(count));
        from += count;
    }
}

void PositionedFile::RequireOffset(int64_t offset) const {
    if (offset < 0) {
        ThrowFileError(ERROR_NEGATIVE_SEEK, fPath);
    }
}

}  // namespace Vantor::Platform
