#include "wrappers/StressAviMaker.h"

#include <optional>
#include <string>

#include "host/Trace.h"
#include "media/TStressAviMaker.h"
#include "platform/CodePage.h"
#include "wrappers/Boundary.h"

namespace VantorWrappers {

namespace {

void TraceMedia(VantorHost::TraceLevel level, const std::string& text) {
    VantorHost::Trace::Write(VantorHost::TraceArea::kMedia, level, text);
}

}  // namespace

void StressAviMaker::MakeStressAviFile(const HostString& path, uint32_t handler, int32_t quality,
                                       const ImageViews& views, int32_t& width, int32_t& height) {
    fIsCancelled = false;
    fFramesWritten = 0;
    fFramesWanted = 0;
    fRate = 0;
    width = 0;
    height = 0;
    const auto failure = FailureOf([&] {
        Vantor::TStressAviMaker maker(views, handler, quality);
        maker.StopWhen(fIsCancelled);
        width = maker.GetLayout().GetWidth();
        height = maker.GetLayout().GetHeight();
        if (maker.GetLayout().IsEmpty()) return;
        fFramesWanted = maker.GetFramesWanted();
        fRate = maker.GetRate();
        fFramesWritten = maker.MakeFile(Vantor::Platform::FromHostText(path));
    });
    if (failure) {
        TraceMedia(VantorHost::TraceLevel::kError, "MakeStressAviFile: " + *failure);
    } else if (fFramesWritten < fFramesWanted) {
        TraceMedia(VantorHost::TraceLevel::kWarning, "MakeStressAviFile: " + std::to_string(fFramesWritten) +
                                                         " of " + std::to_string(fFramesWanted) +
                                                         " frames written");
    }
}

}  // namespace VantorWrappers
