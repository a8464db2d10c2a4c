#pragma once

#include <cstdint>

namespace Vantor {

// Turns DICOM date and time values into text for display. Has no data; make one where it is needed.
class TVRUtil {
  public:
    // How DicomDateToCString arranges a date. Any other number is kMonthFirst.
    static constexpr int32_t kMonthFirst = 0;   // MM/DD/YYYY
    static constexpr int32_t kDayFirst = 1;     // DD/MM/YYYY
    static constexpr int32_t kEightDigits = 3;  // YYYYMMDD, as stored

    static constexpr uint32_t kDateOutputSize = 11;
    static constexpr uint32_t kTimeOutputSize = 6;

    // `date` is a DA value of eight characters; a shorter one, ended by a NUL, gives what it has, the rest
    // as NULs. Nothing is written unless outputSize is at least kDateOutputSize.
    void DicomDateToCString(const char* date, char* output, uint32_t outputSize, int32_t format) const;

    // `time` is a TM value of at least four characters, HHMM; gives HH:MM. Nothing is written unless
    // outputSize is at least kTimeOutputSize.
    void DicomTimeToCString(const char* time, char* output, uint32_t outputSize) const;
};

}  // namespace Vantor
