// Arbitrary bytes as a dictionary: what is found for a tag stands in the text, and a data set is dumped with
// it, with room for all of the dump and for some.

#include <algorithm>
#include <string>

#include "dicom/TDicomDataSet.h"
#include "dicom/TDicomDictionary.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using VantorFuzz::Require;

constexpr Tag kTags[] = {
    Tags::kModality, Tags::kPatientName, Tags::kSourceImageSequence, {0x0021, 0x0010}, {0xFFFF, 0xFFFF}};
constexpr int32_t kCapacities[] = {0, 1, 7, 100};
constexpr char kMark = '\x01';

void LookUp(const TDicomDictionary& dictionary, Tag tag, std::string_view key, const std::string& text) {
    for (const int32_t capacity : kCapacities) {
        std::vector<char> buffer(static_cast<size_t>(capacity) + 1, kMark);
        const int32_t end = dictionary.AppendField(tag, key, buffer.data(), capacity, 0);
        Require(end >= 0 && end <= capacity);
        Require(std::count(buffer.begin() + end, buffer.end(), kMark) == capacity + 1 - end);
        Require(text.find(std::string(buffer.data(), static_cast<size_t>(end))) != std::string::npos);
    }
}

void Dump(const std::vector<uint8_t>& bytes) {
    const VantorTest::Bytes item =
        VantorTest::ElementBuilder().Text(Tags::kModality, Vr::kCS, "US").GetBytes();
    VantorTest::Bytes elements = VantorTest::ElementBuilder()
                                     .Text(Tags::kModality, Vr::kCS, "SR")
                                     .Sequence(Tags::kSourceImageSequence, {item})
                                     .Text(Tags::kPatientName, Vr::kPN, "Doe^Jane")
                                     .GetBytes();
    const auto size = static_cast<int32_t>(elements.size());
    const TDicomDataSet dataSet(true, false, elements.data(), size, size);
    for (const size_t room : {size_t{8192}, size_t{40}}) {
        std::vector<char> text(room);
        dataSet.Dump(0, text.data(), static_cast<int32_t>(room), 0,
                     reinterpret_cast<const char*>(bytes.data()), static_cast<uint32_t>(bytes.size()));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<uint8_t> bytes = VantorFuzz::ExactCopy(data, size);
    const auto* const start = reinterpret_cast<const char*>(bytes.data());
    const TDicomDictionary dictionary(start, static_cast<uint32_t>(bytes.size()));
    std::string text(bytes.begin(), bytes.end());
    std::replace(text.begin(), text.end(), '\0', ' ');
    for (const Tag tag : kTags) {
        for (const char* const key : {"VR=", "Name="}) LookUp(dictionary, tag, key, text);
    }
    Dump(bytes);
    return 0;
}
