#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/FileBuilder.h"

namespace VantorTest {

// Composes a DICOMDIR from records that are added in the order in which they are to stand in the file. Each
// points at its first child and at its next sibling, unless it is told to point elsewhere; damage is welcome.
//
//     DirectoryBuilder media;
//     const int patient = media.Add(DirectoryBuilder::kRoot, "PATIENT ");
//     media.Keys(patient).Text(Tags::kPatientID, Vr::kLO, "17");
//     folder.WriteFile("DICOMDIR", media.Build());
class DirectoryBuilder {
  public:
    using Lengths = ElementBuilder::Lengths;

    static constexpr int kRoot = -1;

    explicit DirectoryBuilder(std::string_view transferSyntaxUID = Vantor::Uids::kExplicitVRLittleEndian,
                              Lengths lengths = Lengths::kDefined);

    // Adds a record as the last child of another, or on the top level, and gives its number: 0, 1, 2 …
    int Add(int parent, std::string_view recordType);

    // Adds a record with the keys of its level, a text that tells it from others of its type among them:
    // Patient ID and Name, UIDs and numbers ending in `number`, and for instances the file IMAGES\`number`.
    int AddPatient(int number);
    int AddStudy(int patient, int number);
    int AddSeries(int study, int number, std::string_view modality = "US");
    int AddInstance(int series, int number, std::string_view recordType = "IMAGE ");

    // What follows the record type in a record.
    ElementBuilder& Keys(int record) { return fRecords.at(static_cast<size_t>(record)).fKeys; }

    // Makes a record point elsewhere: at another record's start plus a number of bytes.
    void PointNext(int record, int target, int bytesOff = 0);
    void PointLower(int record, int target, int bytesOff = 0);
    void PointRoot(int target, int bytesOff = 0);
    void SetInUse(int record, bool isInUse);

    // Where a record starts in the file.
    uint32_t OffsetOf(int record) const;

    Bytes Build() const;

  private:
    struct Target {
        int fRecord;
        int fBytesOff;
    };
    struct Record {
        int fParent;
        std::string fType;
        ElementBuilder fKeys;
        std::optional<Target> fNext;
        std::optional<Target> fLower;
        bool fIsInUse = true;
    };

    FileBuilder Start() const;
    Bytes Encode(const Record& record, uint32_t next, uint32_t lower) const;
    std::vector<uint32_t> MeasureOffsets() const;

    std::string fTransferSyntax;
    Lengths fLengths;
    std::vector<Record> fRecords;
    std::optional<Target> fRootTarget;
};

}  // namespace VantorTest
