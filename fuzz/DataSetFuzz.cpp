// Arbitrary bytes as a data set: searched, iterated, followed into items, dumped, converted and changed. The
// first byte chooses the transfer syntax.

#include "dicom/TDicomDataSet.h"
#include "fuzz/FuzzInput.h"

namespace {

using namespace Vantor;

constexpr char kDictionary[] =
    "(0008,0060)\tVR=\"CS\"\tName=\"Modality\"\n"
    "(0008,2112)\tVR=\"SQ\"\tName=\"Source Image Sequence\"\n"
    "(0010,0010)\tVR=\"PN\"\tName=\"Patient's Name\"\n"
    "(0028,0010)\tVR=\"US\"\tName=\"Rows\"\n";
constexpr int kDepthFollowed = 4;
constexpr char kCreator[] = "QUANTIX";

void VisitItems(const TDicomDataSet& dataSet, int32_t sequence, int depth);

void Visit(const TDicomDataSet& dataSet, int depth) {
    Tag tag;
    VrCode vr = 0;
    uint32_t length = 0;
    uint8_t value[40];
    int32_t offset = TDicomDataSet::kFromStart;
    while (dataSet.GetNextElement(offset, &tag.fGroup, &tag.fElement, &vr, &length, value, sizeof(value),
                                  &offset)) {
        dataSet.FindElement(tag, &vr, &length, value, sizeof(value));
        if (vr == Vr::kSQ || vr == Vr::kUN || vr == Vr::kNotKnown || vr == Vr::kOB) {
            VantorFuzz::Run([&] { VisitItems(dataSet, offset, depth); });
        }
    }
}

void VisitItems(const TDicomDataSet& dataSet, int32_t sequence, int depth) {
    if (depth >= kDepthFollowed) return;
    int32_t itemOffset = TDicomDataSet::kFromStart;
    uint32_t itemLength = 0;
    while (dataSet.FindNextItem(sequence, itemOffset, itemLength, &itemOffset, &itemLength)) {
        const auto size = static_cast<int32_t>(itemLength);
        auto* bytes = const_cast<uint8_t*>(dataSet.GetDataSet()) + itemOffset;
        const TDicomDataSet item(dataSet.IsExplicit(), dataSet.IsBigEndian(), bytes, size, size);
        VantorFuzz::Run([&] { Visit(item, depth + 1); });
    }
}

void Change(TDicomDataSet& dataSet) {
    using VantorFuzz::Run;
    Run([&] { dataSet.PutElement(Tags::kModality, Vr::kCS, 2, "us", 2); });
    Run([&] { dataSet.DeleteElement(0x0010, 0x0010); });
    Run([&] { dataSet.AddPrivateGroup(0x0021, kCreator, 7); });
    Run([&] { dataSet.PutPrivateElement(0x0021, kCreator, 0xA6, Vr::kUN, 4, "data", 4); });
    Run([&] { dataSet.CountPrivateElements(0x0021, kCreator); });
    Run([&] {
        int32_t sequence = 0;
        if (!dataSet.FindElement(Tags::kSourceImageSequence, nullptr, nullptr, nullptr, 0, &sequence)) return;
        dataSet.AddItem(sequence, "itembyte", 8);
        int32_t itemOffset = 0;
        uint32_t itemLength = 0;
        if (dataSet.FindNextItem(sequence, -1, 0, &itemOffset, &itemLength)) {
            dataSet.DeleteItem(sequence, itemOffset, itemLength);
        }
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const bool isExplicit = (data[0] & 1) != 0;
    const bool isBigEndian = (data[0] & 2) != 0;
    auto bytes = VantorFuzz::ExactCopy(data + 1, size - 1);
    const auto used = static_cast<int32_t>(bytes.size());
    TDicomDataSet wrapping(isExplicit, isBigEndian, bytes.data(), used, used);
    if ((data[0] & 4) != 0) wrapping.SetDictionary(kDictionary, sizeof(kDictionary) - 1);

    VantorFuzz::Run([&] { wrapping.FindElement(Tags::kPixelData); });
    VantorFuzz::Run([&] { wrapping.CountElements(); });
    VantorFuzz::Run([&] { Visit(wrapping, 0); });
    VantorFuzz::Run([&] {
        std::vector<char> text(4096);
        wrapping.Dump(0, text.data(), static_cast<int32_t>(text.size()), 0, kDictionary,
                      sizeof(kDictionary) - 1);
    });
    VantorFuzz::Run([&] {
        const auto same = wrapping.ConvertTo(isExplicit, isBigEndian, 64, 4096, 0, 0);
        Change(*same);
        const auto other = same->ConvertTo(!isExplicit, !isBigEndian, 64, 4096, 0, 0);
        Visit(*other, 0);
    });
    Change(wrapping);
    return 0;
}
