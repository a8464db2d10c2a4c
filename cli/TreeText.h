#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/Instances.h"
#include "cli/Text.h"

namespace VantorWrappers {
class DicomDirectory;
class PatientDirRec;
class SeriesDirRec;
class StudyDirRec;
}  // namespace VantorWrappers

namespace VantorCli {

class Console;

// Prints a directory with all its records as an indented tree, and at the end how many of each there are.
class TreeText {
  public:
    // Both must outlive this object.
    TreeText(const VantorWrappers::DicomDirectory& directory, Console& console);

    void Print();

  private:
    // The lines below a series, and what it holds, such as "3 images, 1 report".
    struct SeriesContent {
        std::string fText;
        std::string fCounts;
    };

    void PrintPatient(const VantorWrappers::PatientDirRec& patient);
    void PrintStudy(const VantorWrappers::StudyDirRec& study);
    SeriesContent ContentOf(const VantorWrappers::SeriesDirRec& series);
    void PrintTotals();

    const VantorWrappers::DicomDirectory& fDirectory;
    Console& fConsole;
    HostString fRoot;
    uint64_t fStudies = 0;
    uint64_t fSeries = 0;
    uint64_t fInstances = 0;
    Instances fWalk;
};

}  // namespace VantorCli
