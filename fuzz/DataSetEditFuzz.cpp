// Arbitrary bytes as the elements of a data set, and of an item in one, that is de-identified. The first byte
// chooses encoding and level, the second where the planted texts stand. What comes out must be elements
// again, must not change when the same is done once more, and must not hold what was planted.

#include <string>
#include <string_view>

#include "dicom/TDeIdentification.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using VantorFuzz::Require;
using VantorTest::Bytes;
using VantorTest::ElementBuilder;

constexpr char kName[] = "QVARK^ZBYSZKO";
constexpr char kNameInText[] = "seen: Zbyszko, Qvark.";
constexpr char kNumber[] = "XQ-73517-Z";
constexpr std::string_view kPlanted[] = {kName, "Zbyszko", kNumber};
constexpr Tag kDescription{0x0018, 0x1060};
constexpr Tag kPrivate{0x0019, 0x1001};
constexpr std::string_view kReplacedRoot = "2.25.";

bool HoldsPlanted(std::span<const uint8_t> bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    for (const std::string_view planted : kPlanted)
        if (text.find(planted) != std::string_view::npos) return true;
    return false;
}

std::string ReplaceUid(std::string_view uid) {
    if (uid.starts_with(kReplacedRoot)) return std::string(uid);
    return std::string(kReplacedRoot) + std::to_string(uid.size());
}

void CheckElements(const Bytes& bytes, Encoding encoding) {
    ElementReader reader(bytes, encoding);
    while (const auto element = reader.PeekHeader()) reader.Skip(*element);
    Require(reader.GetPosition() == bytes.size());
}

void CheckUnchanged(const Bytes& bytes, Encoding encoding) {
    // Group lengths are made right, so only the second time nothing changes.
    const Bytes once = TDataSetEdit().Apply(bytes, encoding);
    Require(once.size() == bytes.size());
    Require(TDataSetEdit().Apply(once, encoding) == once);
}

void CheckDeIdentified(const Bytes& bytes, Encoding encoding, TDeIdentification::Level level, bool holds) {
    const TDeIdentification rule(level, ReplaceUid, bytes, encoding);
    TDataSetEdit edit;
    edit.SetRule(rule);
    rule.Mark(edit);
    edit.Put(Tags::kPatientName, Vr::kPN, "Anonymous");
    const Bytes once = edit.Apply(bytes, encoding);
    // From here on nothing may fail.
    try {
        CheckElements(once, encoding);
        Require(edit.Apply(once, encoding) == once);
    } catch (TException*) {
        Require(false);
    }
    if (!holds) Require(!HoldsPlanted(once));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const bool isBigEndian = (data[0] & 2) != 0;
    const Encoding encoding{(data[0] & 1) != 0 || isBigEndian, isBigEndian};
    const auto level =
        (data[0] & 4) != 0 ? TDeIdentification::Level::kPhysicians : TDeIdentification::Level::kPatient;
    const auto lengths =
        (data[1] & 1) != 0 ? ElementBuilder::Lengths::kUndefined : ElementBuilder::Lengths::kDefined;
    const char* syntax = isBigEndian            ? Uids::kExplicitVRBigEndian
                         : encoding.fIsExplicit ? Uids::kExplicitVRLittleEndian
                                                : Uids::kImplicitVRLittleEndian;
    const Bytes input = VantorFuzz::ExactCopy(data + 2, size - 2);
    const Bytes item = ElementBuilder(syntax)
                           .Text(kDescription, Vr::kLO, kNameInText)
                           .Text(kPrivate, Vr::kUT, kName)
                           .Raw(input)
                           .GetBytes();
    const Bytes planted = ElementBuilder(syntax)
                              .Text(Tags::kPatientName, Vr::kPN, kName)
                              .Text(Tags::kPatientID, Vr::kLO, kNumber)
                              .Text(kDescription, Vr::kLO, kNumber)
                              .Sequence(Tags::kSourceImageSequence, {item}, lengths)
                              .Raw((data[1] & 2) != 0 ? input : Bytes())
                              .GetBytes();
    VantorFuzz::Run([&] { CheckUnchanged(input, encoding); });
    VantorFuzz::Run([&] { CheckDeIdentified(input, encoding, level, true); });
    VantorFuzz::Run([&] { CheckDeIdentified(planted, encoding, level, HoldsPlanted(input)); });
    return 0;
}
