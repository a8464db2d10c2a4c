#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "wrappers/DriveInfo.h"
#include "wrappers/LuminaError.h"

namespace Vantor {
class TDicomDirectory;
class TSeriesDoc;
}  // namespace Vantor
namespace Vantor::Platform {
class FileException;
}

namespace VantorWrappers {

// The copying of one series into a directory, as DicomDirectory::CopySeries has it: in short steps, so that
// the host can show how far it is.
class SeriesCopy {
  public:
    // Told between the steps, in units of 1,024 bytes. False when the destination has gone away meanwhile.
    using Progress = std::function<bool(int32_t copiedKB, int32_t totalKB)>;

    // `drive`: the one that the destination is on, or null.
    SeriesCopy(Vantor::TDicomDirectory& destination, const DriveInfo* drive, Progress progress);

    // Copies a series of another directory, which the destination does not have. Nothing is thrown. Each
    // failure writes a line to the trace; the first one counts.
    LuminaError Run(Vantor::TSeriesDoc& series);

  private:
    void CopyFiles(Vantor::TSeriesDoc& series);
    void Stop(ErrorNumber number, const std::string& line);
    void Fail(ErrorNumber number, const std::string& line);
    void FailOnFile(const Vantor::Platform::FileException& error);
    bool HasFolderOf(const std::string& fileName) const;
    bool HasRootFolder() const;
    void GiveUp(Vantor::TSeriesDoc& series);
    void TakeOut(Vantor::TSeriesDoc& series);
    void WriteDirectory(Vantor::TSeriesDoc& series);
    void FailToWrite(Vantor::TSeriesDoc& series, const std::string& line);

    Vantor::TDicomDirectory* fDestination;  // null once it has gone away, or another copy has ended this one
    const DriveInfo* fDrive;
    Progress fProgress;
    LuminaError fResult;
    bool fIsStopped = false;  // there is nothing to be written
};

}  // namespace VantorWrappers
