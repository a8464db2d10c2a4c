#include "tests/support/MediumFaults.h"

#include <filesystem>
#include <system_error>

namespace VantorTest {

using Vantor::Platform::FileException;
using Vantor::Platform::MediumChange;

void MediumFaults::BeforeChange(MediumChange change, const std::string& path, const std::string& to) {
    const std::lock_guard<std::mutex> guard(fLock);
    const bool isRefused = IsRefused(fCount++);
    if (isRefused && fEnd != nullptr) fEnd();
    if (isRefused) throw FileException(fCause, 0, to.empty() ? path : to);
    Note(change, path, to);
}

void MediumFaults::Note(MediumChange change, const std::string& path, const std::string& to) {
    switch (change) {
        case MediumChange::kCreateFile:
        case MediumChange::kWrite:
        case MediumChange::kSetLength:
            fUnflushed.insert(path);
            return;
        case MediumChange::kMove:
            fUnflushed.erase(to);
            if (fUnflushed.erase(path) > 0) fUnflushed.insert(to);
            return;
        default:
            fUnflushed.erase(path);
    }
}

void MediumFaults::LoseWhatIsNotFlushed() {
    for (const std::string& path : fUnflushed) {
        std::error_code failure;
        const auto size = std::filesystem::file_size(path, failure);
        if (!failure) std::filesystem::resize_file(path, size / 2);
    }
    fUnflushed.clear();
}

}  // namespace VantorTest
