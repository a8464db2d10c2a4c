#include "cli/FilePicture.h"

#include <new>

#include "wrappers/BitmapClipboard.h"

namespace VantorCli {

FilePicture::FilePicture(const VantorWrappers::HostString& path)
    : fFrames(path), fPicture(fFrames.GetDescription()) {}

// A still, or a loop that is slower than others, is shown again and again.
bool FilePicture::PutOnClipboard(int32_t frame) {
    if (frame != fShownFrame) {
        fShown = nullptr;
        fShownFrame = frame;
        fShown = Draw(frame);
    }
    return fShown != nullptr && VantorWrappers::BitmapClipboard::Put(fShown->GetBytes());
}

const DeviceBitmap* FilePicture::Draw(int32_t frame) {
    std::string problem = fPicture.GetProblem();
    try {
        const DeviceBitmap* drawn = nullptr;
        if (problem.empty() && fFrames.LoadFrame(frame)) drawn = fPicture.Draw(fFrames.GetFrame());
        if (drawn != nullptr) return drawn;
        if (problem.empty()) problem = "frame " + std::to_string(frame) + " is damaged or missing";
    } catch (const std::bad_alloc&) {
        problem = "there is not enough memory for frame " + std::to_string(frame);
    }
    if (fProblem.empty()) fProblem = problem;
    return nullptr;
}

}  // namespace VantorCli
