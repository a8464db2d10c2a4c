#pragma once

#include <string>
#include <string_view>

#include "platform/File.h"
#include "platform/FileException.h"

namespace VantorTest {

// How a call on a file fails, as one text: "D:\DICOMDIR: access denied"; "nothing" when it succeeds.
template <typename Call>
std::string FailureOf(Call call) {
    try {
        call();
    } catch (const Vantor::Platform::FileException& failure) {
        return failure.what();
    }
    return "nothing";
}

// What is left to read in a small file.
inline std::string ReadRest(Vantor::Platform::File& file) {
    std::string text(1000, '?');
    text.resize(file.Read(text.data(), text.size()));
    return text;
}

inline void WriteText(Vantor::Platform::File& file, std::string_view text) {
    file.Write(text.data(), text.size());
}

}  // namespace VantorTest
