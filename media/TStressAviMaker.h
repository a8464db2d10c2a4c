#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "host/AxDicomImage.h"
#include "media/TMovieFrame.h"
#include "media/TMovieLayout.h"
#include "platform/VideoFile.h"

namespace Vantor {

// Makes a movie of image views side by side; what it does and how it fails, hosts read in
// wrappers/StressAviMaker.h. Views that are null have a cell, which stays black.
class TStressAviMaker {
  public:
    using Views = std::vector<VantorHost::AxDicomImage*>;

    // Asks the views for their sizes and loops. They are not owned and have to stay. `quality` is 0 to 100.
    TStressAviMaker(const Views& views, uint32_t handler, int32_t quality);

    // The movie ends when this becomes true, on whichever thread. It has to stay.
    void StopWhen(const std::atomic<bool>& isCancelled) { fIsCancelled = &isCancelled; }

    // Of the movie's frames; empty when there is nothing to make a movie of.
    const TMovieLayout& GetLayout() const { return fLayout; }

    // The frames of the movie, those of the longest loop; none with a handler of 0. And how many are shown in
    // a second: at least 1.
    int32_t GetFramesWanted() const { return HasFrames() ? fFrameCount : 0; }
    int32_t GetRate() const;

    // Makes the movie in place of a file that is at the path, and gives the number of its frames; with 0
    // there is no file, unless the handler is 0. Throws Platform::FileException when the file cannot be
    // created. Does nothing with an empty layout.
    int32_t MakeFile(const std::string& path);

    // Paints the frames one by one, each into the picture, and writes them to a movie file until one cannot
    // be written.
    void WriteFrames(Platform::VideoFile& file, TMovieFrame& picture);

    // What the headers of the movie say.
    Platform::VideoStream DescribeStream() const;

  private:
    bool IsCancelled() const { return fIsCancelled != nullptr && *fIsCancelled; }
    bool HasFrames() const { return fHandler != 0; }
    void Paint(int32_t frame, TMovieFrame& picture);
    void Draw(const uint8_t* bytes, size_t size, size_t view, TMovieFrame& picture) const;
    int32_t FrameOfView(size_t view, int32_t frame) const;

    Views fViews;
    std::vector<int32_t> fFrameCounts;  // by view
    uint32_t fHandler;
    int32_t fQuality;
    const std::atomic<bool>* fIsCancelled = nullptr;  // null when nobody can
    int32_t fFrameCount = 0;                          // the largest
    int32_t fCycleLength = 0;                         // the largest, in milliseconds
    TMovieLayout fLayout;
};

}  // namespace Vantor
