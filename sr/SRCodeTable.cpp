#include "sr/SRCodeTable.h"

#include "sr/SRItemReader.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;

namespace {

// True for a code that lacks nothing that would have to be traced for each item that has it.
bool IsComplete(const SRCodedEntry& code) {
    return !code.GetCodeValue().empty() && !code.GetCodingSchemeDesignator().empty() &&
           !code.GetCodeMeaning().empty();
}

}  // namespace

SRCodedEntry SRCodeTable::Read(const SequenceItems& place) {
    const auto known = fCodes.find(place.GetBytes());
    if (known != fCodes.end()) return known->second;
    const TDicomDataSet item = place.Wrap();
    SRCodedEntry code = ParseCodeSequenceMacro(item);
    if (IsComplete(code)) fCodes.emplace(place.GetBytes(), code);
    return code;
}

}  // namespace VantorWrappers
