#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dicom/TDicomDataSet.h"
#include "dicom/TException.h"
#include "tests/support/TestFolder.h"

namespace VantorTest {

// An empty data set of an encoding, with room to grow.
inline std::unique_ptr<Vantor::TDicomDataSet> NewDataSet(bool isExplicit, bool isBigEndian) {
    return std::make_unique<Vantor::TDicomDataSet>(isExplicit, isBigEndian, 64, 64, 0, 0);
}

// The bytes in use.
inline Bytes BytesOf(const Vantor::TDicomDataSet& dataSet) {
    const uint8_t* start = dataSet.GetDataSet();
    return Bytes(start, start + dataSet.GetDataSetSize());
}

inline void PutText(Vantor::TDicomDataSet& dataSet, Vantor::Tag tag, Vantor::VrCode vr,
                    const std::string& text) {
    const auto length = static_cast<uint32_t>(text.size());
    dataSet.PutElement(tag, vr, length, text.data(), length);
}

// An element's value as text, "(absent)" without it.
inline std::string TextOf(const Vantor::TDicomDataSet& dataSet, Vantor::Tag tag) {
    char value[512] = {};
    uint32_t length = 0;
    if (!dataSet.FindElement(tag, nullptr, &length, value, sizeof(value))) return "(absent)";
    return std::string(value, length);
}

// The text of the TException that a call throws, with its number: "102 Invalid…"; "nothing" without one.
inline std::string ThrownBy(const std::function<void()>& call) {
    try {
        call();
    } catch (Vantor::TException* thrown) {
        const std::unique_ptr<Vantor::TException> error(thrown);
        return std::to_string(error->GetErrorNumber()) + " " + error->GetErrorText();
    }
    return "nothing";
}

}  // namespace VantorTest
