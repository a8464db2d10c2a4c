#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "cli/Command.h"

namespace VantorCli {

class FileImage;

// vantor movie: records images side by side into an AVI movie.
class MovieCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
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
    std::filesystem::path RequirePlace() const;
    void RequireSize(const Images& images, uint32_t codec) const;
    Movie MakeAt(const std::filesystem::path& path, const Images& images, uint32_t codec,
                 Console& console) const;
    void RequireDone(const std::error_code& error) const;
    Movie Make(const std::filesystem::path& path, const Images& images, uint32_t codec,
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
