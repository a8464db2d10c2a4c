#include "directory/IdentityIndex.h"

#include <functional>
#include <optional>
#include <string>

#include "records/TDicomDoc.h"

namespace Vantor {

namespace {

// Of documents that can only be the same as themselves; nobody looks for it.
constexpr size_t kNoIdentity = 0;

std::optional<size_t> IdentityOf(const TDicomDoc& doc) {
    const std::string identity = doc.GetIdentity();
    if (identity.empty()) return std::nullopt;
    return std::hash<std::string>()(std::to_string(doc.GetDocType()) + identity);
}

}  // namespace

void IdentityIndex::Add(TDicomDoc* doc) {
    const Place place{IdentityOf(*doc).value_or(kNoIdentity), fNextNumber};
    if (!fPlaces.emplace(doc, place).second) return;
    fDocs.emplace(place, doc);
    ++fNextNumber;
}

void IdentityIndex::Remove(const TDicomDoc* doc) {
    const auto found = fPlaces.find(doc);
    if (found == fPlaces.end()) return;
    fDocs.erase(found->second);
    fPlaces.erase(found);
}

void IdentityIndex::Update(TDicomDoc* doc) {
    const auto found = fPlaces.find(doc);
    if (found == fPlaces.end()) return;
    Place& place = found->second;
    const size_t identity = IdentityOf(*doc).value_or(kNoIdentity);
    if (identity == place.fIdentity) return;
    fDocs.erase(place);
    place.fIdentity = identity;
    fDocs.emplace(place, doc);
}

TDicomDoc* IdentityIndex::Find(TDicomDoc* doc, const std::function<bool(const TDicomDoc&)>& counts) const {
    const auto identity = IdentityOf(*doc);
    if (!identity) return nullptr;
    for (auto next = fDocs.lower_bound({*identity, 0});
         next != fDocs.end() && next->first.fIdentity == *identity; ++next) {
        TDicomDoc* const candidate = next->second;
        const bool isSame = candidate->GetDocType() == doc->GetDocType() && candidate->IsSameRecord(doc);
        if (isSame && counts(*candidate)) return candidate;
    }
    return nullptr;
}

}  // namespace Vantor
