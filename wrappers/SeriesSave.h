#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Trace.h"
#include "wrappers/SeriesSaver.h"

namespace Vantor {
class TDicomDirectory;
class TImageDoc;
class TSeriesDoc;
}  // namespace Vantor

namespace VantorWrappers {

// What saving a series in place and saving a copy of it have in common.
class SeriesSave {
  public:
    SeriesSave(const SeriesSave&) = delete;
    SeriesSave& operator=(const SeriesSave&) = delete;

  protected:
    using Images = std::vector<ImageDirRec>;
    using ImageControls = SeriesSaver::ImageControls;

    // `stallLimit`: how many times in a row a control may be found to have written nothing, before its end is
    // not waited for any more. `result` is given the last failure.
    SeriesSave(const SeriesSaver& saver, LuminaError& result, VantorHost::TraceArea area, int32_t stallLimit);
    ~SeriesSave() = default;

    void Trace(VantorHost::TraceLevel level, std::string_view line) const;
    void Fail(ErrorSeverity severity, ErrorNumber number, const std::string& line);
    void SendStatus(int32_t images, int32_t image, int32_t frames, int32_t frame, SaveAsState state) const;

    // The record and the control of an image. Null when it has none, which is noted.
    Vantor::TImageDoc* FindImage(const ImageDirRec& image);
    VantorHost::AxDicomImage* FindControl(const ImageControls& controls, size_t index);

    // A UID for the next image of a series. One series is numbered at a time.
    std::string MakeImageUID(Vantor::TSeriesDoc& series);

    // Has a control write its image, the one at `index` of `count`, and waits for it. False when it failed,
    // which is noted.
    bool Write(VantorHost::AxDicomImage& control, size_t index, size_t count);

    // True when the last Write did not return, but its control had begun to write.
    bool IsUnderWay() const { return fIsUnderWay; }

    // Waits for a control that is under way, without telling anybody; as Write does, not forever.
    void WaitQuietly(const VantorHost::AxDicomImage& control) const;

    // False for a path that no file of the directory may be written to (TFilePlaces::MayBeWritten), which is
    // noted. The directory may be null.
    bool MayBeWritten(Vantor::TDicomDirectory* directory, const std::string& path);

    // Writes the DICOMDIR at the end. `operation` is its name in the trace.
    void WriteDirectory(DicomDirectory& directory, const char* operation);

  private:
    bool Wait(const VantorHost::AxDicomImage& control, int32_t frames, int32_t image, int32_t images) const;

    const SeriesSaver& fSaver;
    LuminaError& fResult;
    VantorHost::TraceArea fArea;
    int32_t fStallLimit;
    bool fIsUnderWay = false;

    // The series that is numbered, how many images it had when its last UID was made, and that UID's last
    // component.
    const Vantor::TSeriesDoc* fNumbered = nullptr;
    int32_t fImageCount = 0;
    int32_t fLastComponent = 0;
};

}  // namespace VantorWrappers
