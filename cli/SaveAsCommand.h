#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/Command.h"
#include "cli/Text.h"

namespace VantorWrappers {
class DicomDirectory;
class SaveAsInfo;
class SeriesDirRec;
}  // namespace VantorWrappers

namespace VantorCli {

// vantor save-as: saves a copy of the images of a series as a new series.
class SaveAsCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    using Text = std::optional<HostString>;  // none when it is not given

    void AddTexts(const CommandLine& line);
    VantorWrappers::SaveAsInfo MakeInfo(const VantorWrappers::SeriesDirRec& series) const;
    void TakeSource(const VantorWrappers::SeriesDirRec& series, VantorWrappers::SaveAsInfo& info) const;
    void TakeGiven(VantorWrappers::SaveAsInfo& info) const;

    std::string fPath;
    std::string fSeries;
    std::string fDestination;
    Text fPatientName;
    Text fPatientID;
    Text fAccession;
    Text fStudyID;
    Text fStudyDescription;
    Text fSeriesNumber;
    Text fSeriesDescription;
    bool fIsNewStudy = false;
    bool fIsAnonymous = false;
    bool fErasesPhysicians = false;
    bool fIsJson = false;
};

}  // namespace VantorCli
