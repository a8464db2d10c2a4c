#pragma once

#include <memory>
#include <ostream>
#include <string>

#include "dicom/TDicomDataSet.h"
#include "dicom/TException.h"
#include "dicom/Uids.h"
#include "platform/FileException.h"
#include "tests/support/TestFolder.h"

namespace VantorTest {

// How a call fails, as one text: "102 Invalid Dicom File" for a TException, "image file: disk is full" for a
// FileException, "nothing" for neither. Anything else passes and fails the test.
template <typename Call>
std::string ThrownBy(Call call) {
    try {
        call();
    } catch (Vantor::TException* thrown) {
        const std::unique_ptr<Vantor::TException> error(thrown);
        return std::to_string(error->GetErrorNumber()) + " " + error->GetErrorText();
    } catch (const Vantor::Platform::FileException& error) {
        return error.what();
    }
    return "nothing";
}

// The encodings of data sets, each with a transfer syntax that has it.
struct Encoding {
    const char* fTransferSyntax;
    bool fIsExplicit;
    bool fIsBigEndian;
};

inline void PrintTo(const Encoding& encoding, std::ostream* out) {
    *out << (encoding.fIsExplicit ? "explicit" : "implicit") << (encoding.fIsBigEndian ? " big" : " little");
}

inline constexpr Encoding kEncodings[] = {{Vantor::Uids::kExplicitVRLittleEndian, true, false},
                                          {Vantor::Uids::kImplicitVRLittleEndian, false, false},
                                          {Vantor::Uids::kExplicitVRBigEndian, true, true}};

// An empty data set of an encoding, with room to grow.
inline std::unique_ptr<Vantor::TDicomDataSet> NewDataSet(bool isExplicit = true, bool isBigEndian = false) {
    return std::make_unique<Vantor::TDicomDataSet>(isExplicit, isBigEndian, 64, 64, 0, 0);
}

// A data set over bytes, which must outlive it.
inline Vantor::TDicomDataSet Over(Bytes& bytes, bool isExplicit = true, bool isBigEndian = false) {
    const auto size = static_cast<int32_t>(bytes.size());
    return {isExplicit, isBigEndian, bytes.data(), size, size};
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

}  // namespace VantorTest
