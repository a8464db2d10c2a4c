#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Vantor {

class TSeriesDoc;
class TStudyDoc;

// Makes UIDs for new studies, series and instances. Has no data; make one where it is needed.
//
// No component of a new UID starts with a zero, which the standard forbids: such a zero becomes a one. A UID
// is made from what is there already, not checked against it.
class TDicomUtils {
  public:
    virtual ~TDicomUtils() = default;

    // The organisation's root with its dot, or the last component of it alone.
    std::string GetRootUID(bool longForm) const;

    // A study UID from the first components of `seed`, a UID that may be empty, up to the first long one;
    // with a seed that gives too little, from the root. The local date (without the year) and time to the
    // second follow. Its length is not limited.
    std::string CreateNewStudyUID(std::string_view seed) const;

    // The study's UID with a last component above those of its series, and the series' UID with one above
    // those of its images. At most kMaximumUidLength characters; of a longer one its two ends are kept.
    std::string CreateNewSeriesUID(TStudyDoc& study) const;
    std::string CreateNewImageUID(TSeriesDoc& series) const;

    // The two steps of the latter, for who makes many in a row: the largest last component among the images,
    // 0 without any, and the UID with the component after `last`.
    int32_t GetLastImageComponent(TSeriesDoc& series) const;
    std::string CreateImageUIDAfter(int32_t last, const TSeriesDoc& series) const;

    // The number behind the last dot; 0 when there is no dot behind the first character.
    int32_t GetLastComponent(std::string_view uid) const;

    // Turns the leading zero of each component of two digits or more into a one, but for a zero at the very
    // end.
    std::string FixLeadingZeros(std::string_view uid) const;
};

}  // namespace Vantor
