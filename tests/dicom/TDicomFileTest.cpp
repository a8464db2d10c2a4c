// Reading, writing and opening of Part 10 files. What it hunts: files that break off or lie about their
// lengths, files that others hold or change meanwhile, media that fill up half way.

#include "dicom/TDicomFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <future>
#include <map>
#include <utility>

#include "platform/Clock.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Platform::FileAccess;

constexpr char kInvalid[] = "102 Invalid Dicom File";

std::string UidOf(TIODSource& source, bool (TIODSource::*get)(char*)) {
    char buffer[kMaximumUidLength + 1] = {};
    return (source.*get)(buffer) ? buffer : "(unknown)";
}

FileBuilder SmallFile(std::string_view transferSyntaxUID = Uids::kExplicitVRLittleEndian,
                      std::string_view encoding = Uids::kExplicitVRLittleEndian) {
    FileBuilder file(transferSyntaxUID, FileBuilder::kSecondaryCapture, "1.23");
    file.Data() = ElementBuilder(encoding)
                      .Text(Tags::kModality, Vr::kCS, "US")
                      .Sequence(Tags::kSourceImageSequence, {Bytes()}, ElementBuilder::Lengths::kUndefined)
                      .Text(Tags::kPatientName, Vr::kPN, "Doe^Jane");
    return file;
}

Bytes FileWithMeta(const ElementBuilder& meta) {
    FileBuilder file;
    file.ReplaceMeta(meta).Data().Text(Tags::kModality, Vr::kCS, "US");
    return file.Build();
}

// Dates a file a number of seconds after some whole second of the past, which every file system can keep.
void SetWriteTime(const std::string& path, int seconds) {
    using FileClock = std::filesystem::file_time_type::clock;
    static const auto past = std::chrono::floor<std::chrono::hours>(FileClock::now()) - std::chrono::hours(1);
    std::filesystem::last_write_time(path, past + std::chrono::seconds(seconds));
}

class TDicomFileTest : public testing::Test {
  protected:
    // A file with these bytes, open for reading.
    std::unique_ptr<TDicomFile> Open(const Bytes& bytes) {
        auto file = std::make_unique<TDicomFile>(0, TFileSpec(fFolder.WriteFile("FILE.DCM", bytes)), 7);
        file->OpenFile(FileAccess::kRead);
        return file;
    }

    TFileSpec Spec() const { return TFileSpec(fFolder.PathOf("FILE.DCM")); }

    TestFolder fFolder;
};

// ---- Reading ----

// The stored UID is compared over its own length: writers have left it empty or cut it short in files that
// hosts must go on reading as implicit.
TEST_F(TDicomFileTest, ATransferSyntaxThatIsAPrefixOfTheImplicitOneIsImplicit) {
    const std::string longest = "1.2.840.10008.1.2.4." + std::string(44, '9');
    const struct {
        std::string fStored, fRead;
        const char* fEncoding;
    } cases[] = {
        {"", "(unknown)", Uids::kImplicitVRLittleEndian},
        {"1.2.840.10008.1", "1.2.840.10008.1", Uids::kImplicitVRLittleEndian},
        {"1.2.840.10008.1.2", "1.2.840.10008.1.2", Uids::kImplicitVRLittleEndian},
        {std::string("1.2.840.10008.1.2\0\0\0", 20), "1.2.840.10008.1.2", Uids::kImplicitVRLittleEndian},
        {"1.2.840.10008.1.2 ", "1.2.840.10008.1.2 ", Uids::kExplicitVRLittleEndian},
        {"1.2.840.10008.1.2.1", "1.2.840.10008.1.2.1", Uids::kExplicitVRLittleEndian},
        {"1.2.840.10008.1.2.2", "1.2.840.10008.1.2.2", Uids::kExplicitVRBigEndian},
        {"1.2.840.10008.1.2.2.1", "1.2.840.10008.1.2.2.1", Uids::kExplicitVRLittleEndian},
        {longest + "23", longest, Uids::kExplicitVRLittleEndian},
    };
    for (const auto& [stored, read, encoding] : cases) {
        SCOPED_TRACE(stored);
        FileBuilder builder = SmallFile(stored, encoding);
        const auto file = Open(builder.Build());
        ASSERT_TRUE(file->ReadFile());
        EXPECT_EQ(BytesOf(*file->GetDataSet()), builder.Data().GetBytes());
        EXPECT_EQ(TextOf(*file->GetDataSet(), Tags::kPatientName), "Doe^Jane");
        EXPECT_EQ(UidOf(*file, &TIODSource::GetTransferSyntaxUID), read);
        EXPECT_EQ(UidOf(*file, &TIODSource::GetSOPClassUID), FileBuilder::kSecondaryCapture);
        EXPECT_EQ(UidOf(*file, &TIODSource::GetSOPInstanceUID), "1.23");
        PutText(*file->GetDataSet(), {0x7FE1, 0x1010}, Vr::kUN, std::string(1'000'000, 'x'));  // can grow
    }
}

TEST_F(TDicomFileTest, RefusesWhatIsNoDicomFile) {
    Bytes otherPrefix = SmallFile().Build();
    otherPrefix[FileBuilder::kPreambleSize + 3] = 'm';
    const std::pair<Bytes, const char*> cases[] = {
        {otherPrefix, kInvalid},
        {FileWithMeta(ElementBuilder().Text(Tags::kTransferSyntaxUID, Vr::kUI, "1.2")), kInvalid},
        {FileWithMeta(ElementBuilder().Header(Tags::kMediaStorageSOPClassUID, Vr::kUI, 5000)),
         "102 Invalid DICOM element length, longer than the data set."},
    };
    for (const auto& [bytes, failure] : cases) {
        const auto file = Open(bytes);
        EXPECT_EQ(ThrownBy([&] { file->ReadMetaHeader(); }), failure);
        EXPECT_EQ(ThrownBy([&] { file->ReadFile(); }), failure);
    }
}

// Telling a file's class takes one read of fixed size, whatever the file is; longer meta information is for
// reading the file whole.
TEST_F(TDicomFileTest, TheMetaHeaderIsLookedForInTheFirstKilobyte) {
    constexpr size_t kHeadersAround = 12 + 8;  // of the element added, and of the first one of the data set
    const size_t room = TDicomFile::kMetaHeaderReadSize - FileBuilder().BuildMeta().size() - kHeadersAround;
    for (const size_t size : {room, room + 2}) {
        FileBuilder builder;
        builder.Meta().Value({0x0002, 0x0102}, Vr::kOB, Bytes(size, 0));
        builder.Data().Value(Tags::kPixelData, Vr::kUS, Bytes(2000, 0));
        const auto file = Open(builder.Build());
        EXPECT_EQ(ThrownBy([&] { file->ReadMetaHeader(); }), size == room ? "nothing" : kInvalid);
        EXPECT_TRUE(file->ReadFile());
    }
}

TEST_F(TDicomFileTest, WhateverIsLeftOfAFileIsReadOrRefused) {
    const FileBuilder builder = SmallFile();
    const Bytes whole = builder.Build();
    const size_t smallest = builder.GetDataOffset() + 8;
    for (size_t size = 0; size <= whole.size(); ++size) {
        const auto file = Open(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size)));
        const std::string failure = ThrownBy([&] { file->ReadFile(); });
        EXPECT_EQ(ThrownBy([&] { file->ReadMetaHeader(); }), failure);
        ASSERT_EQ(failure.substr(0, 4), size < smallest ? "102 " : "noth") << size;
        if (size < smallest) continue;
        EXPECT_EQ(file->GetDataSet()->GetDataSetSize(), static_cast<int32_t>(size - builder.GetDataOffset()));
        ThrownBy([&] { file->GetDataSet()->CountElements(); });
    }
}

TEST_F(TDicomFileTest, AFileBeyond2GigabytesIsMeasuredAndCopiedButNotReadWhole) {
    constexpr int64_t kSize = 5'000'000'000;
    fFolder.WriteFile("FILE.DCM", SmallFile().Build());
    std::filesystem::resize_file(Spec().fPath, kSize);
    TDicomFile file(0, Spec(), 0);
    EXPECT_EQ(file.GetFileSizeKB(), 4882812U);
    int64_t size = 0;
    file.BeginCopy(TFileSpec(fFolder.PathOf("COPY.DCM")), size);
    EXPECT_EQ(size, kSize);
    EXPECT_EQ(file.CopyNextChunk(), kSize - TDicomFile::kChunkSize);
    EXPECT_EQ(ThrownBy([&] { file.ReadFile(); }), "0 Can't get memory");
}

TEST_F(TDicomFileTest, AFileThatChangesWhileOpenIsReadAsItIsOrLeavesWhatWasRead) {
    MemoryStorage storage;
    storage.SetContent("File", SmallFile().Build());
    TDicomFile file(0, TFileSpec("File", &storage), 0);
    file.OpenFile(FileAccess::kRead);
    Bytes longer = SmallFile().Build();
    longer.resize(longer.size() + 8);
    storage.SetContent("File", longer);
    EXPECT_TRUE(file.ReadFile());
    EXPECT_EQ(file.GetFileSize(), static_cast<int64_t>(longer.size()));
    storage.SetContent("File", Bytes(500, 0));
    EXPECT_EQ(ThrownBy([&] { file.ReadFile(); }), kInvalid);
    EXPECT_EQ(TextOf(*file.GetDataSet(), Tags::kPatientName), "Doe^Jane");
    storage.SetContent("File", FileWithMeta(ElementBuilder().Text({0x0002, 0x0002}, Vr::kUI, "1.2")));
    EXPECT_FALSE(file.ReadFile()) << "no transfer syntax";
    EXPECT_EQ(file.GetDataSet(), nullptr);
    EXPECT_EQ(UidOf(file, &TIODSource::GetSOPInstanceUID), "(unknown)");
}

// ---- New files and writing ----

std::unique_ptr<TDicomFile> NewFile(const TFileSpec& spec) {
    return std::make_unique<TDicomFile>(0, spec, 0, nullptr, FileBuilder::kSecondaryCapture, "1.2.3.4",
                                        Uids::kExplicitVRLittleEndian, Uids::kImplementationClass, false);
}

// Other programs and old media know files of this library by these bytes.
TEST_F(TDicomFileTest, ANewFileHasTheBytesThatOursAlwaysHad) {
    const auto file = NewFile(Spec());
    EXPECT_EQ(ReadWholeFile(Spec().fPath), Bytes()) << "empty until it is written";
    PutText(*file->GetDataSet(), Tags::kPatientName, Vr::kPN, "Doe^John");
    WriteWholeFile(Spec().fPath, Bytes(5000, 'x'));  // nothing of which may be left
    file->OpenFile(FileAccess::kReadWrite);
    file->WriteFile();
    file->CloseFile();
    const Bytes expected = ElementBuilder()
                               .Raw(Bytes(128, 0))
                               .Raw(BytesOf("DICM"))
                               .Numbers32({0x0002, 0x0000}, Vr::kUL, {126})
                               .Value({0x0002, 0x0001}, Vr::kOB, {0x01, 0x00})
                               .Text({0x0002, 0x0002}, Vr::kUI, "1.2.840.10008.5.1.4.1.1.7")
                               .Text({0x0002, 0x0003}, Vr::kUI, "1.2.3.4")
                               .Text({0x0002, 0x0010}, Vr::kUI, "1.2.840.10008.1.2.1")
                               .Text({0x0002, 0x0012}, Vr::kUI, "2.16.840.990017.100.98.19")
                               .Numbers32({0x0010, 0x0000}, Vr::kUL, {16})
                               .Text(Tags::kPatientName, Vr::kPN, "Doe^John")
                               .GetBytes();
    EXPECT_EQ(ReadWholeFile(Spec().fPath), expected);
}

TEST_F(TDicomFileTest, SettersReachTheDataSetTheMetaInformationAndTheFlag) {
    const std::string longest(kMaximumUidLength, '1');
    const auto file = NewFile(Spec());
    EXPECT_FALSE(file->IsModified());
    file->SetSOPClassUID((longest + "2").c_str());
    EXPECT_TRUE(file->IsModified());
    file->SetSOPInstanceUID("1.9");
    EXPECT_EQ(TextOf(*file->GetDataSet(), Tags::kSOPClassUID), longest);
    EXPECT_EQ(TextOf(*file->GetMetaDataSet(), Tags::kMediaStorageSOPClassUID), longest);
    EXPECT_EQ(TextOf(*file->GetDataSet(), Tags::kSOPInstanceUID), std::string("1.9\0", 4));
    EXPECT_EQ(TextOf(*file->GetMetaDataSet(), Tags::kMediaStorageSOPInstanceUID), std::string("1.9\0", 4));
    TIODSource source;
    source.SetSOPClassUID("1.2");
    EXPECT_FALSE(source.IsModified()) << "only files note it";
    int64_t size = 7;
    EXPECT_EQ(source.BeginCopy(TFileSpec("target"), size), -1);
}

TEST_F(TDicomFileTest, WritingWithoutContentOrRoomFails) {
    const Bytes bytes = SmallFile().Build();
    MemoryStorage storage;
    storage.SetContent("File", bytes);
    TDicomFile file(0, TFileSpec("File", &storage), 0);
    file.OpenFile(FileAccess::kReadWrite);
    ASSERT_TRUE(file.ReadMetaHeader());
    EXPECT_EQ(ThrownBy([&] { file.WriteFile(); }), kInvalid) << "there is no data set";
    EXPECT_EQ(storage.GetContent("File"), bytes);
    ASSERT_TRUE(file.ReadFile());
    storage.FailOn(MemoryStorage::Fault::kFlush);
    EXPECT_EQ(ThrownBy([&] { file.WriteFile(); }), "image file: device error");
    storage.FailOn(MemoryStorage::Fault::kWrite);
    EXPECT_EQ(ThrownBy([&] { file.WriteFile(); }), "image file: disk is full");
}

// ---- Opening and closing ----

// Time that passes only while somebody waits for a file, which its holder lets go after some attempts.
struct WaitingClock : Platform::Clock {
    std::chrono::steady_clock::time_point Now() override { return fNow; }
    std::optional<Platform::LocalTime> GetLocalTime() override { return std::nullopt; }

    void Sleep(std::chrono::milliseconds duration) override {
        EXPECT_EQ(duration.count(), 0) << "retries follow at once";
        fNow += std::chrono::seconds(1);
        if (++fSleeps == fLetGoAfter) fHolder->Close();
    }

    std::chrono::steady_clock::time_point fNow;
    int fSleeps = 0;
    int fLetGoAfter = 0;
    std::unique_ptr<Platform::File> fHolder;
};

TEST_F(TDicomFileTest, WaitsFiftySecondsForAFileThatAnotherHolds) {
    constexpr int kSeconds = 50;
    const auto own = Open(SmallFile().Build());
    own->OpenFile(FileAccess::kRead);
    TDicomFile file(0, Spec(), 0);
    const auto open = [&](FileAccess wanted) { return ThrownBy([&] { file.OpenFile(wanted); }); };
    EXPECT_EQ(open(FileAccess::kRead), "nothing") << "readers share";
    file.CloseFile();
    const std::string refused = Spec().fPath + std::string(": in use by another program");
    EXPECT_EQ(open(FileAccess::kReadWrite), refused) << "held by this very thread, at once";
    own->CloseFile();
    for (const FileAccess held : {FileAccess::kRead, FileAccess::kReadWrite}) {
        for (const int letGoAfter : {kSeconds, kSeconds + 1}) {
            file.CloseFile();
            WaitingClock clock;
            clock.fHolder = Platform::OpenDiskFile(Spec().fPath, held);
            clock.fLetGoAfter = letGoAfter;
            const Platform::ReplacedClock replaced(clock);
            const bool isLetGo = letGoAfter == kSeconds;
            EXPECT_EQ(open(held == FileAccess::kRead ? FileAccess::kReadWrite : FileAccess::kRead),
                      isLetGo ? "nothing" : refused);
            EXPECT_EQ(clock.fSleeps, kSeconds);
        }
    }
}

TEST_F(TDicomFileTest, OneThreadAtATimeHasAFileOpen) {
    const auto file = Open(SmallFile().Build());
    file->OpenFile(FileAccess::kRead);  // is open already: closing once will do
    auto other = std::async(std::launch::async, [&] {
        file->CloseFile();  // not this thread's to close
        file->OpenFile(FileAccess::kRead);
        file->CloseFile();
    });
    EXPECT_EQ(other.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    EXPECT_TRUE(file->IsOpen());
    file->CloseFile();
    other.get();
}

// ---- Size and time ----

TEST_F(TDicomFileTest, SizeInKilobytesRoundsUpFromTheLastByteOnly) {
    const std::map<size_t, uint32_t> cases = {{0, 0},    {1022, 0}, {1023, 1},
                                              {2046, 1}, {2047, 2}, {10240, 10}};
    for (const auto& [size, kilobytes] : cases) {
        const auto file = Open(Bytes(size, 0));
        EXPECT_EQ(file->GetFileSizeKB(), kilobytes) << size;
        EXPECT_TRUE(file->IsOpen());
    }
    EXPECT_EQ(TDicomFile(0, TFileSpec(fFolder.GetPath()), 0).GetFileSizeKB(), 0U);
}

TEST_F(TDicomFileTest, IsCurrentUntilSomebodyWritesTheFile) {
    TDicomFile file(0, Spec(), 0);
    EXPECT_FALSE(file.IsCurrent()) << "there is no file";
    SetWriteTime(fFolder.WriteFile("FILE.DCM", "content"), 0);
    EXPECT_FALSE(file.IsCurrent()) << "no time was noted";
    file.UpdateModTime();
    std::filesystem::remove(Spec().fPath);
    file.UpdateModTime();  // notes nothing: the old time stays
    for (const int seconds : {0, 2, 0}) {
        SetWriteTime(fFolder.WriteFile("FILE.DCM", "content"), seconds);
        EXPECT_EQ(file.IsCurrent(), seconds == 0);
    }
    for (const char* path : {"", "C:\\"}) EXPECT_TRUE(TDicomFile(0, TFileSpec(path), 0).IsCurrent());
    EXPECT_FALSE(TDicomFile(0, TFileSpec("abcd"), 0).IsCurrent()) << "longer than a drive";
}

}  // namespace
