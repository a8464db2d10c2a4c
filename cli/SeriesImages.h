#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cli/FileImage.h"
#include "cli/Text.h"
#include "wrappers/ImageDirRec.h"

namespace VantorCli {

// The image controls of a series that is saved.
class SeriesImages {
  public:
    // One for each image, in that order.
    explicit SeriesImages(const std::vector<VantorWrappers::ImageDirRec>& images);

    // As a saver takes them; they live as long as this object.
    const std::vector<VantorHost::AxDicomImage*>& GetControls() const { return fControls; }

    // Waits for what is still being written, and completes references between the images. True when that
    // succeeded.
    bool Finish();

    // What became of them, after Finish: a line for each image that was tried and not saved, "FILE: reason".
    size_t CountSaved() const { return fSavedCount; }
    const std::vector<std::string>& GetFailures() const { return fFailures; }

  private:
    std::shared_ptr<VantorWrappers::SavedImages> fSavedImages;
    std::vector<std::unique_ptr<FileImage>> fImages;
    std::vector<VantorHost::AxDicomImage*> fControls;
    size_t fSavedCount = 0;
    std::vector<std::string> fFailures;
};

}  // namespace VantorCli
