#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <unordered_map>

namespace Vantor {

class TDicomDoc;

// Finds the document that is the same record as another one (TDicomDoc::IsSameRecord), in a time that does
// not grow with the number of documents. Documents are not counted: who adds one removes it before it goes.
class IdentityIndex {
  public:
    // Adds a document behind all others.
    void Add(TDicomDoc* doc);

    // Each does nothing for a document that was not added. After what makes it the same record as others has
    // changed, a document keeps its place.
    void Remove(const TDicomDoc* doc);
    void Update(TDicomDoc* doc);

    // The first one for which `counts` is true and that is the same record; null when there is none, and for
    // a document that has nothing to be looked up by.
    TDicomDoc* Find(TDicomDoc* doc, const std::function<bool(const TDicomDoc&)>& counts) const;

  private:
    // By what documents are looked up, and then in the order in which they were added.
    struct Place {
        size_t fIdentity;
        uint64_t fNumber;

        auto operator<=>(const Place&) const = default;
    };

    std::map<Place, TDicomDoc*> fDocs;
    std::unordered_map<const TDicomDoc*, Place> fPlaces;
    uint64_t fNextNumber = 0;
};

}  // namespace Vantor
