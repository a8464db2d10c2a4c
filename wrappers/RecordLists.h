#pragma once

#include <vector>

#include "records/TListOf.h"
#include "wrappers/Boundary.h"
#include "wrappers/DicomDirectory.h"

namespace VantorWrappers {

// Empties a host's list and fills it with a record object for each native document.
template <typename Rec, typename Doc>
void FillList(std::vector<Rec>& list, const Vantor::TListOf<Doc>& docs, DicomDirectory& directory) {
    list.clear();
    const auto failure = FailureOf([&] {
        list.reserve(static_cast<size_t>(docs.GetCount()));
        for (Doc* doc : docs) list.emplace_back(doc, directory);
    });
    if (failure) TraceError(*failure);
}

}  // namespace VantorWrappers
