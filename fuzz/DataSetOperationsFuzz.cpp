// A program of arbitrary operations on one data set, owning or wrapping. The first byte says its form and
// encoding, the next two how many bytes it starts with; these bytes follow, then the program. Offsets and
// lengths are those that the data set has reported, stale ones among them, or any.

#include <functional>
#include <iterator>

#include "dicom/TDicomDataSet.h"
#include "fuzz/FuzzInput.h"

namespace {

using namespace Vantor;

constexpr char kDictionary[] =
    "(0008,0060)\tVR=\"CS\"\tName=\"Modality\"\n"
    "(0008,2112)\tVR=\"SQ\"\tName=\"Source Image Sequence\"\n";
constexpr Tag kTags[] = {Tags::kModality, Tags::kSourceImageSequence, {0x0021, 0x0010}, {0x0021, 0x0000}};
constexpr VrCode kVrs[] = {Vr::kCS, Vr::kSQ, Vr::kUL, Vr::kUS, Vr::kOW, Vr::kUN, Vr::kFD, Vr::kUI};
constexpr const char* kCreators[] = {"QUANTIX", "QUANTIX 2"};
constexpr uint32_t kCreatorLength = 7;
constexpr int32_t kMaximumSize = 0x20000;
constexpr uint32_t kGrowBy = 16;

class Machine {
  public:
    Machine(const uint8_t* data, size_t size) : fInput(data, size) {
        const uint8_t form = fInput.Byte();
        fContent = fInput.Take(fInput.Word());
        const auto used = static_cast<int32_t>(fContent.size());
        const bool isExplicit = (form & 1) != 0;
        const bool isBigEndian = (form & 2) != 0;
        if ((form & 8) != 0) {
            fSet = std::make_unique<TDicomDataSet>(isExplicit, isBigEndian, fContent.data(), used, used);
        } else {
            fSet = std::make_unique<TDicomDataSet>(isExplicit, isBigEndian, form, kGrowBy, kMaximumSize, 0);
            fSet->SetDataSetSize(used);
            std::copy(fContent.begin(), fContent.end(), fSet->GetDataSet());
        }
        if ((form & 4) != 0) fSet->SetDictionary(kDictionary, sizeof(kDictionary) - 1);
    }

    bool HasMore() const { return fInput.HasMore(); }

    void Step() {
        const uint8_t operation = fInput.Byte();
        const uint8_t choice = fInput.Byte();
        const Tag tag = choice < 0xF0 ? kTags[choice % std::size(kTags)] : Tag{fInput.Word(), fInput.Word()};
        const auto group = static_cast<uint16_t>(tag.fGroup + choice % 2);
        const char* creator = kCreators[choice / 4 % std::size(kCreators)];
        VrCode vr = choice < 0xE0 ? kVrs[choice / 4 % std::size(kVrs)] : fInput.Word();
        const auto at = static_cast<int32_t>(Number());
        const auto item = static_cast<int32_t>(Number());
        const uint32_t count = Number();
        std::vector<uint8_t> bytes = fInput.Take(count % 0x100);
        const auto room = static_cast<uint32_t>(bytes.size());
        const uint32_t length = choice % 8 == 7 ? count : room;
        auto* text = reinterpret_cast<char*>(bytes.data());
        uint8_t place = choice;
        int32_t offset = TDicomDataSet::kFromStart;
        uint32_t found = 0;

        TDicomDataSet& set = *fSet;
        const std::function<void()> operations[] = {
            [&] { set.PutElement(tag, vr, length, bytes.data(), room, &offset); },
            [&] { set.DeleteElement(tag.fGroup, tag.fElement); },
            [&] { set.FindElement(tag, &vr, &found, bytes.data(), room, &offset); },
            [&] { set.GetNextElement(at, nullptr, nullptr, &vr, &found, bytes.data(), room, &offset); },
            [&] { offset = set.GetNextElementOffset(at); },
            [&] { found = set.GetElementLength(at) + set.GetElementVR(at); },
            [&] { set.AddPrivateGroup(group, creator, kCreatorLength); },
            [&] { set.PutPrivateElement(group, creator, place, vr, length, bytes.data(), room, &offset); },
            [&] { set.DeletePrivateElement(group, creator, place); },
            [&] { set.FindPrivateElement(group, creator, &place, &vr, &found, text, room, &offset); },
            [&] { set.GetNextPrivateElement(group, creator, at, &place, &vr, &found, text, room, &offset); },
            [&] { set.CountPrivateElements(group, creator); },
            [&] { set.AddItem(at, bytes.data(), room); },
            [&] { set.FindNextItem(at, item, count, &offset, &found); },
            [&] { set.DeleteItem(at, item, count); },
            [&] { found = set.GetItemLength(item); },
            [&] { set.CountItemsInSequence(at); },
            [&] { set.Dump(at, text, static_cast<int32_t>(room), 0, kDictionary, sizeof(kDictionary) - 1); },
            [&] { fSet = set.ConvertTo(choice & 1, choice & 2, choice, kGrowBy, kMaximumSize, 0); },
            [&] { set.SetDataSetSize(static_cast<int32_t>(count % kMaximumSize)); },
            [&] { found = static_cast<uint32_t>(set.CountElements() + set.CountElementsInGroup(group)); }};
        VantorFuzz::Run(operations[operation % std::size(operations)]);
        fReported.insert(fReported.end(), {static_cast<uint32_t>(offset), found});
    }

  private:
    // An offset or length that was reported, a small one, or any.
    uint32_t Number() {
        const uint8_t choice = fInput.Byte();
        if (choice < 0x80 && !fReported.empty())
            return fReported[fReported.size() - 1 - choice % fReported.size()];
        if (choice == 0xFF) return fInput.Number();
        return choice == 0xFE ? fInput.Word() : choice % 0x80;
    }

    VantorFuzz::Choices fInput;
    std::vector<uint8_t> fContent;
    std::unique_ptr<TDicomDataSet> fSet;
    std::vector<uint32_t> fReported;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    Machine machine(data, size);
    while (machine.HasMore()) machine.Step();
    return 0;
}
