#pragma once

#include <filesystem>
#include <system_error>

namespace VantorCli {

// A file that is being made: in a folder of its own beside its place, so that nobody takes a part for the
// whole, and no file of anybody else is in the way. All of it goes with this object unless it is finished.
class UnfinishedFile {
  public:
    // Makes the folder; why that failed is GetError. `path` is where the file is to be.
    explicit UnfinishedFile(std::filesystem::path path);
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    const std::error_code& GetError() const { return fError; }

    // Where to make it; its name ends as the final one does.
    const std::filesystem::path& GetPath() const { return fUnfinished; }

    // Puts it in its place, instead of a file that may be there.
    std::error_code Finish();

  private:
    std::filesystem::path fPath;
    std::filesystem::path fFolder;  // empty when it could not be made
    std::filesystem::path fUnfinished;
    std::error_code fError;
};

}  // namespace VantorCli
