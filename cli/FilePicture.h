#pragma once

#include <cstdint>
#include <string>

#include "cli/FramePicture.h"
#include "wrappers/HostString.h"
#include "wrappers/ImageFrames.h"

namespace VantorCli {

// What an image file shows: one of its frames at a time, of which the picture stays in memory.
class FilePicture {
  public:
    // Throws what VantorWrappers::ImageFrames throws.
    explicit FilePicture(const VantorWrappers::HostString& path);

    const VantorWrappers::ImageDescription& GetDescription() const { return fFrames.GetDescription(); }

    // Puts a frame, counted from 1, on the clipboard as a device-independent bitmap. False when it cannot be
    // shown, or the clipboard cannot be had.
    bool PutOnClipboard(int32_t frame);

    // Why a frame could not be shown, the first one that could not, for a person; empty when all could.
    const std::string& GetProblem() const { return fProblem; }

  private:
    const DeviceBitmap* Draw(int32_t frame);

    VantorWrappers::ImageFrames fFrames;
    FramePicture fPicture;
    const DeviceBitmap* fShown = nullptr;  // null when the frame cannot be shown
    int32_t fShownFrame = 0;               // 0 before the first
    std::string fProblem;
};

}  // namespace VantorCli
