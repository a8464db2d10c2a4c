// Reading, writing and opening of Part 10 files. What it hunts: files that break off or lie about their
// lengths, files that others hold or change meanwhile, media that fill up half way.

#include "dicom/TDicomFile.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <future>

#include "platform/Clock.h"
#include "tests/dicom/DataSetTestSupport.h"
#include "tests/dicom/FailureOf.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Platform::FileAccess;

constexpr Tag kRows{0x0028, 0x0010};
constexpr char kInvalid[] = "102 Invalid Dicom File";

using Getter = bool (TDicomFile::*)(char*);

std::string UidOf(TDicomFile& file, Getter get) {
    char buffer[kMaximumUidLength + 1] = {};
    return (file.*get)(buffer) ? buffer : "(unknown)";
}

FileBuilder SmallFile(std::string_view transferSyntaxUID = Uids::kExplicitVRLittleEndian) {
    FileBuilder file(transferSyntaxUID);
    ElementBuilder item(transferSyntaxUID);
    item.Text(Tags::kReferencedSOPClassUID, Vr::kUI, "1.2.3");
    file.Data()
        .Text(Tags::kModality, Vr::kCS, "US")
        .Sequence(Tags::kSourceImageSequence, {item.GetBytes()}, ElementBuilder::Lengths::kUndefined)
        .Text(Tags::kPatientName, Vr::kPN, "Doe^Jane")
        .Numbers16(kRows, Vr::kUS, {600});
    return file;
}

// Dates a file a number of seconds after some whole second of the past, which every file system can keep.
void SetWriteTime(const std::string& path, int seconds) {
    using FileClock = std::filesystem::file_time_type::clock;
    static const auto past = std::chrono::floor<std::chrono::hours>(FileClock::now()) - std::chrono::hours(1);
    std::filesystem::last_write_time(path, past + std::chrono::seconds(seconds));
}

// Walks all elements and reads their values, as any user of the data set would.
void WalkThrough(const TDicomDataSet& dataSet) {
    int32_t offset = TDicomDataSet::kFromStart;
    char value[64];
    uint32_t length = 0;
    while (
        dataSet.GetNextElement(offset, nullptr, nullptr, nullptr, &length, value, sizeof(value), &offset)) {
    }
}

class TDicomFileTest : public testing::Test {
  protected:
    // A file with these bytes, open for reading.
    std::unique_ptr<TDicomFile> Open(const Bytes& bytes, FileAccess access = FileAccess::kRead) {
        auto file = std::make_unique<TDicomFile>(0, TFileSpec(fFolder.WriteFile("FILE.DCM", bytes)), 0);
        file->OpenFile(access);
        return file;
    }

    TFileSpec Spec(const std::string& name = "FILE.DCM") const { return TFileSpec(fFolder.PathOf(name)); }

    TestFolder fFolder;
};

// ---- Reading ----

struct Syntax {
    const char* fUid;
    bool fIsExplicit;
    bool fIsBigEndian;
};

class TransferSyntax : public TDicomFileTest, public testing::WithParamInterface<Syntax> {};

INSTANTIATE_TEST_SUITE_P(All, TransferSyntax,
                         testing::Values(Syntax{Uids::kImplicitVRLittleEndian, false, false},
                                         Syntax{Uids::kExplicitVRLittleEndian, true, false},
                                         Syntax{Uids::kExplicitVRBigEndian, true, true},
                                         Syntax{"1.2.840.10008.1.2.4.50", true, false}));

TEST_P(TransferSyntax, IsReadWhole) {
    const FileBuilder builder = SmallFile(GetParam().fUid);
    const Bytes bytes = builder.Build();
    const auto file = Open(bytes);
    ASSERT_TRUE(file->ReadFile());
    EXPECT_EQ(file->IsExplicit(), GetParam().fIsExplicit);
    EXPECT_EQ(file->IsBigEndian(), GetParam().fIsBigEndian);
    EXPECT_EQ(file->GetFileSize(), static_cast<int64_t>(bytes.size()));
    EXPECT_EQ(UidOf(*file, &TDicomFile::GetSOPClassUID), FileBuilder::kSecondaryCapture);
    EXPECT_EQ(UidOf(*file, &TDicomFile::GetSOPInstanceUID), FileBuilder::kInstanceUID);
    EXPECT_EQ(UidOf(*file, &TDicomFile::GetTransferSyntaxUID), GetParam().fUid);
    EXPECT_FALSE(file->IsModified());

    const TDicomDataSet& dataSet = *file->GetDataSet();
    EXPECT_EQ(BytesOf(dataSet), Bytes(bytes.begin() + builder.GetDataOffset(), bytes.end()));
    EXPECT_EQ(TextOf(dataSet, Tags::kPatientName), "Doe^Jane");
    EXPECT_EQ(TextOf(*file->GetMetaDataSet(), Tags::kMediaStorageSOPInstanceUID),
              std::string(FileBuilder::kInstanceUID) + '\0');
}

TEST_P(TransferSyntax, IsToldByTheMetaHeaderAlone) {
    const auto file = Open(SmallFile(GetParam().fUid).Build());
    ASSERT_TRUE(file->ReadMetaHeader());
    EXPECT_EQ(file->IsExplicit(), GetParam().fIsExplicit);
    EXPECT_EQ(file->IsBigEndian(), GetParam().fIsBigEndian);
    EXPECT_EQ(file->GetDataSet(), nullptr);
    EXPECT_NE(file->GetMetaDataSet(), nullptr);
}

// The stored UID is compared over its own length: writers have left it empty or cut it short in files that
// hosts must go on reading as implicit.
TEST_F(TDicomFileTest, ATransferSyntaxThatIsAPrefixOfTheImplicitOneIsImplicit) {
    const std::string longest = "1.2.840.10008.1.2.4." + std::string(44, '9');
    const struct {
        std::string fStored;
        Syntax fSyntax;
    } cases[] = {
        {"", {"(unknown)", false, false}},
        {"1", {"1", false, false}},
        {"1.2.840.10008.1", {"1.2.840.10008.1", false, false}},
        {std::string("1.2.840.10008.1.2\0\0\0", 20), {"1.2.840.10008.1.2", false, false}},
        {"1.2.840.10008.1.2 ", {"1.2.840.10008.1.2 ", true, false}},
        {"1.2.840.10008.1.2.", {"1.2.840.10008.1.2.", true, false}},
        {"1.2.840.10008.1.2.2", {"1.2.840.10008.1.2.2", true, true}},
        {"1.2.840.10008.1.2.2.1", {"1.2.840.10008.1.2.2.1", true, false}},
        {"1.2.840.10008.1.2.1.99", {"1.2.840.10008.1.2.1.99", true, false}},
        {"2", {"2", true, false}},
        {longest, {longest.c_str(), true, false}},
    };
    for (const auto& [stored, syntax] : cases) {
        SCOPED_TRACE(stored);
        FileBuilder builder(stored);
        builder.Data().Text(Tags::kModality, Vr::kCS, "US");
        const auto file = Open(builder.Build());
        ASSERT_TRUE(file->ReadMetaHeader());
        EXPECT_EQ(file->IsExplicit(), syntax.fIsExplicit);
        EXPECT_EQ(file->IsBigEndian(), syntax.fIsBigEndian);
        EXPECT_EQ(UidOf(*file, &TDicomFile::GetTransferSyntaxUID), syntax.fUid);
    }
}

TEST_F(TDicomFileTest, RefusesWhatIsNoDicomFile) {
    const ElementBuilder classOnly = ElementBuilder().Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, "1.2");
    const auto withMeta = [](const ElementBuilder& meta) {
        FileBuilder file;
        file.ReplaceMeta(meta).Data().Text(Tags::kModality, Vr::kCS, "US");
        return file.Build();
    };
    Bytes prefixAtStart = SmallFile().Build();
    prefixAtStart.erase(prefixAtStart.begin(), prefixAtStart.begin() + FileBuilder::kPreambleSize);
    Bytes otherPrefix = SmallFile().Build();
    otherPrefix[FileBuilder::kPreambleSize + 3] = 'm';
    Bytes barelyNoData = FileBuilder().BuildMeta();
    barelyNoData.insert(barelyNoData.end(), 7, 0x08);
    const struct {
        const char* fName;
        Bytes fBytes;
        const char* fFailure;
    } cases[] = {
        {"empty file", {}, kInvalid},
        {"shorter than the preamble", Bytes(100, 0), kInvalid},
        {"prefix cut", Bytes(131, 'D'), kInvalid},
        {"no meta information", FileBuilder().ReplaceMeta(ElementBuilder()).BuildMeta(), kInvalid},
        {"no prefix", Bytes(2000, 0), kInvalid},
        {"no preamble", prefixAtStart, kInvalid},
        {"wrong prefix", otherPrefix, kInvalid},
        {"nothing after the meta information", FileBuilder().BuildMeta(), kInvalid},
        {"less than a header after it", barelyNoData, kInvalid},
        {"data set only", withMeta(ElementBuilder()), kInvalid},
        {"no SOP class", withMeta(ElementBuilder().Text(Tags::kTransferSyntaxUID, Vr::kUI, "1.2")), kInvalid},
        {"SOP class past the end",
         withMeta(ElementBuilder().Header(Tags::kMediaStorageSOPClassUID, Vr::kUI, 5000).Raw(Bytes(8, '1'))),
         "102 Invalid DICOM element length, longer than the data set."},
        {"something before the SOP class past the end",
         withMeta(ElementBuilder().Header(Tags::kFileMetaInformationVersion, Vr::kOB, 0xFFFFFFF0)),
         "102 Invalid DICOM element length."},
        {"something behind it past the end",
         withMeta(ElementBuilder(classOnly).Header(Tags::kTransferSyntaxUID, Vr::kOB, 0x7FFFFFFF)),
         "102 Invalid DICOM element length, longer than the data set."},
    };
    for (const auto& [name, bytes, failure] : cases) {
        SCOPED_TRACE(name);
        const auto file = Open(bytes);
        EXPECT_EQ(FailureOf([&] { file->ReadMetaHeader(); }), failure);
        EXPECT_EQ(FailureOf([&] { file->ReadFile(); }), failure);
        EXPECT_EQ(file->GetMetaDataSet(), nullptr);
        EXPECT_EQ(file->GetDataSet(), nullptr);
    }
}

TEST_F(TDicomFileTest, AnswersFalseWithoutTransferSyntax) {
    FileBuilder builder;
    builder.ReplaceMeta(ElementBuilder().Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, "1.2.3"));
    builder.Data().Text(Tags::kModality, Vr::kCS, "US");
    const auto file = Open(builder.Build());
    EXPECT_FALSE(file->ReadMetaHeader());
    EXPECT_FALSE(file->ReadFile());
    EXPECT_EQ(file->GetDataSet(), nullptr);
    EXPECT_EQ(UidOf(*file, &TDicomFile::GetSOPClassUID), "1.2.3");
    EXPECT_EQ(UidOf(*file, &TDicomFile::GetTransferSyntaxUID), "(unknown)");
}

// A file object outlives what it has read: nothing of the last file may shine through.
TEST_F(TDicomFileTest, ReadingAgainForgetsWhatIsNoLongerThere) {
    auto file = Open(SmallFile().Build());
    ASSERT_TRUE(file->ReadFile());
    file->CloseFile();
    FileBuilder poorer;
    poorer.ReplaceMeta(ElementBuilder().Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, "1.2.3"));
    poorer.Data().Text(Tags::kModality, Vr::kCS, "US");
    fFolder.WriteFile("FILE.DCM", poorer.Build());
    file->OpenFile(FileAccess::kRead);
    EXPECT_FALSE(file->ReadFile());
    EXPECT_EQ(file->GetDataSet(), nullptr);
    EXPECT_EQ(UidOf(*file, &TDicomFile::GetSOPInstanceUID), "(unknown)");
}

TEST_F(TDicomFileTest, CutsStoredUidsAt64CharactersAndDropsOnePadByte) {
    const std::string longest(64, '1');
    const struct {
        std::string fStored;
        std::string fRead;
    } cases[] = {{longest, longest}, {longest + "23", longest}, {"1.2.3", "1.2.3"}, {"1.23 ", "1.23 "}};
    for (const auto& [stored, read] : cases) {
        SCOPED_TRACE(stored);
        FileBuilder builder(Uids::kExplicitVRLittleEndian, stored, stored);
        builder.Data().Text(Tags::kModality, Vr::kCS, "US");
        const auto file = Open(builder.Build());
        ASSERT_TRUE(file->ReadFile());
        EXPECT_EQ(UidOf(*file, &TDicomFile::GetSOPClassUID).substr(0, read.size()), read);
        EXPECT_EQ(UidOf(*file, &TDicomFile::GetSOPInstanceUID).substr(0, read.size()), read);
    }
}

// Telling a file's class takes one read of fixed size, whatever the file is; longer meta information is for
// reading the file whole.
TEST_F(TDicomFileTest, TheMetaHeaderIsLookedForInTheFirstKilobyte) {
    constexpr size_t kDataHeader = 8;
    const size_t fixedSize = FileBuilder().BuildMeta().size() + kDataHeader;
    const size_t room = TDicomFile::kMetaHeaderReadSize - fixedSize - 12;
    for (const size_t size : {room, room + 2}) {
        FileBuilder builder;
        builder.Meta().Value({0x0002, 0x0102}, Vr::kOB, Bytes(size, 0));
        builder.Data().Value(Tags::kPixelData, Vr::kUS, Bytes(2000, 0));
        const auto file = Open(builder.Build());
        EXPECT_EQ(FailureOf([&] { EXPECT_TRUE(file->ReadMetaHeader()); }),
                  size == room ? "nothing" : kInvalid);
        EXPECT_TRUE(file->ReadFile());
    }
}

TEST_F(TDicomFileTest, WhateverIsLeftOfAFileIsReadOrRefused) {
    const FileBuilder builder = SmallFile();
    const Bytes whole = builder.Build();
    const size_t smallest = builder.GetDataOffset() + 8;
    for (size_t size = 0; size <= whole.size(); ++size) {
        SCOPED_TRACE(size);
        const auto file = Open(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size)));
        const std::string failure = FailureOf([&] { EXPECT_TRUE(file->ReadFile()); });
        EXPECT_EQ(FailureOf([&] { EXPECT_TRUE(file->ReadMetaHeader()); }), failure);
        if (size < smallest) {
            EXPECT_EQ(failure.substr(0, 4), "102 ");
            continue;
        }
        ASSERT_EQ(failure, "nothing");
        ASSERT_EQ(file->GetDataSet()->GetDataSetSize(), static_cast<int32_t>(size - builder.GetDataOffset()));
        FailureOf([&] { WalkThrough(*file->GetDataSet()); });
    }
}

TEST_F(TDicomFileTest, AnyDamagedByteIsReadOrRefused) {
    const Bytes whole = SmallFile().Build();
    MemoryStorage storage;
    for (size_t place = FileBuilder::kPreambleSize; place < whole.size(); ++place) {
        for (const uint8_t damage : Bytes{0x00, 0x01, 0x7F, 0xFF}) {
            Bytes bytes = whole;
            bytes[place] = damage;
            storage.SetContent("File", bytes);
            TDicomFile file(0, TFileSpec("File", &storage), 0);
            file.OpenFile(FileAccess::kRead);
            FailureOf([&] { file.ReadMetaHeader(); });
            FailureOf([&] {
                if (file.ReadFile()) WalkThrough(*file.GetDataSet());
            });
        }
    }
}

TEST_F(TDicomFileTest, AFileBeyond2GigabytesIsMeasuredButNotReadWhole) {
    constexpr int64_t kSize = 5'000'000'000;
    const std::string path = fFolder.WriteFile("FILE.DCM", SmallFile().Build());
    std::filesystem::resize_file(path, kSize);
    TDicomFile file(0, TFileSpec(path), 0);
    EXPECT_EQ(file.GetFileSizeKB(), 4882812U);
    file.OpenFile(FileAccess::kRead);
    EXPECT_TRUE(file.ReadMetaHeader());
    EXPECT_EQ(file.GetFileSize(), kSize);
    EXPECT_EQ(FailureOf([&] { file.ReadFile(); }), "0 Can't get memory");
    int64_t size = 0;
    file.BeginCopy(Spec("COPY.DCM"), size);
    EXPECT_EQ(size, kSize);
    EXPECT_EQ(file.CopyNextChunk(), kSize - TDicomFile::kChunkSize);
}

TEST_F(TDicomFileTest, ReadsWhatIsThereWhenTheFileChangesWhileOpen) {
    MemoryStorage storage;
    const FileBuilder builder = SmallFile();
    const Bytes whole = builder.Build();
    const auto dataSize = static_cast<int32_t>(whole.size() - builder.GetDataOffset());
    storage.SetContent("File", whole);
    TDicomFile file(0, TFileSpec("File", &storage), 0);
    file.OpenFile(FileAccess::kRead);
    Bytes content = whole;
    content.resize(whole.size() - 2);
    storage.SetContent("File", content);
    EXPECT_TRUE(file.ReadFile());
    EXPECT_EQ(file.GetDataSet()->GetDataSetSize(), dataSize - 2);
    content.resize(whole.size() + 8);
    storage.SetContent("File", content);
    EXPECT_TRUE(file.ReadFile());
    EXPECT_EQ(file.GetDataSet()->GetDataSetSize(), dataSize + 8);
    EXPECT_EQ(file.GetFileSize(), static_cast<int64_t>(whole.size() + 8));
}

TEST_F(TDicomFileTest, AFailedReadKeepsTheDataSetThatWasThere) {
    MemoryStorage storage;
    storage.SetContent("File", SmallFile().Build());
    TDicomFile file(0, TFileSpec("File", &storage), 0);
    file.OpenFile(FileAccess::kRead);
    ASSERT_TRUE(file.ReadFile());
    storage.FailOn(MemoryStorage::Fault::kRead);
    EXPECT_EQ(FailureOf([&] { file.ReadFile(); }), "image data: device error");
    EXPECT_EQ(FailureOf([&] { file.ReadMetaHeader(); }), "image data: device error");
    EXPECT_NE(file.GetMetaDataSet(), nullptr);
    storage.FailOn(MemoryStorage::Fault::kNone);
    storage.SetContent("File", Bytes(500, 0));
    EXPECT_EQ(FailureOf([&] { file.ReadFile(); }), kInvalid);
    EXPECT_EQ(file.GetMetaDataSet(), nullptr) << "it belongs to a file that is no longer there";
    EXPECT_EQ(TextOf(*file.GetDataSet(), Tags::kPatientName), "Doe^Jane");
}

TEST_F(TDicomFileTest, WhatWasReadCanGrow) {
    const auto file = Open(SmallFile().Build());
    ASSERT_TRUE(file->ReadFile());
    const std::string text(60000, 'x');
    for (uint16_t element = 0x1000; element < 0x1010; ++element) {
        PutText(*file->GetDataSet(), {0x0029, element}, Vr::kUT, text);
    }
    EXPECT_EQ(TextOf(*file->GetDataSet(), kRows), std::string("\x58\x02"));
    file->SetSOPInstanceUID(std::string(64, '7').c_str());
    EXPECT_EQ(TextOf(*file->GetMetaDataSet(), Tags::kMediaStorageSOPInstanceUID), std::string(64, '7'));
}

TEST_F(TDicomFileTest, ContextGoesToEveryDataSet) {
    TDicomFile file(11, TFileSpec(fFolder.WriteFile("FILE.DCM", SmallFile().Build())), 22, 33, 44);
    file.OpenFile(FileAccess::kRead);
    ASSERT_TRUE(file.ReadFile());
    EXPECT_EQ(file.GetDataSet()->GetContext(), 22U);
    EXPECT_EQ(file.GetMetaDataSet()->GetContext(), 22U);
    EXPECT_EQ(file.GetOwner(), 11U);
    EXPECT_EQ(file.GetFirstValue(), 33U);
    EXPECT_EQ(file.GetSecondValue(), 44U);
}

// ---- New files and writing ----

// The meta information of files of this library, byte for byte as it has always been.
Bytes OurMeta(const std::string& sopClass, const std::string& instance, const std::string& transferSyntax) {
    ElementBuilder meta;
    meta.Value(Tags::kFileMetaInformationVersion, Vr::kOB, {0x01, 0x00})
        .Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, sopClass)
        .Text(Tags::kMediaStorageSOPInstanceUID, Vr::kUI, instance)
        .Text(Tags::kTransferSyntaxUID, Vr::kUI, transferSyntax)
        .Text(Tags::kImplementationClassUID, Vr::kUI, "2.16.840.990017.100.98.19");
    ElementBuilder whole;
    return whole.Raw(Bytes(FileBuilder::kPreambleSize, 0))
        .Raw(VantorTest::BytesOf("DICM"))
        .Numbers32({0x0002, 0x0000}, Vr::kUL, {meta.GetSize()})
        .Raw(meta.GetBytes())
        .GetBytes();
}

std::unique_ptr<TDicomFile> NewFile(const TFileSpec& spec, std::unique_ptr<TDicomDataSet> dataSet = nullptr,
                                    bool isBigEndian = false,
                                    const char* transferSyntax = Uids::kExplicitVRLittleEndian) {
    return std::make_unique<TDicomFile>(0, spec, 0, std::move(dataSet), FileBuilder::kSecondaryCapture,
                                        "1.2.3.4", transferSyntax, Uids::kImplementationClass, isBigEndian);
}

TEST_F(TDicomFileTest, ANewFileIsEmptyUntilItIsWritten) {
    const auto file = NewFile(Spec());
    EXPECT_EQ(ReadWholeFile(Spec().fPath), Bytes());
    EXPECT_FALSE(file->IsOpen());
    EXPECT_FALSE(file->IsModified());
    EXPECT_EQ(file->GetDataSet()->CountElements(), 0);
    EXPECT_EQ(UidOf(*file, &TDicomFile::GetTransferSyntaxUID), Uids::kExplicitVRLittleEndian);

    PutText(*file->GetDataSet(), Tags::kPatientName, Vr::kPN, "Doe^John");
    file->OpenFile(FileAccess::kReadWrite);
    file->WriteFile();
    file->CloseFile();

    Bytes expected = OurMeta(FileBuilder::kSecondaryCapture, "1.2.3.4", Uids::kExplicitVRLittleEndian);
    const Bytes data = ElementBuilder()
                           .Numbers32({0x0010, 0x0000}, Vr::kUL, {16})
                           .Text(Tags::kPatientName, Vr::kPN, "Doe^John")
                           .GetBytes();
    expected.insert(expected.end(), data.begin(), data.end());
    EXPECT_EQ(ReadWholeFile(Spec().fPath), expected);
}

TEST_F(TDicomFileTest, ANewFileTakesADataSet) {
    const auto file = NewFile(Spec(), NewDataSet(false, false), false, Uids::kImplicitVRLittleEndian);
    EXPECT_FALSE(file->IsExplicit());
    PutText(*file->GetDataSet(), Tags::kModality, Vr::kCS, "US");
    file->OpenFile(FileAccess::kReadWrite);
    file->WriteFile();
    EXPECT_TRUE(file->ReadFile()) << "a file open for writing can be read back";
    EXPECT_EQ(TextOf(*file->GetDataSet(), Tags::kModality), "US");
}

TEST_F(TDicomFileTest, ANewBigEndianFileReadsBack) {
    const auto file = NewFile(Spec(), nullptr, true, Uids::kExplicitVRBigEndian);
    EXPECT_TRUE(file->IsBigEndian());
    const uint16_t rows = 600;
    file->GetDataSet()->PutElement(kRows, Vr::kUS, sizeof(rows), &rows, sizeof(rows));
    file->OpenFile(FileAccess::kReadWrite);
    file->WriteFile();
    file->CloseFile();

    TDicomFile again(0, Spec(), 0);
    again.OpenFile(FileAccess::kRead);
    ASSERT_TRUE(again.ReadFile());
    EXPECT_TRUE(again.IsBigEndian());
    uint16_t read = 0;
    EXPECT_TRUE(again.GetDataSet()->FindElement(kRows, nullptr, nullptr, &read, sizeof(read)));
    EXPECT_EQ(read, rows);
}

TEST_F(TDicomFileTest, AnObjectCanBecomeANewFile) {
    TDicomFile file(1, TFileSpec(fFolder.WriteFile("FILE.DCM", SmallFile().Build())), 2, 3, 4);
    SetWriteTime(Spec().fPath, 0);
    file.OpenFile(FileAccess::kRead);
    ASSERT_TRUE(file.ReadFile());
    file.SetSOPClassUID("9.9");
    file.UpdateModTime();
    file.InitNewFile(5, *file.GetFileSpec(), 6, nullptr, FileBuilder::kSecondaryCapture, "1.2.3",
                     Uids::kExplicitVRLittleEndian, Uids::kImplementationClass, false);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.IsModified());
    SetWriteTime(Spec().fPath, 0);
    EXPECT_FALSE(file.IsCurrent()) << "the time that was noted is the old file's";
    EXPECT_EQ(file.GetOwner(), 5U);
    EXPECT_EQ(file.GetContext(), 6U);
    EXPECT_EQ(file.GetFirstValue(), 0U);
    EXPECT_EQ(file.GetFileSize(), 0);
    EXPECT_STREQ(file.GetFileSpec()->fPath, Spec().fPath);
    EXPECT_EQ(UidOf(file, &TDicomFile::GetSOPClassUID), FileBuilder::kSecondaryCapture);
    EXPECT_EQ(file.GetDataSet()->CountElements(), 0);
    EXPECT_EQ(ReadWholeFile(Spec().fPath), Bytes());
}

TEST_F(TDicomFileTest, ANewFileInAFolderThatIsMissingFails) {
    const std::string path = fFolder.PathOf("missing/FILE.DCM");
    EXPECT_EQ(FailureOf([&] { NewFile(TFileSpec(path)); }), path + ": path not found or not usable");
}

TEST_F(TDicomFileTest, SettersReachTheDataSetTheMetaInformationAndTheFlag) {
    const auto file = NewFile(Spec());
    file->SetSOPInstanceUID("1.9");
    EXPECT_TRUE(file->IsModified());
    file->SetModified(false);
    file->SetTransferSyntaxUID("1.2");
    EXPECT_FALSE(file->IsModified());
    file->SetSOPClassUID("1.8");
    EXPECT_TRUE(file->IsModified());
    EXPECT_EQ(TextOf(*file->GetMetaDataSet(), Tags::kMediaStorageSOPClassUID), std::string("1.8\0", 4));
    EXPECT_EQ(TextOf(*file->GetMetaDataSet(), Tags::kMediaStorageSOPInstanceUID), std::string("1.9\0", 4));
    EXPECT_EQ(TextOf(*file->GetDataSet(), Tags::kSOPClassUID), std::string("1.8\0", 4));
    EXPECT_EQ(TextOf(*file->GetDataSet(), Tags::kSOPInstanceUID), std::string("1.9\0", 4));

    TDicomFile unread;
    unread.SetSOPClassUID("1.2.3");
    EXPECT_EQ(UidOf(unread, &TDicomFile::GetSOPClassUID), "1.2.3");
    EXPECT_TRUE(unread.IsModified());
}

TEST_F(TDicomFileTest, WritingLeavesNothingOfALongerFile) {
    const auto file = NewFile(Spec());
    fFolder.WriteFile("FILE.DCM", Bytes(5000, 'x'));
    file->OpenFile(FileAccess::kReadWrite);
    file->WriteFile();
    file->CloseFile();
    EXPECT_EQ(ReadWholeFile(Spec().fPath),
              OurMeta(FileBuilder::kSecondaryCapture, "1.2.3.4", Uids::kExplicitVRLittleEndian));
}

TEST_F(TDicomFileTest, WritingFailsUnderTheNameOfAnImageFile) {
    MemoryStorage storage;
    const auto file = NewFile(TFileSpec("File", &storage));
    file->OpenFile(FileAccess::kReadWrite);
    file->WriteFile();
    EXPECT_TRUE(storage.IsFlushed("File"));
    storage.FailOn(MemoryStorage::Fault::kWrite);
    EXPECT_EQ(FailureOf([&] { file->WriteFile(); }), "image file: disk is full");
    storage.FailOn(MemoryStorage::Fault::kFlush);
    EXPECT_EQ(FailureOf([&] { file->WriteFile(); }), "image file: device error");
    file->CloseFile();
    file->OpenFile(FileAccess::kRead);
    EXPECT_EQ(FailureOf([&] { file->WriteFile(); }), "image file: access denied");
}

TEST_F(TDicomFileTest, WithoutContentNothingIsWritten) {
    const Bytes bytes = SmallFile().Build();
    const auto file = Open(bytes, FileAccess::kReadWrite);
    EXPECT_EQ(FailureOf([&] { file->WriteFile(); }), kInvalid);
    ASSERT_TRUE(file->ReadMetaHeader());
    EXPECT_EQ(FailureOf([&] { file->WriteFile(); }), kInvalid);
    file->CloseFile();
    EXPECT_EQ(ReadWholeFile(Spec().fPath), bytes);
}

TEST_F(TDicomFileTest, AClosedFileIsNeitherReadNorWritten) {
    const auto file = NewFile(Spec());
    const std::string failure = std::string(Spec().fPath) + ": file operation failed";
    EXPECT_EQ(FailureOf([&] { file->ReadFile(); }), failure);
    EXPECT_EQ(FailureOf([&] { file->ReadMetaHeader(); }), failure);
    EXPECT_EQ(FailureOf([&] { file->WriteFile(); }), failure);
}

TEST_F(TDicomFileTest, CreateEmptyFileSetsTheFlagsAndEmptiesTheFile) {
    TDicomFile file(0, TFileSpec(fFolder.WriteFile("FILE.DCM", "old")), 0);
    file.CreateEmptyFile(false, true);
    EXPECT_FALSE(file.IsExplicit());
    EXPECT_TRUE(file.IsBigEndian());
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(ReadWholeFile(Spec().fPath), Bytes());
}

TEST_F(TDicomFileTest, DeleteDiskFileNeverFails) {
    TDicomFile().DeleteDiskFile();
    TDicomFile file(0, TFileSpec(fFolder.WriteFile("FILE.DCM", "old")), 0);
    file.DeleteDiskFile();
    file.DeleteDiskFile();
    EXPECT_TRUE(fFolder.ListFiles().empty());
}

// ---- Opening and closing ----

// Hangs unless the file's lock is free.
void OpenInAnotherThread(TDicomFile& file) {
    std::async(std::launch::async, [&] {
        file.OpenFile(FileAccess::kReadWrite);
        file.CloseFile();
    }).get();
}

// Time that passes only while somebody waits.
class WaitingClock : public Platform::Clock {
  public:
    std::chrono::steady_clock::time_point Now() override { return fNow; }

    void Sleep(std::chrono::milliseconds duration) override {
        EXPECT_EQ(duration.count(), 0) << "retries follow at once";
        fNow += std::chrono::seconds(1);
        if (++fSleeps == fEventAfter) fEvent();
    }

    int fSleeps = 0;
    int fEventAfter = 0;
    std::function<void()> fEvent;

  private:
    std::chrono::steady_clock::time_point fNow;
};

TEST_F(TDicomFileTest, WaitsFiftySecondsForAFileThatAnotherHolds) {
    TDicomFile holder(0, TFileSpec(fFolder.WriteFile("FILE.DCM", "held")), 0);
    TDicomFile file(0, Spec(), 0);
    for (const FileAccess held : {FileAccess::kRead, FileAccess::kReadWrite}) {
        holder.OpenFile(held);
        const FileAccess wanted = held == FileAccess::kRead ? FileAccess::kReadWrite : FileAccess::kRead;
        WaitingClock clock;
        const Platform::ReplacedClock replaced(clock);
        EXPECT_EQ(FailureOf([&] { file.OpenFile(wanted); }),
                  std::string(Spec().fPath) + ": in use by another program");
        EXPECT_EQ(clock.fSleeps, 50);
        EXPECT_FALSE(file.IsOpen());
        holder.CloseFile();
    }
    OpenInAnotherThread(file);
}

TEST_F(TDicomFileTest, GetsAFileThatAnotherLetsGo) {
    TDicomFile holder(0, TFileSpec(fFolder.WriteFile("FILE.DCM", "held")), 0);
    holder.OpenFile(FileAccess::kReadWrite);
    TDicomFile file(0, Spec(), 0);
    WaitingClock clock;
    const Platform::ReplacedClock replaced(clock);
    clock.fEventAfter = 49;
    clock.fEvent = [&] { holder.CloseFile(); };
    file.OpenFile(FileAccess::kRead);
    EXPECT_TRUE(file.IsOpen());
    EXPECT_EQ(clock.fSleeps, 49);
}

TEST_F(TDicomFileTest, OtherFailuresAreNotWaitedOut) {
    WaitingClock clock;
    const Platform::ReplacedClock replaced(clock);
    TDicomFile file(0, Spec(), 0);
    EXPECT_EQ(FailureOf([&] { file.OpenFile(FileAccess::kRead); }),
              std::string(Spec().fPath) + ": file not found");
    EXPECT_EQ(clock.fSleeps, 0);
}

TEST_F(TDicomFileTest, ReadersShareAFile) {
    const auto first = Open(SmallFile().Build());
    TDicomFile second(0, Spec(), 0);
    second.OpenFile(FileAccess::kRead);
    EXPECT_TRUE(second.ReadFile());
}

TEST_F(TDicomFileTest, OpeningTwiceIsOpeningOnce) {
    const auto file = Open(SmallFile().Build());
    file->OpenFile(FileAccess::kReadWrite);
    EXPECT_TRUE(file->ReadFile());
    file->CloseFile();
    EXPECT_FALSE(file->IsOpen());
    file->CloseFile();
    OpenInAnotherThread(*file);
}

TEST_F(TDicomFileTest, OneThreadAtATimeHasAFileOpen) {
    const auto file = Open(SmallFile().Build());
    std::atomic<bool> isClosed = false;
    std::atomic<bool> isTrying = false;
    auto other = std::async(std::launch::async, [&] {
        file->CloseFile();  // not this thread's to close
        isTrying = true;
        file->OpenFile(FileAccess::kRead);
        const bool wasClosed = isClosed;
        file->CloseFile();
        return wasClosed;
    });
    while (!isTrying) Platform::Clock::Current().Sleep(std::chrono::milliseconds(1));
    EXPECT_TRUE(file->IsOpen());
    Platform::Clock::Current().Sleep(std::chrono::milliseconds(20));
    isClosed = true;
    file->CloseFile();
    EXPECT_TRUE(other.get());
}

TEST_F(TDicomFileTest, TheDestructorClosesTheFile) {
    Open(SmallFile().Build(), FileAccess::kReadWrite).reset();
    TDicomFile(0, Spec(), 0).OpenFile(FileAccess::kReadWrite);
}

// ---- Size and time ----

TEST_F(TDicomFileTest, SizeInKilobytesRoundsUpFromTheLastByteOnly) {
    const struct {
        size_t fSize;
        uint32_t fKilobytes;
    } cases[] = {{0, 0}, {1022, 0}, {1023, 1}, {2046, 1}, {2047, 2}, {10240, 10}};
    for (const auto& [size, kilobytes] : cases) {
        TDicomFile file(0, TFileSpec(fFolder.WriteFile("FILE.DCM", Bytes(size, 0))), 0);
        EXPECT_EQ(file.GetFileSizeKB(), kilobytes) << size;
        EXPECT_FALSE(file.IsOpen());
    }
    EXPECT_EQ(TDicomFile(0, Spec("MISSING.DCM"), 0).GetFileSizeKB(), 0U);
    EXPECT_EQ(TDicomFile(0, TFileSpec(fFolder.GetPath()), 0).GetFileSizeKB(), 0U);
    EXPECT_EQ(TDicomFile().GetFileSizeKB(), 0U);
}

TEST_F(TDicomFileTest, MeasuringAnOpenFileLeavesItOpen) {
    const auto file = Open(Bytes(5000, 0), FileAccess::kReadWrite);
    EXPECT_EQ(file->GetFileSizeKB(), 4U);
    EXPECT_TRUE(file->IsOpen());
}

TEST_F(TDicomFileTest, IsCurrentUntilSomebodyWritesTheFile) {
    TDicomFile file(0, Spec("FILE"), 0);
    EXPECT_FALSE(file.IsCurrent()) << "there is no file";
    const std::string path = fFolder.WriteFile("FILE", "content");
    SetWriteTime(path, 0);
    EXPECT_FALSE(file.IsCurrent()) << "no time was noted";
    file.UpdateModTime();
    EXPECT_TRUE(file.IsCurrent());
    SetWriteTime(path, 2);
    EXPECT_FALSE(file.IsCurrent());
    SetWriteTime(path, 0);
    EXPECT_TRUE(file.IsCurrent());
    std::filesystem::remove(path);
    EXPECT_FALSE(file.IsCurrent());
    file.UpdateModTime();
    SetWriteTime(fFolder.WriteFile("FILE", "content"), 0);
    EXPECT_TRUE(file.IsCurrent()) << "a missing file must not change the time that was noted";
}

TEST_F(TDicomFileTest, APathOfThreeCharactersIsNoFileYet) {
    for (const char* path : {"", "C", "C:\\", "abc"})
        EXPECT_TRUE(TDicomFile(0, TFileSpec(path), 0).IsCurrent());
    EXPECT_FALSE(TDicomFile(0, TFileSpec("abcd"), 0).IsCurrent());
}

}  // namespace
