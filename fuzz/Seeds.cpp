// Writes a small seed corpus for every fuzz target: fuzz_seeds FOLDER makes FOLDER/<target>/<seed>.

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <string>

#include "cli/JpegCodec.h"
#include "tests/support/BitmapBuilder.h"
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

// The choices of ImageEditFuzz in front: level, texts, in its place.
void WriteEdits(const SeedFolder& seeds, const std::string& name, const Bytes& file) {
    constexpr uint8_t kTexts = 4, kInPlace = 8;
    for (const int choice : {0, kTexts + 0, kTexts + 1, kInPlace + 0, kInPlace + kTexts + 2}) {
        Bytes seed = {static_cast<uint8_t>(choice)};
        seed.insert(seed.end(), file.begin(), file.end());
        seeds.Write("ImageEditFuzz", name + std::to_string(choice), seed);
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
            const std::string name = syntax.fName + (modality + std::to_string(hasPixels));
            seeds.Write("FileRecordsFuzz", name, file.Build());
            seeds.Write("FileInfoFuzz", name, file.Build());
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
        WriteEdits(seeds, syntax.fName, file.Build());
    }
    for (const bool hasTable : {false, true}) {
        FileBuilder file(kJpegBaseline);
        file.Data().Text({0x0028, 0x0008}, Vr::kIS, "2");
        const std::vector<uint32_t> table = hasTable ? std::vector<uint32_t>{0, 12} : std::vector<uint32_t>{};
        file.Data().EncapsulatedPixels(table, {{1, 2, 3, 4}, {5, 6}});
        const char* name = hasTable ? "jpeg-table" : "jpeg";
        seeds.Write("ImageReaderFuzz", name, file.Build());
        WriteCopies(seeds, name, file.Build());
        WriteEdits(seeds, name, file.Build());
    }
    // What is compressed as a whole, and what nobody knows.
    for (const char* const syntax : {"1.2.840.10008.1.2.1.99", "1.2.3.4"}) {
        FileBuilder file(syntax);
        file.Data().Text(Tags::kModality, Vr::kCS, "US").Value(Tags::kPixelData, Vr::kOW, {1, 2});
        for (const char* target : {"MetaHeaderFuzz", "ImageReaderFuzz", "FileInfoFuzz"})
            seeds.Write(target, syntax, file.Build());
        WriteEdits(seeds, syntax, file.Build());
    }
    // An element of a low group behind the others, as no writer should put it.
    FileBuilder misplaced;
    misplaced.Data().Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3").Value({0x0000, 0x0000}, Vr::kUL, Bytes(4));
    seeds.Write("MetaHeaderFuzz", "misplaced", misplaced.Build());
    // So long that the pixels are behind the half of the file that is seen first.
    constexpr size_t kLongPalette = 400;
    FileBuilder palette;
    palette.Data()
        .Numbers16(Tags::kRedPaletteDescriptor, Vr::kUS, {0, 0, 16})
        .Value({0x0028, 0x1201}, Vr::kOW, Bytes(kLongPalette))
        .Value(Tags::kPixelData, Vr::kOW, {1, 2});
    seeds.Write("ImageReaderFuzz", "palette", palette.Build());
}

struct PixelForm {
    const char* fName;
    const char* fSyntax;
    const char* fPhotometric;
    uint16_t fColors;
    uint16_t fBits;
};

// What describes pictures of 4 x 2 pixels, two of them.
FileBuilder DescribePicture(const PixelForm& form) {
    FileBuilder file(form.fSyntax);
    const uint16_t allocated = form.fBits > 8 ? 16 : 8;
    file.Data()
        .Numbers16(Tags::kSamplesPerPixel, Vr::kUS, {form.fColors})
        .Text(Tags::kPhotometricInterpretation, Vr::kCS, form.fPhotometric)
        .Numbers16(Tags::kPlanarConfiguration, Vr::kUS, {1})
        .Text(Tags::kNumberOfFrames, Vr::kIS, "2")
        .Numbers16(Tags::kRows, Vr::kUS, {2})
        .Numbers16(Tags::kColumns, Vr::kUS, {4})
        .Numbers16(Tags::kBitsAllocated, Vr::kUS, {allocated})
        .Numbers16(Tags::kBitsStored, Vr::kUS, {form.fBits})
        .Text(Tags::kWindowCenter, Vr::kDS, "100\\40")
        .Text(Tags::kWindowWidth, Vr::kDS, "50.5")
        .Text(Tags::kRescaleSlope, Vr::kDS, "-2")
        .Numbers16(Tags::kRedPaletteDescriptor, Vr::kUS, {2, 1, 16})
        .Numbers16(Tags::kGreenPaletteDescriptor, Vr::kUS, {2, 1, 8})
        .Numbers16(Tags::kBluePaletteDescriptor, Vr::kUS, {2, 1, 8})
        .Numbers16(Tags::kRedPalette, Vr::kOW, {0x1000, 0x2000})
        .Numbers16(Tags::kGreenPalette, Vr::kOW, {0x1020})
        .Numbers16(Tags::kBluePalette, Vr::kOW, {1, 2});
    return file;
}

// A frame of run-length segments, all alike: half a run and half of literals.
Bytes MakeRunLengths(uint8_t segments) {
    constexpr size_t kTable = 64;
    const Bytes segment = {0xFD, 7, 3, 1, 2, 3, 4, 0};
    Bytes frame(kTable);
    frame[0] = segments;
    for (size_t i = 0; i < segments; ++i) {
        frame[(i + 1) * sizeof(uint32_t)] = static_cast<uint8_t>(frame.size());
        frame.insert(frame.end(), segment.begin(), segment.end());
    }
    return frame;
}

void WritePictures(const SeedFolder& seeds) {
    constexpr size_t kLargestPicture = 48;
    for (const PixelForm& form : {PixelForm{"gray", Uids::kExplicitVRLittleEndian, "MONOCHROME2", 1, 8},
                                  {"signed", Uids::kImplicitVRLittleEndian, "MONOCHROME1", 1, 12},
                                  {"palette", Uids::kExplicitVRBigEndian, "PALETTE COLOR", 1, 16},
                                  {"rgb", Uids::kExplicitVRLittleEndian, "RGB", 3, 16},
                                  {"ybr", Uids::kExplicitVRLittleEndian, "YBR_FULL", 3, 8},
                                  {"pairs", Uids::kExplicitVRLittleEndian, "YBR_FULL_422", 3, 8}}) {
        FileBuilder file = DescribePicture(form);
        file.Data().Value(Tags::kPixelData, Vr::kOW, Bytes(2 * kLargestPicture, 100));
        seeds.Write("FramePictureFuzz", form.fName, file.Build());
    }
    for (const PixelForm& form : {PixelForm{"rle-gray", Uids::kRleLossless, "MONOCHROME2", 1, 8},
                                  {"rle-rgb", Uids::kRleLossless, "RGB", 3, 16}}) {
        FileBuilder file = DescribePicture(form);
        const Bytes frame = MakeRunLengths(static_cast<uint8_t>(form.fColors * (form.fBits / 8)));
        file.Data().EncapsulatedPixels({}, {frame, frame});
        seeds.Write("FramePictureFuzz", form.fName, file.Build());
    }
    Bytes frame;
    if (!VantorCli::JpegCodec::Encode(Bytes(kLargestPicture, 100).data(), 4, 2, 50, frame)) return;
    if (frame.size() % 2 != 0) frame.push_back(0);
    FileBuilder file = DescribePicture({"jpeg", Uids::kJpegBaseline, "YBR_FULL_422", 3, 8});
    file.Data().EncapsulatedPixels({}, {frame, frame});
    seeds.Write("FramePictureFuzz", "jpeg", file.Build());
}

void WriteMedium(const SeedFolder& seeds, const std::string& name, const Bytes& medium) {
    constexpr uint8_t kChoices[] = {0, 1, 2, 6, 12};
    for (const uint8_t choice : kChoices) {
        Bytes update = {choice};
        update.insert(update.end(), medium.begin(), medium.end());
        seeds.Write("DirectoryUpdateFuzz", name + std::to_string(choice), update);
        seeds.Write("FolderDirectoryFuzz", name + std::to_string(choice), update);
        seeds.Write("HostRecordsFuzz", name + std::to_string(choice), update);
        // All documents, or all but the first of every eight, with the source read again meanwhile.
        const uint8_t docs = choice % 2 == 0 ? 0xFF : 0xFE;
        const uint8_t target = choice == 0 ? 0xFF : 0;
        Bytes transfer = {target, docs, docs, docs, docs, choice};
        transfer.insert(transfer.end(), medium.begin(), medium.end());
        seeds.Write("DirectoryImportFuzz", name + std::to_string(choice), transfer);
    }
}

// Programs of HostileMedium: records by type, parent and number, then links.
void WriteMedia(const SeedFolder& seeds) {
    constexpr uint8_t kEncodings[] = {0, 1, 2, 0x80, 0x81};
    const Bytes records = {0, 0, 1, 1, 1, 0xFC, 2,    2, 1, 3,    3, 0, 4,    3, 1, 5,
                           3, 2, 6, 3, 3, 0,    0,    2, 1, 8,    2, 2, 9,    2, 3, 10,
                           5, 3, 1, 4, 3, 3,    0xE0, 4, 3, 0xE1, 5, 3, 0xE2, 6, 3, 0xE3};
    const Bytes links = {0, 5, 3, 1, 9, 2, 0xF1, 8, 0, 2, 3, 4, 0};
    for (const uint8_t encoding : kEncodings) {
        constexpr uint8_t kRecordSize = 3;
        constexpr uint8_t kSyntaxBits = 0x7F;
        Bytes medium = {static_cast<uint8_t>(encoding & kSyntaxBits), 0, encoding,
                        static_cast<uint8_t>(records.size() / kRecordSize - 1)};
        medium.insert(medium.end(), records.begin(), records.end());
        Bytes damaged = medium;
        medium.push_back(0);
        WriteMedium(seeds, "composed" + std::to_string(encoding), medium);
        constexpr uint8_t kLinks = 4;
        damaged.push_back(kLinks);
        damaged.insert(damaged.end(), links.begin(), links.end());
        WriteMedium(seeds, "damaged" + std::to_string(encoding), damaged);
    }
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
            media.Keys(study)
                .Text(Tags::kExamCreator, Vr::kLO, "EXAMS")
                .Text(Tags::kExamFolder, Vr::kST, "\\IMAGESDC\\EXAM0000");
            seeds.Write("DirectoryFuzz", name + "-damaged", media.Build());
            Bytes medium = {0, 1};
            const Bytes content = media.Build();
            medium.insert(medium.end(), content.begin(), content.end());
            WriteMedium(seeds, name, medium);
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

// Bitmaps of each depth, both ways up, with the choices of DeviceBitmapFuzz in front: the frame's size, the
// place.
void WriteBitmaps(const SeedFolder& seeds) {
    constexpr int32_t kWidth = 9, kHeight = 5;
    const auto pixelAt = [](int x, int y) { return static_cast<uint32_t>(x * y) & 1; };
    const auto write = [&](const std::string& name, const BitmapBuilder& builder) {
        Bytes seed = {kWidth, kHeight, 0xFF, 1};
        const Bytes bitmap = builder.Build(pixelAt);
        seed.insert(seed.end(), bitmap.begin(), bitmap.end());
        seeds.Write("DeviceBitmapFuzz", name, seed);
    };
    for (const uint32_t bits : {1U, 4U, 8U, 16U, 24U, 32U}) {
        BitmapBuilder builder(kWidth, kHeight, bits);
        if (bits <= 8) builder.Colors({0x102030, 0x405060}).ColorsUsed(2);
        write(std::to_string(bits), builder);
        write(std::to_string(bits) + "-top-down", BitmapBuilder(builder).TopDown());
        if (bits == 16 || bits == 32) write(std::to_string(bits) + "-masks", builder.Masks({0x7C, 0x380, 3}));
    }
}

// A medium with room for all, one that is full, and a limit; the sizes of the frames.
void WriteMovies(const SeedFolder& seeds) {
    seeds.Write("AviWriterFuzz", "all", {0x7F, 0, 0x7F, 0, 0, 12, 12, 12});
    seeds.Write("AviWriterFuzz", "full", {1, 40, 0x7F, 0, 1, 13, 5, 200, 7});
    seeds.Write("AviWriterFuzz", "limit", {0x7F, 0, 1, 40, 1, 13, 5, 200, 7});
}

void WriteText(const SeedFolder& seeds, const char* target, const std::string& name,
               const std::string& text) {
    seeds.Write(target, name, BytesOf(text));
}

void WriteSettings(const SeedFolder& seeds) {
    const std::string usual = "\x80\x04Trim\x01\x07";
    const std::string other =
        "\x01\x03"
        "a\\b"
        "\x04Path\x80\x06/data\n";
    const std::string text =
        "[Software\\Vendor\\Product]\n\"StagingPath\"=\"/data/staging \\\"new\\\"\"\n"
        "\"Trim\"=dword:00000001\n; a note\n\n[A\\B]\r\n\"x\"=\"\\n\"\n";
    WriteText(seeds, "RegistryTextFuzz", "usual", usual + std::string(3, '\0') + text);
    WriteText(seeds, "RegistryTextFuzz", "other", other + text);
    WriteText(seeds, "SystemTextFuzz", "mounts",
              "21 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n"
              "35 21 8:17 / /media/a\\040stick rw - vfat /dev/sdb1 rw\n"
              "36 21 0:40 / /mnt/share rw master:2 - cifs //server/share rw\n");
    WriteText(seeds, "SystemTextFuzz", "recorders",
              "CD-ROM information\n\ndrive name:\t\tsr1\tsr0\nCan write CD-R:\t\t1\t0\n"
              "Can write DVD-R:\t0\t1\n");
    WriteText(seeds, "SystemTextFuzz", "drives",
              "/media/disc=cdrom,CDFS,ECHO 12:/media/stick=removable:/data:/a/../b=x");
    const std::string entries =
        "(0008,0060)\tVR=\"CS\"\tVM=\"1\"\tName=\"Modality\"\n"
        "(0008,2112)\tVR=\"SQ\"\tName=\"Source Image Sequence\"\n"
        "(0010,0010)\tVR=\"PN\"\tName=\"Patient's Name\"\n";
    WriteText(seeds, "DictionaryFuzz", "sorted", entries);
    WriteText(seeds, "DictionaryFuzz", "twice", entries + entries);
}

// The place to cut them in front.
void WriteTexts(const SeedFolder& seeds) {
    constexpr const char* kTexts[] = {
        "\x08"
        "Adams^John Robert^^Rev.^B.A.=\xE5\xB1\xB1\xE7\x94\xB0^\xE5\xA4\xAA",
        "\x03M\xFCller^A",
        "\x08"
        "20240315101500.25+0100",
        "\x02-12\\+7",
        "\x05"
        "1.2.840\\1.2.3",
        "\x04\\\\server\\share\\a\\b",
        "\x04"
        "C:\\a/b.c\\",
        "\x06\x1B$B;3ED\x1B(B^\x1B$B\\B@",
        "\x06/media/disc/IMAGES/1"};
    for (const char* const text : kTexts) {
        WriteText(seeds, "TextFuzz", std::to_string(&text - kTexts), text);
    }
}

// Views with their sizes, frames and loops, and the bitmap that they show.
void WriteViews(const SeedFolder& seeds) {
    const Bytes bitmap =
        BitmapBuilder(9, 5, 24).Build([](int x, int y) { return static_cast<uint32_t>(x * y); });
    const Bytes kViews[] = {{1, 9, 5, 4, 40, 0},
                            {3, 9, 5, 30, 50, 0, 7, 8, 1, 0, 0, 3, 3, 6, 9, 0xFF},
                            {2, 0xE0, 0, 2, 0xF0, 0, 0, 0, 1, 5, 5, 0, 4, 4, 4, 4, 0}};
    for (const Bytes& views : kViews) {
        Bytes seed = views;
        seed.insert(seed.end(), bitmap.begin(), bitmap.end());
        seeds.Write("MovieFuzz", std::to_string(&views - kViews), seed);
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
    WritePictures(seeds);
    WriteDirectories(seeds);
    WriteReports(seeds);
    WriteBitmaps(seeds);
    WriteMovies(seeds);
    WriteViews(seeds);
    WriteMedia(seeds);
    WriteSettings(seeds);
    WriteTexts(seeds);
    return 0;
}
