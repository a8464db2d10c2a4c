#include "sr/SRRelationshipType.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace VantorWrappers {

namespace {

struct Relationship {
    SRRelationshipType fType;
    const char* fName;
    std::string_view fText;  // as reports have it
};

using enum SRRelationshipType;

// In the order of their numbers.
constexpr std::array<Relationship, 8> kRelationships = {{
    {UnknownRelationship, "UnknownRelationship", ""},
    {ContainsRelationship, "ContainsRelationship", "CONTAINS"},
    {HasPropertiesRelationship, "HasPropertiesRelationship", "HAS PROPERTIES"},
    {HasObsContextRelationship, "HasObsContextRelationship", "HAS OBS CONTEXT"},
    {HasAcqContextRelationship, "HasAcqContextRelationship", "HAS ACQ CONTEXT"},
    {InferredFromRelationship, "InferredFromRelationship", "INFERRED FROM"},
    {SelectedFromRelationship, "SelectedFromRelationship", "SELECTED FROM"},
    {HasConceptModRelationship, "HasConceptModRelationship", "HAS CONCEPT MOD"},
}};

}  // namespace

SRRelationshipType RelationshipTypeOf(std::string_view text) {
    const auto found = std::find_if(kRelationships.begin(), kRelationships.end(),
                                    [&](const Relationship& each) { return each.fText == text; });
    return found != kRelationships.end() ? found->fType : UnknownRelationship;
}

const char* NameOf(SRRelationshipType type) { return kRelationships.at(static_cast<size_t>(type)).fName; }

}  // namespace VantorWrappers
