#pragma once

#include <map>
#include <string_view>

#include "sr/SRCodedEntry.h"
#include "sr/SequenceItems.h"

namespace VantorWrappers {

// The codes of a report while it is being read. The same few name, qualify and measure thousands of its
// items: each is read once, and all that have it share it. The report's data set must outlive this object
// and stay as it is.
class SRCodeTable {
  public:
    // The code in the item that a walk has come to, as ParseCodeSequenceMacro reads it.
    SRCodedEntry Read(const SequenceItems& place);

  private:
    std::map<std::string_view, SRCodedEntry> fCodes;  // by the bytes of their items
};

}  // namespace VantorWrappers
