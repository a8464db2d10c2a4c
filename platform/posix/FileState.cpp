#include "platform/posix/FileState.h"

#include "platform/LaterTime.h"

namespace Vantor::Platform {

namespace {

constexpr int64_t kNanosecondsPerUnit = 100;
constexpr int64_t kSecondsFrom1601To1970 = 11'644'473'600;

}  // namespace

FileTime LastWriteTimeOf(const struct stat& state) {
    return TimeOf((state.st_mtim.tv_sec + kSecondsFrom1601To1970) * kTimeUnitsPerSecond +
                  state.st_mtim.tv_nsec / kNanosecondsPerUnit);
}

FileMark MarkOf(const struct stat& state) {
    return {LastWriteTimeOf(state), state.st_size, state.st_dev, state.st_ino};
}

timespec SystemTimeOf(const FileTime& time) {
    const int64_t units = UnitsOf(time);
    timespec result = {};
    result.tv_sec = units / kTimeUnitsPerSecond - kSecondsFrom1601To1970;
    result.tv_nsec = units % kTimeUnitsPerSecond * kNanosecondsPerUnit;
    return result;
}

}  // namespace Vantor::Platform
