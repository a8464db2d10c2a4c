#pragma once

#include <cstdint>
#include <string_view>

namespace VantorWrappers {

// How a content item stands to the one above it.
enum class SRRelationshipType : int32_t {
    UnknownRelationship = 0,
    ContainsRelationship = 1,
    HasPropertiesRelationship = 2,
    HasObsContextRelationship = 3,
    HasAcqContextRelationship = 4,
    InferredFromRelationship = 5,
    SelectedFromRelationship = 6,
    HasConceptModRelationship = 7,
};

// What a Relationship Type in upper case stands for; UnknownRelationship for any other text.
SRRelationshipType RelationshipTypeOf(std::string_view text);

// The name of a value as above; for hosts that write it down.
const char* NameOf(SRRelationshipType type);

}  // namespace VantorWrappers
