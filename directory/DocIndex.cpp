#include "directory/DocIndex.h"

#include "records/TDicomDoc.h"

namespace Vantor {

size_t DocIndex::HashOf(const TDicomDoc& doc) const { return std::hash<std::string>()(fKeyOf(doc)); }

void DocIndex::Add(TDicomDoc* doc) {
    const Place place{HashOf(*doc), fNextNumber};
    if (!fPlaces.emplace(doc, place).second) return;
    fDocs.emplace(place, doc);
    ++fNextNumber;
}

void DocIndex::Remove(const TDicomDoc* doc) {
    const auto found = fPlaces.find(doc);
    if (found == fPlaces.end()) return;
    fDocs.erase(found->second);
    fPlaces.erase(found);
}

void DocIndex::Update(TDicomDoc* doc) {
    const auto found = fPlaces.find(doc);
    if (found == fPlaces.end()) return;
    Place& place = found->second;
    const size_t key = HashOf(*doc);
    if (key == place.fKey) return;
    fDocs.erase(place);
    place.fKey = key;
    fDocs.emplace(place, doc);
}

TDicomDoc* DocIndex::Find(const std::string& key, const std::function<bool(TDicomDoc&)>& accepts) const {
    const size_t hash = std::hash<std::string>()(key);
    for (auto next = fDocs.lower_bound({hash, 0}); next != fDocs.end() && next->first.fKey == hash; ++next) {
        if (accepts(*next->second)) return next->second;
    }
    return nullptr;
}

}  // namespace Vantor
