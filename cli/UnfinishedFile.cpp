#include "cli/UnfinishedFile.h"

#include <random>
#include <string>
#include <utility>

namespace VantorCli {

namespace {

namespace fs = std::filesystem;

constexpr int kAttempts = 100;

std::string AnyName() {
    static std::random_device random;
    return "VNT" + std::to_string(random()) + ".part";
}

}  // namespace

// Making a folder fails when there is anything of its name, also a link.
UnfinishedFile::UnfinishedFile(fs::path path) : fPath(std::move(path)) {
    for (int attempt = 0; attempt < kAttempts && fFolder.empty(); ++attempt) {
        const fs::path folder = fPath.parent_path() / AnyName();
        if (fs::create_directory(folder, fError)) fFolder = folder;
        if (fError) return;
    }
    fUnfinished = fFolder / fs::path("file").replace_extension(fPath.extension());
}

UnfinishedFile::~UnfinishedFile() {
    if (fFolder.empty()) return;
    std::error_code ignored;
    fs::remove(fUnfinished, ignored);
    fs::remove(fFolder, ignored);
}

std::error_code UnfinishedFile::Finish() {
    std::error_code error;
    fs::rename(fUnfinished, fPath, error);
    return error;
}

}  // namespace VantorCli
