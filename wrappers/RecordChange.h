#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>

#include "platform/CodePage.h"
#include "records/TDicomDoc.h"
#include "wrappers/Boundary.h"
#include "wrappers/HostString.h"

namespace VantorWrappers {

// Written when a record object is made of nothing.
inline constexpr char kNoNativeObject[] = "No pointer to unmanaged object, initialization can't be completed";

// Puts a new text into a record.
//
//     if (ChangeRecord(FindDoc(), "Not found, name not set.", name, &TPatientDoc::SetPatientName)) ...
//
// Gives the text as it was put there, trimmed and as long as a record can hold; none when there is no
// document, and then `warning` is written to the trace, or when the record has no room for it.
template <typename Doc, typename Setter>
std::optional<HostString> ChangeRecord(Doc* doc, const char* warning, const HostString& text, Setter setter) {
    if (doc == nullptr) {
        TraceWarning(warning);
        return std::nullopt;
    }
    std::string bytes = Vantor::Platform::FromHostText(Trimmed(text));
    bytes.resize(std::min(bytes.find('\0'), bytes.size()));
    bytes.resize(Vantor::Platform::CutPosition(bytes, Vantor::TDicomDoc::kLongestText));
    const auto failure = FailureOf([&] { (doc->*setter)(bytes.c_str()); });
    if (!failure) return Trimmed(Vantor::Platform::ToHostText(bytes));
    TraceError(*failure);
    return std::nullopt;
}

}  // namespace VantorWrappers
