#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

namespace Vantor {

class TDicomDoc;

// Finds documents by a text that is made of what they hold, in a time that does not grow with their number.
// Documents are not counted: who adds one removes it before it goes.
class DocIndex {
  public:
    // The text that a document is looked up by.
    using KeyOf = std::function<std::string(const TDicomDoc& doc)>;

    explicit DocIndex(KeyOf keyOf) : fKeyOf(std::move(keyOf)) {}

    // Adds a document behind all others.
    void Add(TDicomDoc* doc);

    // Each does nothing for a document that was not added. After what its text is made of has changed, a
    // document keeps its place.
    void Remove(const TDicomDoc* doc);
    void Update(TDicomDoc* doc);

    // The first one for which `accepts` is true, among those with that text and some with others; null when
    // there is none.
    TDicomDoc* Find(const std::string& key, const std::function<bool(TDicomDoc&)>& accepts) const;

  private:
    // By their text, and then in the order in which they were added.
    struct Place {
        size_t fKey;
        uint64_t fNumber;

        auto operator<=>(const Place&) const = default;
    };

    size_t HashOf(const TDicomDoc& doc) const;

    KeyOf fKeyOf;
    std::map<Place, TDicomDoc*> fDocs;
    std::unordered_map<const TDicomDoc*, Place> fPlaces;
    uint64_t fNextNumber = 0;
};

}  // namespace Vantor
