#pragma once

#include <vector>

#include "records/TListOf.h"
#include "wrappers/Boundary.h"
#include "wrappers/DicomDirectory.h"

namespace VantorWrappers {

// Empties a host's list and has `append` put a record object into it for each native document. False when one
// cannot be made; the list is short then, and the trace has a line.
template <typename Rec, typename Doc, typename Append>
bool FillListWith(std::vector<Rec>& list, const Vantor::TListOf<Doc>& docs, Append append) {
    list.clear();
    const auto failure = FailureOf([&] {
        list.reserve(static_cast<size_t>(docs.GetCount()));
        for (Doc* doc : docs) append(doc);
    });
    if (failure) TraceError(*failure);
    return !failure;
}

template <typename Rec, typename Doc>
bool FillList(std::vector<Rec>& list, const Vantor::TListOf<Doc>& docs, DicomDirectory& directory) {
    return FillListWith(list, docs, [&](Doc* doc) { list.emplace_back(doc, directory); });
}

}  // namespace VantorWrappers
