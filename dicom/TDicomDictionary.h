#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "dicom/Tags.h"

namespace Vantor {

// An index over a dictionary text, in which each entry is a tag "(gggg,eeee)" with upper-case hexadecimal
// digits followed by fields such as VR="LO" or Name="Patient ID". Entries are expected in ascending order;
// in a text that is out of order, what lies behind a higher group is not found.
//
// The text is not copied: the caller keeps it unchanged as long as the index lives.
class TDicomDictionary {
  public:
    static constexpr uint32_t kMaximumEntries = 6144;

    TDicomDictionary(const char* text, uint32_t length);

    // Appends the value of a field ("VR=", "Name=") of a tag to `buffer` at `position`, cut at `capacity`,
    // each NUL as a space. Gives the new position; the same position when the tag or the field is absent.
    int32_t AppendField(Tag tag, std::string_view key, char* buffer, int32_t capacity,
                        int32_t position) const;

  private:
    void IndexEntries();
    const uint32_t* FindEntry(Tag tag) const;
    std::string_view TagTextAt(uint32_t entry) const;

    std::string_view fText;
    std::vector<uint32_t> fEntries;  // positions of '(' in the text, in the order of the text
    bool fIsSorted = true;           // the entries' tags ascend, as texts
};

}  // namespace Vantor
