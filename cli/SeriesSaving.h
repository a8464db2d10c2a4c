#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/ExitStatus.h"
#include "cli/SeriesImages.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/SeriesSaver.h"

namespace VantorCli {

class Console;

// What the commands that save a series have in common.
class SeriesSaving {
  public:
    // The images of the series with this UID. Ends the command when there is no such series, or no image in
    // it. The console must outlive this object.
    SeriesSaving(const VantorWrappers::DicomDirectory& directory, const std::string& uid, Console& console);

    const VantorWrappers::SeriesDirRec& GetSeries() const { return fSeries; }

    // Saves them, by what is given, with a bar that shows how far that is.
    using Save = std::function<VantorWrappers::LuminaError(
        VantorWrappers::SeriesSaver& saver, std::vector<VantorWrappers::ImageDirRec>& images,
        const VantorWrappers::SeriesSaver::ImageControls& controls)>;
    void Run(const Save& save);

    // Tells how it ended, and of which series: of this one when `savedUID` is empty.
    ExitStatus Show(const HostString& savedUID, bool isJson) const;

    // What the series holds beside the images, which alone are saved: `fate` says what becomes of it.
    void ReportOthers(const char* fate) const;

  private:
    std::string ToText(const HostString& uid) const;
    void ReportFailures() const;

    VantorWrappers::SeriesDirRec fSeries;
    std::vector<VantorWrappers::ImageDirRec> fRecords;
    SeriesImages fImages;
    Console& fConsole;
    VantorWrappers::LuminaError fError;
};

}  // namespace VantorCli
