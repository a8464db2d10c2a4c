#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "records/TStudyDoc.h"
#include "wrappers/HostString.h"

namespace VantorWrappers {

// Texts of native documents as hosts have them, and back.

// The buffers that texts are read through.
inline constexpr uint32_t kNameSize = 65;
inline constexpr uint32_t kTextSize = 257;

// A native text, without the blanks around it.
inline HostString ReadBytes(std::string_view bytes) {
    return Vantor::Platform::ToHostText(Vantor::Platform::Trimmed(bytes));
}

// What a getter of a native object puts into a buffer of `size` characters, at most kTextSize; "" when it has
// nothing.
template <typename Native, typename Getter>
HostString ReadUntrimmed(Native& native, Getter getter, uint32_t size) {
    char buffer[kTextSize] = {};
    return (native.*getter)(buffer, size) ? Vantor::Platform::ToHostText(buffer) : HostString();
}

template <typename Native, typename Getter>
HostString ReadText(Native& native, Getter getter, uint32_t size) {
    char buffer[kTextSize] = {};
    if (!(native.*getter)(buffer, size)) return {};
    return ReadBytes(buffer);
}

// A UID that a getter without a size gives.
template <typename Native, typename Getter>
HostString ReadUid(Native& native, Getter getter) {
    char buffer[kTextSize] = {};
    if (!(native.*getter)(buffer)) return {};
    return ReadBytes(buffer);
}

// The full path of a document's file; "" without one.
HostString ReadFilePath(Vantor::TDicomDoc& doc);

// The date of a study as stored: eight digits, if it is one. And its time of day, HH:MM, not trimmed.
HostString ReadStoredDate(const Vantor::TStudyDoc& study);
HostString ReadStudyTime(const Vantor::TStudyDoc& study);

// A study's date in the host's short form. The form of 0001-01-01 for a text that is no eight digits of a
// day.
HostString ShortDateOf(const HostString& storedDate);

}  // namespace VantorWrappers
