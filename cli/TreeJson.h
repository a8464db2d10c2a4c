#pragma once

namespace VantorWrappers {
class DicomDirectory;
}

namespace VantorCli {

class Console;

// Prints a directory with all its records as one JSON object on one line.
void PrintTreeAsJson(const VantorWrappers::DicomDirectory& directory, Console& console);

}  // namespace VantorCli
