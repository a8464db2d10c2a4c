#include "tests/support/DirectoryBuilder.h"

#include <unordered_map>

namespace VantorTest {

using namespace Vantor;

namespace {

constexpr char kMediaStorageDirectory[] = "1.2.840.10008.1.3.10";
constexpr char kUltrasoundMultiFrame[] = "1.2.840.10008.5.1.4.1.1.3.1";
constexpr uint32_t kItemHeaderSize = 8;
constexpr uint32_t kSequenceHeaderSize = 12;
constexpr uint32_t kImplicitHeaderSize = 8;

std::string Uid(std::string_view level, int number) {
    return "1.2.3." + std::string(level) + "." + std::to_string(number);
}

}  // namespace

DirectoryBuilder::DirectoryBuilder(std::string_view transferSyntaxUID, Lengths lengths)
    : fTransferSyntax(transferSyntaxUID), fLengths(lengths) {}

int DirectoryBuilder::Add(int parent, std::string_view recordType) {
    fRecords.push_back({parent, std::string(recordType), ElementBuilder(fTransferSyntax), {}, {}, true});
    return static_cast<int>(fRecords.size()) - 1;
}

int DirectoryBuilder::AddPatient(int number) {
    const int record = Add(kRoot, "PATIENT ");
    Keys(record)
        .Text(Tags::kPatientName, Vr::kPN, "Patient^" + std::to_string(number))
        .Text(Tags::kPatientID, Vr::kLO, "ID" + std::to_string(number));
    return record;
}

int DirectoryBuilder::AddStudy(int patient, int number) {
    const int record = Add(patient, "STUDY ");
    Keys(record)
        .Text(Tags::kStudyDate, Vr::kDA, "20240315")
        .Text(Tags::kStudyTime, Vr::kTM, "101500")
        .Text(Tags::kStudyInstanceUID, Vr::kUI, Uid("1", number))
        .Text(Tags::kStudyID, Vr::kSH, std::to_string(number));
    return record;
}

int DirectoryBuilder::AddSeries(int study, int number, std::string_view modality) {
    const int record = Add(study, "SERIES");
    Keys(record)
        .Text(Tags::kModality, Vr::kCS, modality)
        .Text(Tags::kSeriesInstanceUID, Vr::kUI, Uid("2", number))
        .Text(Tags::kSeriesNumber, Vr::kIS, std::to_string(number));
    return record;
}

int DirectoryBuilder::AddInstance(int series, int number, std::string_view recordType) {
    const int record = Add(series, recordType);
    Keys(record)
        .Text(Tags::kReferencedFileID, Vr::kCS, "IMAGES\\" + std::to_string(number))
        .Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, kUltrasoundMultiFrame)
        .Text(Tags::kReferencedSOPInstanceUIDInFile, Vr::kUI, Uid("3", number))
        .Text(Tags::kInstanceNumber, Vr::kIS, std::to_string(number));
    return record;
}

void DirectoryBuilder::PointNext(int record, int target, int bytesOff) {
    fRecords.at(static_cast<size_t>(record)).fNext = {target, bytesOff};
}

void DirectoryBuilder::PointLower(int record, int target, int bytesOff) {
    fRecords.at(static_cast<size_t>(record)).fLower = {target, bytesOff};
}

void DirectoryBuilder::PointRoot(int target, int bytesOff) { fRootTarget = {target, bytesOff}; }

void DirectoryBuilder::SetInUse(int record, bool isInUse) {
    fRecords.at(static_cast<size_t>(record)).fIsInUse = isInUse;
}

uint32_t DirectoryBuilder::OffsetOf(int record) const {
    return MeasureOffsets().at(static_cast<size_t>(record));
}

Bytes DirectoryBuilder::Encode(const Record& record, uint32_t next, uint32_t lower) const {
    ElementBuilder item(fTransferSyntax);
    item.Numbers32(Tags::kNextRecordOffset, Vr::kUL, {next})
        .Numbers16(Tags::kRecordInUseFlag, Vr::kUS, {static_cast<uint16_t>(record.fIsInUse ? 0xFFFF : 0)})
        .Numbers32(Tags::kLowerLevelOffset, Vr::kUL, {lower})
        .Text(Tags::kDirectoryRecordType, Vr::kCS, record.fType)
        .Raw(record.fKeys.GetBytes());
    return item.GetBytes();
}

FileBuilder DirectoryBuilder::Start() const {
    FileBuilder file(fTransferSyntax, kMediaStorageDirectory);
    file.Data().Text(Tags::kFileSetID, Vr::kCS, "TESTMEDIUM");
    return file;
}

// Everything has a fixed size but the keys.
std::vector<uint32_t> DirectoryBuilder::MeasureOffsets() const {
    FileBuilder file = Start();
    file.Data().Numbers32(Tags::kFirstRootRecordOffset, Vr::kUL, {0});
    const bool isImplicit = fTransferSyntax == Uids::kImplicitVRLittleEndian;
    uint32_t offset = static_cast<uint32_t>(file.Build().size());
    offset += isImplicit ? kImplicitHeaderSize : kSequenceHeaderSize;
    std::vector<uint32_t> offsets;
    for (const Record& record : fRecords) {
        offsets.push_back(offset);
        offset += kItemHeaderSize + static_cast<uint32_t>(Encode(record, 0, 0).size());
        if (fLengths == Lengths::kUndefined) offset += kItemHeaderSize;
    }
    return offsets;
}

Bytes DirectoryBuilder::Build() const {
    const std::vector<uint32_t> offsets = MeasureOffsets();
    const auto at = [&](const Target& target) {
        return offsets.at(static_cast<size_t>(target.fRecord)) + static_cast<uint32_t>(target.fBytesOff);
    };
    std::vector<uint32_t> next(fRecords.size());
    std::vector<uint32_t> lower(fRecords.size());
    std::unordered_map<int, size_t> lastChild;
    uint32_t root = 0;
    for (size_t index = 0; index < fRecords.size(); ++index) {
        const int parent = fRecords[index].fParent;
        const auto [previous, isFirst] = lastChild.emplace(parent, index);
        if (isFirst) {
            (parent == kRoot ? root : lower[static_cast<size_t>(parent)]) = offsets[index];
        } else {
            next[previous->second] = offsets[index];
            previous->second = index;
        }
    }
    std::vector<Bytes> items;
    for (size_t index = 0; index < fRecords.size(); ++index) {
        const Record& record = fRecords[index];
        items.push_back(Encode(record, record.fNext ? at(*record.fNext) : next[index],
                               record.fLower ? at(*record.fLower) : lower[index]));
    }
    FileBuilder file = Start();
    file.Data()
        .Numbers32(Tags::kFirstRootRecordOffset, Vr::kUL, {fRootTarget ? at(*fRootTarget) : root})
        .Sequence(Tags::kDirectoryRecordSequence, items, fLengths);
    return file.Build();
}

}  // namespace VantorTest
