#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "dicom/TDicomDataSet.h"
#include "sr/SRCodedEntry.h"
#include "sr/SRTrace.h"
#include "sr/SequenceItems.h"
#include "wrappers/HostString.h"

namespace VantorWrappers {

// How the items of structured reports are read. Damage on the way throws Vantor::TException*.

inline constexpr uint32_t kCodeStringSize = 16;   // CS, and SH in codes
inline constexpr uint32_t kCodeMeaningSize = 64;  // LO
inline constexpr uint32_t kAnySize = std::numeric_limits<uint32_t>::max();

// The first `maxLength` bytes of a value without the blanks around them; none when it is absent. The text
// stands in the data set.
std::optional<std::string_view> ViewTrimmed(const Vantor::TDicomDataSet& item, Vantor::Tag tag,
                                            uint32_t maxLength);

// The same for people; "" when it is absent.
HostString ReadTrimmed(const Vantor::TDicomDataSet& item, Vantor::Tag tag, uint32_t maxLength);

// The same of a code string, in upper case.
std::string ReadCodeString(const Vantor::TDicomDataSet& item, Vantor::Tag tag);

// A moment (DT) as the host shows it; "" when it is absent or none.
HostString ReadMoment(const Vantor::TDicomDataSet& item, Vantor::Tag tag);

// What is traced when the first item of a sequence cannot be had.
struct FirstItemComplaints {
    struct Complaint {
        TraceLevel fLevel;
        const char* fText;
    };
    Complaint fNoSequence;
    Complaint fNoItems;
    Complaint fNoDataSet;  // the item has no content
};

// The first item of a sequence. None when it cannot be had, which is traced; `where()` gives what is added to
// the line.
template <typename Where>
std::optional<SequenceItems> FindFirstItem(const Vantor::TDicomDataSet& dataSet, Vantor::Tag sequence,
                                           const FirstItemComplaints& complaints, Where where) {
    const auto complain = [&](const FirstItemComplaints::Complaint& complaint) {
        TraceReport(complaint.fLevel, [&] { return std::string(complaint.fText) + where(); });
        return std::nullopt;
    };
    int32_t offset = 0;
    if (!dataSet.FindElement(sequence, nullptr, nullptr, nullptr, 0, &offset)) {
        return complain(complaints.fNoSequence);
    }
    SequenceItems items(dataSet, offset);
    if (!items.Next()) return complain(complaints.fNoItems);
    if (items.IsEmpty()) return complain(complaints.fNoDataSet);
    return items;
}

// Reads a code from an item that holds one. What is missing is traced.
SRCodedEntry ParseCodeSequenceMacro(const Vantor::TDicomDataSet& item);

}  // namespace VantorWrappers
