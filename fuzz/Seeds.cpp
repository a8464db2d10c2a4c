// Writes a small seed corpus for every fuzz target: fuzz_seeds FOLDER makes FOLDER/<target>/<seed>.

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <string>

#include "tests/support/DirectoryBuilder.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/ReportBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr char kJpegBaseline[] = "1.2.840.10008.1.2.4.50";

class SeedFolder {
  public:
    explicit SeedFolder(std::filesystem::path root) : fRoot(std::move(root)) {}

    void Write(const std::string& target, const std::string& name, const Bytes& content) const {
        std::filesystem::create_directories(fRoot / target);
        WriteWholeFile((fRoot / target / name).string(), content);
    }

  private:
    std::filesystem::path fRoot;
};

struct Syntax {
    const char* fName;
    const char* fUid;
    uint8_t fFlags;  // as DataSetFuzz takes them from its first byte
};

constexpr Syntax kSyntaxes[] = {{"explicit", Uids::kExplicitVRLittleEndian, 1},
                                {"big", Uids::kExplicitVRBigEndian, 3},
                                {"implicit", Uids::kImplicitVRLittleEndian, 0},
                                {"implicit-named", Uids::kImplicitVRLittleEndian, 4}};

// The forms of a data set, as DataSetOperationsFuzz takes them beside the flags.
constexpr uint8_t kOwning = 0;
constexpr uint8_t kWrapping = 8;

void FillIdentity(ElementBuilder& data, const Bytes& item, ElementBuilder::Lengths lengths) {
    data.Text(Tags::kSOPClassUID, Vr::kUI, FileBuilder::kSecondaryCapture)
        .Text(Tags::kSOPInstanceUID, Vr::kUI, FileBuilder::kInstanceUID)
        .Text(Tags::kContentDate, Vr::kDA, "20240315")
        .Text(Tags::kModality, Vr::kCS, "SR")
        .Sequence(Tags::kSourceImageSequence, {item, item}, lengths)
        .Text(Tags::kPatientName, Vr::kPN, "Doe^Jane")
        .Text({0x0021, 0x0010}, Vr::kLO, "QUANTIX")
        .Value({0x0021, 0x10A6}, Vr::kUN, {1, 2, 3, 4});
}

// A data set and a few operations of every kind on it, as DataSetOperationsFuzz takes them.
Bytes MakeProgram(int form, const Bytes& content) {
    Bytes seed = {static_cast<uint8_t>(form), static_cast<uint8_t>(content.size()),
                  static_cast<uint8_t>(content.size() >> 8)};
    seed.insert(seed.end(), content.begin(), content.end());
    constexpr uint8_t kOperations = 21;
    constexpr uint8_t kFindSequence[] = {2, 1, 0, 0, 0x80};
    for (uint8_t operation = 0; operation < kOperations; ++operation) {
        seed.insert(seed.end(), std::begin(kFindSequence), std::end(kFindSequence));
        seed.insert(seed.end(), {operation, 1, 1, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x84, 'D', 'A', 'T', 'A'});
    }
    return seed;
}

void WriteDataSets(const SeedFolder& seeds) {
    for (const Syntax& syntax : kSyntaxes) {
        for (const auto lengths : {ElementBuilder::Lengths::kDefined, ElementBuilder::Lengths::kUndefined}) {
            const Bytes inner = ElementBuilder(syntax.fUid).Text(Tags::kModality, Vr::kCS, "US").GetBytes();
            const Bytes item =
                ElementBuilder(syntax.fUid).Sequence(Tags::kSourceImageSequence, {inner}, lengths).GetBytes();
            ElementBuilder data(syntax.fUid);
            FillIdentity(data, item, lengths);
            data.Numbers16({0x0028, 0x0010}, Vr::kUS, {2}).Value(Tags::kPixelData, Vr::kOW, {1, 2, 3, 4});
            Bytes seed = {syntax.fFlags};
            seed.insert(seed.end(), data.GetBytes().begin(), data.GetBytes().end());
            const bool isDefined = lengths == ElementBuilder::Lengths::kDefined;
            const std::string name = std::string(syntax.fName) + (isDefined ? "" : "-undefined");
            seeds.Write("DataSetFuzz", name, seed);
            seed.insert(seed.begin() + 1, 2);
            seeds.Write("DataSetEditFuzz", name, seed);
            for (const uint8_t form : {kOwning, kWrapping})
                seeds.Write("DataSetOperationsFuzz", name + std::to_string(form),
                            MakeProgram(form | syntax.fFlags, data.GetBytes()));
        }
    }
}

// Programs of ImageCopyFuzz: a step is its operation and, times their count, its number.
void WriteCopies(const SeedFolder& seeds, const std::string& name, const Bytes& file) {
    constexpr uint8_t kNumber = 14;
    constexpr uint8_t kPrograms[][12] = {
        // To another stream, then onto itself.
        {0, 4, 4, kNumber + 5, kNumber + 6, 2 * kNumber + 6, 4 * kNumber + 7, 2, 1, 4, 4, 2},
        // Abandoned, with its elements changed, and from a damaged medium.
        {1, 4, 3, kNumber + 8, 1, kNumber + 6, 9 * kNumber + 10, 2 * kNumber + 6, 2, 0, 2 * kNumber + 11, 4},
        // On media that fail, and given up by going away.
        {0, 4, 2 * kNumber + 12, 4, 2, 12, 0, 4, 13, 9, 1, 4}};
    for (const auto& program : kPrograms) {
        Bytes seed(std::begin(program), std::end(program));
        seed.insert(seed.end(), {static_cast<uint8_t>(file.size() >> 8), static_cast<uint8_t>(file.size())});
        seed.insert(seed.end(), file.begin(), file.end());
        seed.insert(seed.end(), file.begin(), file.end());
        seeds.Write("ImageCopyFuzz", name + std::to_string(&program - kPrograms), seed);
    }
}

// A file of each kind that a directory tells apart.
void WriteEntered(const SeedFolder& seeds, const Syntax& syntax) {
    constexpr std::pair<const char*, const char*> kKinds[] = {
        {FileBuilder::kSecondaryCapture, "US"}, {Uids::kBasicTextSR, "SR"}, {Uids::kRawDataStorage, "OT"}};
    for (const auto& [sopClass, modality] : kKinds) {
        for (const bool hasPixels : {false, true}) {
            FileBuilder file(syntax.fUid, sopClass);
            file.Data()
                .Text(Tags::kSpecificCharacterSet, Vr::kCS, "ISO_IR 100")
                .Text(Tags::kSOPClassUID, Vr::kUI, sopClass)
                .Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3")
                .Text(Tags::kModality, Vr::kCS, modality)
                .Text(Tags::kPatientName, Vr::kPN, "Doe^John")
                .Text(Tags::kPatientID, Vr::kLO, "17")
                .Text(Tags::kStudyInstanceUID, Vr::kUI, "1.2")
                .Text(Tags::kSeriesInstanceUID, Vr::kUI, "1.2.1");
            if (hasPixels) file.Data().Value(Tags::kPixelData, Vr::kOW, {1, 2});
            seeds.Write("FileRecordsFuzz", syntax.fName + (modality + std::to_string(hasPixels)),
                        file.Build());
        }
    }
}

void WriteFiles(const SeedFolder& seeds) {
    for (const Syntax& syntax : kSyntaxes) {
        const Bytes item = ElementBuilder(syntax.fUid).Text(Tags::kModality, Vr::kCS, "US").GetBytes();
        FileBuilder file(syntax.fUid);
        FillIdentity(file.Data(), item, ElementBuilder::Lengths::kDefined);
        file.Data().Text({0x0028, 0x0008}, Vr::kIS, "2");
        for (const char* target : {"MetaHeaderFuzz", "SRReaderFuzz"})
            seeds.Write(target, syntax.fName, file.Build());
        WriteEntered(seeds, syntax);
        file.Data().Value(Tags::kPixelData, Vr::kOW, {1, 2, 3, 4, 5, 6, 7, 8});
        seeds.Write("ImageReaderFuzz", syntax.fName, file.Build());
        WriteCopies(seeds, syntax.fName, file.Build());
    }
    for (const bool hasTable : {false, true}) {
        FileBuilder file(kJpegBaseline);
        file.Data().Text({0x0028, 0x0008}, Vr::kIS, "2");
        const std::vector<uint32_t> table = hasTable ? std::vector<uint32_t>{0, 12} : std::vector<uint32_t>{};
        file.Data().EncapsulatedPixels(table, {{1, 2, 3, 4}, {5, 6}});
        const char* name = hasTable ? "jpeg-table" : "jpeg";
        seeds.Write("ImageReaderFuzz", name, file.Build());
        WriteCopies(seeds, name, file.Build());
    }
    FileBuilder palette;
    palette.Data()
        .Numbers16(Tags::kRedPaletteDescriptor, Vr::kUS, {0, 0, 16})
        .Value({0x0028, 0x1201}, Vr::kOW, Bytes(64))
        .Value(Tags::kPixelData, Vr::kOW, {1, 2});
    seeds.Write("ImageReaderFuzz", "palette", palette.Build());
}

// One record of each type, and a few pointing elsewhere, in every encoding.
void WriteDirectories(const SeedFolder& seeds) {
    for (const Syntax& syntax : kSyntaxes) {
        for (const auto lengths : {ElementBuilder::Lengths::kDefined, ElementBuilder::Lengths::kUndefined}) {
            DirectoryBuilder media(syntax.fUid, lengths);
            const int patient = media.AddPatient(1);
            const int study = media.AddStudy(patient, 1);
            const int series = media.AddSeries(study, 1);
            for (const char* type : {"IMAGE ", "IMAGE ", "RAW DATA", "SR DOCUMENT ", "PRIVATE "})
                media.AddInstance(series, 1, type);
            media.AddStudy(media.AddPatient(2), 2);
            const bool isDefined = lengths == ElementBuilder::Lengths::kDefined;
            const std::string name = std::string(syntax.fName) + (isDefined ? "" : "-undefined");
            seeds.Write("DirectoryFuzz", name, media.Build());
            media.PointLower(study, patient);
            media.PointNext(patient, patient, 2);
            media.SetInUse(series, false);
            media.Keys(study).Text(Tags::kExamCreator, Vr::kLO, "EXAMS");
            seeds.Write("DirectoryFuzz", name + "-damaged", media.Build());
        }
    }
}

// A report with an item of each type, twice, so that there is something to compare.
void WriteReports(const SeedFolder& seeds) {
    const ReportCode name = {"1", "LN", "Name"}, derivation = {"121401", "DCM", "Derivation"};
    const std::vector<ReportBuilder> items = {
        ReportBuilder::Number(name, "4.5", {"a", "UCUM", "year"})
            .Text(Tags::kObservationDateTime, Vr::kDT, "20240315101500.5+0100")
            .Text(Tags::kRelationshipType, Vr::kCS, "CONTAINS")
            .Below({ReportBuilder::Coded(derivation, {"R", "SRT", "Mean", "1"})}),
        ReportBuilder("NUM", {"M", "99QUANTIX", "measurement context"}),
        ReportBuilder("TEXT", name).Text(Tags::kTextValue, Vr::kUT, "text"),
        ReportBuilder("DATE", name).Text(Tags::kDate, Vr::kDA, "20240315"),
        ReportBuilder("TIME", name).Text(Tags::kTime, Vr::kTM, "101500"),
        ReportBuilder("DATETIME", name).Text(Tags::kDateTime, Vr::kDT, "20240315101500"),
        ReportBuilder("PNAME", name).Text(Tags::kPersonName, Vr::kPN, "Doe^Jane"),
        ReportBuilder("IMAGE"),
        {}};
    const ReportBuilder section =
        ReportBuilder("CONTAINER", name).Text(Tags::kContinuityOfContent, Vr::kCS, "SEPARATE").Below(items);
    const ReportBuilder report = ReportBuilder("CONTAINER", {"125200", "DCM", "Echo"})
                                     .Text(Tags::kSOPClassUID, Vr::kUI, Uids::kEnhancedSR)
                                     .Text(Tags::kContentDate, Vr::kDA, "20240315")
                                     .Text(Tags::kContentTime, Vr::kTM, "101500")
                                     .Text(Tags::kPatientName, Vr::kPN, "Doe^Jane")
                                     .Below({section, section});
    for (const Syntax& syntax : kSyntaxes) {
        for (const auto lengths : {ElementBuilder::Lengths::kDefined, ElementBuilder::Lengths::kUndefined}) {
            const bool isDefined = lengths == ElementBuilder::Lengths::kDefined;
            seeds.Write("SRContentFuzz", std::string(syntax.fName) + (isDefined ? "" : "-undefined"),
                        report.Encode(syntax.fUid, lengths));
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzz_seeds FOLDER\n");
        return 2;
    }
    const SeedFolder seeds{argv[1]};
    WriteDataSets(seeds);
    WriteFiles(seeds);
    WriteDirectories(seeds);
    WriteReports(seeds);
    return 0;
}
