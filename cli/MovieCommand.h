#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/Command.h"

namespace VantorCli {

class FileImage;

// vantor movie: records images side by side into an AVI movie.
class MovieCommand : public Command {
  public:
    CLI::App* AddTo(CLI::App& program) override;
    ExitStatus Run(Console& console) override;

  private:
    using Images = std::vector<std::unique_ptr<FileImage>>;

    // What became of a movie.
    struct Movie {
        int32_t fWidth = 0;
        int32_t fHeight = 0;
        int32_t fFrames = 0;
        int32_t fRate = 0;
    };

    static constexpr int32_t kUsualQuality = 85;

    uint32_t FindCodec() const;
    bool OpenImages(Images& images, Console& console) const;
    void RequirePlace(const std::filesystem::path& path) const;
    void RequireSize(const Images& images, uint32_t codec) const;
    Movie Make(const Images& images, uint32_t codec, const std::filesystem::path& path,
               Console& console) const;
    void Show(const Movie& movie, uint32_t codec, Console& console) const;

    std::string fPath;
    std::vector<std::string> fFiles;
    std::string fCodec;
    int32_t fQuality = kUsualQuality;
    bool fIsForced = false;
    bool fIsJson = false;
};

}  // namespace VantorCli
