#pragma once

#include <cstdint>

namespace VantorWrappers {

enum class SaveAsState : int32_t { Stopped = 0, Starting = 1, Running = 2, Stopping = 3 };

// How far the saving of a series is. Images and frames are counted from 1; 0 when none is at hand.
class SaveAsEventArgs {
  public:
    SaveAsEventArgs(int32_t totalImages, int32_t currentImage, int32_t totalFrames, int32_t currentFrame,
                    SaveAsState currentState)
        : fTotalImages(totalImages),
          fCurrentImage(currentImage),
          fTotalFrames(totalFrames),
          fCurrentFrame(currentFrame),
          fCurrentState(currentState) {}

    int32_t GetTotalImages() const { return fTotalImages; }
    int32_t GetCurrentImage() const { return fCurrentImage; }
    int32_t GetTotalFrames() const { return fTotalFrames; }
    int32_t GetCurrentFrame() const { return fCurrentFrame; }
    SaveAsState GetCurrentState() const { return fCurrentState; }

    bool operator==(const SaveAsEventArgs&) const = default;

  private:
    int32_t fTotalImages;
    int32_t fCurrentImage;
    int32_t fTotalFrames;
    int32_t fCurrentFrame;
    SaveAsState fCurrentState;
};

}  // namespace VantorWrappers
