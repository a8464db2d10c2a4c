#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "host/AxDicomImage.h"
#include "wrappers/HostString.h"

namespace VantorWrappers {

// Records the images of up to six image views into one AVI movie, side by side in a grid. Every frame of the
// movie shows each view at the same point of its own cine loop; the movie plays at the speed of the longest
// one. See docs/movies.md for the file.
//
// The pictures come over the clipboard: nothing else may use it meanwhile. The work runs to its end on the
// caller's thread.
class StressAviMaker {
  public:
    using ImageViews = std::vector<VantorHost::AxDicomImage*>;

    // Makes the movie, in place of a file that is at the path. `handler` is the compressor's four-character
    // code with the first character in the lowest byte, "DIB " for none; `quality` is 0 to 100. The views are
    // not owned, and are left at the frame that the movie ended with. `width` and `height` receive the size
    // of the movie's frames: cells of the largest width and height of all views, 1 x 1, 2 x 1, 2 x 2 (three
    // and four views) or 3 x 2 (five and six) of them. They are 0, and there is no movie, with no view or
    // more than six.
    //
    // A failure is silent, but for a line in the media trace:
    // - A view that cannot put its picture on the clipboard, or is null, leaves its cell black in that frame.
    // - What cannot be written ends the movie: the frames that are written before are a shorter one. A movie
    //   that gets no frame at all, as with a compressor that is not there, is removed.
    // - A handler of 0 makes a file with a video stream and no frames.
    // Nothing is thrown, whatever the views throw.
    void MakeStressAviFile(const HostString& path, uint32_t handler, int32_t quality, const ImageViews& views,
                           int32_t& width, int32_t& height);

    // Addition: ends the movie that is being made, as if the next frame could not be written. For views, and
    // for other threads. Without a movie under way it does nothing.
    void Cancel() { fIsCancelled = true; }

    // Addition: how many frames the movie has that was made last, and how many it was to have: those of the
    // longest loop, none with a handler of 0. The first is smaller when the movie was cut short.
    int32_t GetFramesWritten() const { return fFramesWritten; }
    int32_t GetFramesWanted() const { return fFramesWanted; }

    // Addition: how many frames a second the movie shows that was made last. At least 1, also where the loops
    // take no time (stills) or have less than a frame a second; 0 when nothing could be begun.
    int32_t GetRate() const { return fRate; }

  private:
    std::atomic<bool> fIsCancelled = false;
    int32_t fFramesWritten = 0;
    int32_t fFramesWanted = 0;
    int32_t fRate = 0;
};

}  // namespace VantorWrappers
