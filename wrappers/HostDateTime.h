#pragma once

#include <chrono>
#include <stdexcept>

namespace VantorWrappers {

// A moment in the local time of whoever recorded it; DICOM dates and times carry no zone.
using HostDateTime = std::chrono::local_seconds;

// A date or time value whose text is no date or time.
class FormatError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace VantorWrappers
