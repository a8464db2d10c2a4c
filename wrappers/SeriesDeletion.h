#pragma once

#include "wrappers/LuminaError.h"

namespace Vantor {
class TDicomDirectory;
class TSeriesDoc;
}  // namespace Vantor

namespace VantorWrappers {

// The deletion of one series from a directory, as DicomDirectory::DeleteSeries has it. The files go first,
// then the DICOMDIR forgets them: when the process ends in between, deleting again finishes it. A file that a
// record of another series names as well stays.
class SeriesDeletion {
  public:
    explicit SeriesDeletion(Vantor::TDicomDirectory& directory) : fDirectory(directory) {}

    // Deletes a series of the directory. Nothing is thrown; a failure writes a line to the trace.
    LuminaError Run(Vantor::TSeriesDoc& series);

  private:
    bool OpenForUpdating(Vantor::TSeriesDoc*& series);
    void Delete(Vantor::TSeriesDoc& series);
    LuminaError Fail(const char* line);

    Vantor::TDicomDirectory& fDirectory;
};

}  // namespace VantorWrappers
