#include "platform/MediumWatch.h"

#include <atomic>

#include "platform/FileException.h"

namespace Vantor::Platform {

namespace {

std::atomic<MediumWatch*>& CurrentWatch() {
    static std::atomic<MediumWatch*> watch = nullptr;
    return watch;
}

}  // namespace

PlacedMediumWatch::PlacedMediumWatch(MediumWatch& watch) : fPrevious(CurrentWatch().exchange(&watch)) {}

PlacedMediumWatch::~PlacedMediumWatch() { CurrentWatch() = fPrevious; }

void AnnounceChange(MediumChange change, const std::string& path, const std::string& to) {
    if (MediumWatch* const watch = CurrentWatch()) watch->BeforeChange(change, path, to);
}

bool MayChange(MediumChange change, const std::string& path) noexcept {
    try {
        AnnounceChange(change, path);
        return true;
    } catch (const FileException&) {
        return false;
    }
}

}  // namespace Vantor::Platform
