#pragma once

#include <iterator>
#include <vector>

#include "wrappers/Boundary.h"
#include "wrappers/DicomDirectory.h"

namespace VantorWrappers {

// Empties a host's list and has `append` put a record object into it for each native document. False when one
// cannot be made; the list is short then, and the trace has a line. The host's hooks may look at the list
// meanwhile.
template <typename Rec, typename Docs, typename Append>
bool FillListWith(std::vector<Rec>& list, const Docs& docs, Append append) {
    std::vector<Rec> filled;
    filled.swap(list);  // with its room
    filled.clear();
    const auto failure = FailureOf([&] {
        filled.reserve(static_cast<size_t>(std::distance(docs.begin(), docs.end())));
        for (auto* doc : docs) append(filled, doc);
    });
    list.swap(filled);
    if (failure) TraceError(*failure);
    return !failure;
}

template <typename Rec, typename Docs>
bool FillList(std::vector<Rec>& list, const Docs& docs, DicomDirectory& directory) {
    return FillListWith(list, docs,
                        [&](std::vector<Rec>& filled, auto* doc) { filled.emplace_back(doc, directory); });
}

}  // namespace VantorWrappers
