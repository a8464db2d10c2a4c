#pragma once

#include <cstdint>
#include <span>

#include "dicom/Tags.h"
#include "dicom/Vr.h"

namespace Vantor {

// What becomes of an element when an instance is de-identified.
enum class DeIdentificationAction : uint8_t {
    kStay,
    kRemove,
    kBlank,          // without a value
    kDummy,          // a value that means nothing takes the place of one
    kRemoveOrBlank,  // as kRemove; as kBlank where reports must name it
    kRemoveOrDummy,  // as kRemove; as kDummy in kinds of instances that must have a value
    kBlankOrDummy,
    kReplaceUids,  // each but the standard's own
};

// An attribute that is not treated as others of its VR are.
struct DeIdentificationRow {
    Tag fTag;
    VrCode fVr;  // for data sets that do not say it
    DeIdentificationAction fAtLevel1;
    DeIdentificationAction fAtLevel2;
};

// All such attributes, in ascending order of their tags. docs/deidentification.md shows the same.
std::span<const DeIdentificationRow> GetDeIdentificationTable();

}  // namespace Vantor
