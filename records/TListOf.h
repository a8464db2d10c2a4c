#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>
#include <stdexcept>
#include <unordered_set>
#include <vector>

#include "dicom/TRefCount.h"

namespace Vantor {

// A list of objects that it neither owns nor counts. Positions start at 1.
template <typename T>
class TListOf : public TRefCount {
  public:
    // The position that stands for "behind the last item".
    static constexpr int32_t kAtEnd = 0x7fffffff;

    int32_t GetCount() const { return static_cast<int32_t>(fItems.size()); }

    // Gives the item at a position. Position 0 is no item and leaves the output as it was; that answers true
    // as well. Throws std::out_of_range behind the last item.
    bool FetchItemAt(int32_t position, T*& item) const {
        if (position != 0) item = fItems.at(IndexOf(position));
        return true;
    }

    // Inserts before the item now at the position, or at the end (kAtEnd). Position 0 does nothing; one
    // behind the end throws std::out_of_range.
    void InsertItemAt(int32_t position, T* item) {
        if (position == 0) return;
        if (position == kAtEnd) position = GetCount() + 1;
        const size_t index = IndexOf(position);
        if (index > fItems.size()) throw std::out_of_range("TListOf::InsertItemAt");
        fItems.insert(fItems.begin() + static_cast<std::ptrdiff_t>(index), item);
        if (fIndex != nullptr) AddToIndex(item);
    }

    // The position of the first occurrence; 0 when there is none.
    int32_t FindItem(const T* item) const {
        const auto found = std::find(fItems.begin(), fItems.end(), item);
        return found == fItems.end() ? 0 : static_cast<int32_t>(found - fItems.begin()) + 1;
    }

    // As FindItem, without the position, in a time that does not grow with the list.
    bool HasItem(const T* item) const {
        if (fItems.size() < kIndexedFrom) return FindItem(item) != 0;
        if (fIndex == nullptr) fIndex = std::make_unique<Index>(fItems.begin(), fItems.end());
        return fIndex->find(item) != fIndex->end();
    }

    // Removes the first occurrence, if there is one.
    void RemoveItem(const T* item) {
        if (fIndex != nullptr && fIndex->count(item) == 1) {
            // The only one may as well be looked for from the end, where lists are mostly taken down.
            fItems.erase(std::next(std::find(fItems.rbegin(), fItems.rend(), item)).base());
            fIndex->erase(item);
            return;
        }
        const auto found = std::find(fItems.begin(), fItems.end(), item);
        if (found == fItems.end()) return;
        fItems.erase(found);
        if (fIndex != nullptr) fIndex->erase(fIndex->find(item));
    }

    // Removes every item for which the predicate is true.
    template <typename Predicate>
    void RemoveItemsIf(Predicate predicate) {
        std::erase_if(fItems, predicate);
        fIndex.reset();
    }

    void RemoveAllItems() {
        fItems.clear();
        fIndex.reset();
    }

    // Appends every item of the other list in its order; of no list, nothing.
    void AppendList(const TListOf* other) {
        if (other == nullptr) return;
        // By position: a list may be appended to itself.
        const size_t count = other->fItems.size();
        for (size_t index = 0; index < count; ++index) InsertItemAt(kAtEnd, other->fItems[index]);
    }

    // The items in their order, for loops that leave the list alone.
    auto begin() const { return fItems.cbegin(); }
    auto end() const { return fItems.cend(); }
    auto rbegin() const { return fItems.crbegin(); }
    auto rend() const { return fItems.crend(); }

  private:
    // From this length on a walk through the list costs more than an index.
    static constexpr size_t kIndexedFrom = 32;

    using Index = std::unordered_multiset<const T*>;

    // Without memory it does without an index.
    void AddToIndex(const T* item) {
        try {
            fIndex->insert(item);
        } catch (const std::bad_alloc&) {
            fIndex.reset();
        }
    }

    static size_t IndexOf(int32_t position) { return static_cast<size_t>(int64_t{position} - 1); }

    std::vector<T*> fItems;
    mutable std::unique_ptr<Index> fIndex;  // of all items; null until it is first needed
};

}  // namespace Vantor
