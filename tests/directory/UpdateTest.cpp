// How a DICOMDIR is created, brought up to date and written.

#include <gtest/gtest.h>

#include "dicom/TException.h"
#include "tests/directory/DirectorySupport.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Lengths = ElementBuilder::Lengths;

namespace fs = std::filesystem;

constexpr int kRoot = DirectoryBuilder::kRoot;
constexpr Platform::LocalTime kNovember{2024, 11, 15, 10, 30, 57, 42};

class UpdateTest : public testing::Test {
  protected:
    static DirectoryBuilder Medium(int patient = 1) {
        DirectoryBuilder media;
        media.AddInstance(media.AddSeries(media.AddStudy(media.AddPatient(patient), 2), 3), 4);
        return media;
    }
    void Open(const Bytes& content) { fDirectory = Load(fFolder, content); }
    // As another program puts a file in place.
    void Replace(const Bytes& content, int secondsLater) {
        const std::string other = fFolder.WriteFile("OTHER", content);
        fs::last_write_time(other, fs::last_write_time(fPath) + std::chrono::seconds(secondsLater));
        fs::rename(other, fPath);
    }
    std::string TreeOnDisk() const {
        TDicomDirectory directory(TFileSpec(fPath), 0);
        return TreesOf(directory);
    }
    std::string InstanceUID() {
        char uid[kMaximumUidLength + 1] = {};
        fDirectory->GetSOPInstanceUID(uid);
        return uid;
    }
    TPatientDoc* AddPatient(const char* patientID) {
        TPatientDoc patient(nullptr, nullptr);
        if (patientID != nullptr) patient.SetPatientNumber(patientID);
        fDirectory->FindOrCreateDoc(&patient, fError);
        return *fDirectory->GetPatientDocs()->rbegin();
    }

    TestFolder fFolder;
    std::string fPath = fFolder.PathOf("DICOMDIR");
    std::unique_ptr<TDicomDirectory> fDirectory;
    int32_t fError = 0;
};

TEST_F(UpdateTest, CreatesAnEmptyDICOMDIRInPlaceOfWhateverIsThere) {
    FileBuilder expected(Uids::kExplicitVRLittleEndian, "1.2.840.10008.1.3.10",
                         "1.2.840.990017.990017.1115.103057");
    expected.Meta().Text(Tags::kImplementationClassUID, Vr::kUI, "2.16.840.990017.100.98.19");
    expected.Data()
        .Text(Tags::kFileSetID, Vr::kCS, "MY DISC")
        .Numbers32(Tags::kFirstRootRecordOffset, Vr::kUL, {0})
        .Numbers32(Tags::kLastRootRecordOffset, Vr::kUL, {0})
        .Numbers16(Tags::kFileSetConsistencyFlag, Vr::kUS, {0})
        .Sequence(Tags::kDirectoryRecordSequence, {});
    Bytes content = expected.Build();
    uint8_t* const version = content.data() + FileBuilder::kMetaOffset + 24;
    std::swap(version[0], version[1]);  // as all files of this library have it
    const TestClock clock(kNovember);
    for (const bool isThere : {false, true}) {
        fDirectory = std::make_unique<TDicomDirectory>(TFileSpec(fPath), "my disc", 0, "1.2", "1.2.3",
                                                       Uids::kExplicitVRBigEndian, "1.2.3.4", true);
        AddPatient("ID1");
        isThere ? WriteWholeFile(fPath, Bytes(100000)) : void(fs::remove(fPath));
        fDirectory->CreateEmptyDICOMDIR();
        EXPECT_EQ(ReadWholeFile(fPath), content);
        EXPECT_FALSE(fDirectory->IsOpen());
        ASSERT_TRUE(fDirectory->OpenForUpdating());
        EXPECT_EQ(TreesOf(*fDirectory), "P1") << "only in memory, and current";
        fDirectory->WriteDICOMDIR();
        EXPECT_EQ(TreeOnDisk(), "P1");
    }
}

TEST_F(UpdateTest, IsCreatedAndUpdatedInsideStructuredStorage) {
    MemoryStorage storage;
    const TFileSpec spec("DICOMDIR", &storage);
    fDirectory = std::make_unique<TDicomDirectory>(spec, "NEW", 0, "1.2.840.10008.1.3.10", "1.2.3",
                                                   Uids::kExplicitVRLittleEndian, "1.2.3.4", false);
    for (const char* tree : {"P1", "P1 P2"}) {
        AddPatient(tree == std::string("P1") ? "ID1" : "ID2");
        fDirectory->WriteDICOMDIR();
        EXPECT_TRUE(storage.IsFlushed("DICOMDIR"));
        fDirectory = std::make_unique<TDicomDirectory>(spec, 0);
        EXPECT_EQ(TreesOf(*fDirectory), tree);
        ASSERT_TRUE(fDirectory->OpenForUpdating());
    }
    fDirectory->CreateEmptyDICOMDIR();
    EXPECT_EQ(TreesOf(*std::make_unique<TDicomDirectory>(spec, 0)), "");
    EXPECT_EQ(storage.ListStreams(), std::vector<std::string>{"DICOMDIR"});
}

// Hosts note its time after they have written it, which may be that of another program's by then.
TEST_F(UpdateTest, IsNotWrittenOverAnotherOneWhoseTimeIsNoted) {
    DirectoryBuilder longer = Medium(7);
    longer.AddPatient(8);
    for (const int secondsLater : {0, 60}) {
        Open(Medium().Build());
        fs::last_write_time(fPath, fs::last_write_time(fPath));
        ASSERT_TRUE(fDirectory->ReloadIfChanged());
        Replace(longer.Build(), secondsLater);
        fDirectory->UpdateModTime();
        EXPECT_EQ(ThrownBy([&] { fDirectory->WriteDICOMDIR(); }), "102 DICOMDIR has changed");
        EXPECT_EQ(ReadWholeFile(fPath), longer.Build());
    }
}

TEST_F(UpdateTest, WhatCannotBeCreatedOrWrittenLeavesTheOldOne) {
    const Bytes content = Medium().Build();
    Open(content);
    {
        const TestClock clock(kNovember);
        const auto held = Platform::OpenDiskFile(fPath, Platform::FileAccess::kReadWrite);
        EXPECT_NE(ThrownBy([&] { fDirectory->CreateEmptyDICOMDIR(); }), "nothing");
        EXPECT_NE(ThrownBy([&] { fDirectory->WriteDICOMDIR(); }), "nothing");
    }
    TPatientDoc* const patient = AddPatient(nullptr);
    for (int attempt = 0; attempt < 2; ++attempt) {
        ASSERT_TRUE(fDirectory->OpenForUpdating());
        EXPECT_EQ(ThrownBy([&] { fDirectory->WriteDICOMDIR(); }), "102 No Patient ID");
        EXPECT_FALSE(fDirectory->IsOpen());
    }
    EXPECT_EQ(ReadWholeFile(fPath), content);
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"DICOMDIR"});
    EXPECT_EQ(InstanceUID(), FileBuilder::kInstanceUID);
    patient->SetPatientNumber("ID7");
    fDirectory->WriteDICOMDIR();
    EXPECT_EQ(TreeOnDisk(), "P1(S2(s3(i4))) P7");
}

TEST_F(UpdateTest, ReadsAgainWhatIsNotTheFileThatItRead) {
    DirectoryBuilder longer = Medium(7);
    longer.AddPatient(8);
    Bytes otherMedium = Medium().Build();
    const std::string uid = FileBuilder::kInstanceUID;
    *(std::search(otherMedium.begin(), otherMedium.end(), uid.begin(), uid.end()) + 10) = '7';
    const std::tuple<Bytes, int, std::string> cases[] = {{{}, 0, "P9(S2(s3(i4)))"},
                                                         {Medium().Build(), 0, "P9(S2(s3(i4)))"},
                                                         {otherMedium, 0, "P1(S2(s3(i4)))"},
                                                         {Medium(7).Build(), -2, "P7(S2(s3(i4)))"},
                                                         {Medium(7).Build(), 0, "P7(S2(s3(i4)))"},
                                                         {longer.Build(), 0, "P7(S2(s3(i4))) P8"}};
    for (const auto& [content, secondsLater, expected] : cases) {
        Open(Medium().Build());
        // Some systems set a time in coarser steps than they keep it.
        fs::last_write_time(fPath, fs::last_write_time(fPath));
        ASSERT_TRUE(fDirectory->ReloadIfChanged());
        (*fDirectory->GetPatientDocs()->begin())->SetPatientNumber("ID9");
        TDicomDirectory second(TFileSpec(fPath), 0);
        if (!content.empty()) Replace(content, secondsLater);
        ASSERT_TRUE(fDirectory->OpenForUpdating());
        EXPECT_EQ(TreesOf(*fDirectory), expected);
        {
            const TestClock clock(kNovember);
            EXPECT_FALSE(second.OpenForUpdating()) << "while the first one updates";
        }
        fDirectory->WriteDICOMDIR();
        EXPECT_NE(ThrownBy([&] { second.WriteDICOMDIR(); }), "nothing") << "over what the first one wrote";
        ASSERT_TRUE(second.OpenForUpdating());
        EXPECT_EQ(TreesOf(second), expected);
    }
}

TEST_F(UpdateTest, StaysWhatItWasWhenTheFileHasBecomeUnreadable) {
    FileBuilder damaged(Uids::kImplicitVRLittleEndian, FileBuilder::kSecondaryCapture, "9.9");
    damaged.Data().Header({0x0004, 0x0001}, Vr::kUT, 0x7FFFFFF0).Raw(Bytes(40));
    for (const Bytes& content : {Bytes(), Bytes(3000, 'x'), FileBuilder().Build(), damaged.Build()}) {
        Open(Medium().Build());
        AddPatient("ID9");
        const Bytes dataSet = BytesOf(*fDirectory->GetDataSet());
        Replace(content, 2);
        for (int attempt = 0; attempt < 2; ++attempt) {
            EXPECT_FALSE(fDirectory->OpenForUpdating());
            EXPECT_FALSE(fDirectory->IsOpen());
            EXPECT_EQ(TreesOf(*fDirectory), "P1(S2(s3(i4))) P9");
            EXPECT_EQ(BytesOf(*fDirectory->GetDataSet()), dataSet);
            EXPECT_EQ(InstanceUID(), FileBuilder::kInstanceUID);
            EXPECT_TRUE(fDirectory->IsExplicit());
        }
        fDirectory->RefreshDocs();
        EXPECT_EQ(TreesOf(*fDirectory), "P1(S2(s3(i4)))");
        Replace(Medium(7).Build(), 0);
        EXPECT_TRUE(fDirectory->OpenForUpdating());
        EXPECT_EQ(TreesOf(*fDirectory), "P7(S2(s3(i4)))");
        fDirectory->CloseFile();
        fs::remove(fPath);
        EXPECT_FALSE(fDirectory->OpenForUpdating());
        EXPECT_EQ(TreesOf(*fDirectory), "P7(S2(s3(i4)))");
    }
}

// A medium with all kinds of records and elements, as it is read, or as it is to be written from that.
DirectoryBuilder FullMedium(const Encoding& encoding, Lengths given, bool isWritten) {
    const char* const syntax = isWritten ? Uids::kExplicitVRLittleEndian : encoding.fTransferSyntax;
    const Lengths lengths = isWritten ? Lengths::kDefined : given;
    const bool isBig = !isWritten && encoding.fIsBigEndian;
    const auto vrOf = [&](VrCode vr) { return isWritten && !encoding.fIsExplicit ? Vr::kUN : vr; };
    DirectoryBuilder media(syntax, lengths);
    const int study = media.AddStudy(media.AddPatient(1), 2);
    const int series = media.AddSeries(study, 3);
    const int image = media.Add(series, "IMAGE ");
    ElementBuilder inner(syntax), outer(syntax), icon(syntax);
    inner.Text(Tags::kReferencedSOPInstanceUID, Vr::kUI, "1.2.9");
    outer.Sequence({0x0008, 0x1199}, {inner.GetBytes(), inner.GetBytes()}, lengths);
    icon.Text({0x0028, 0x0004}, Vr::kCS, isWritten ? "MONOCHROME2" : "Monochrome2")
        .Numbers16(Tags::kPixelData, Vr::kOW, {0x0102, 0x0304, 0x0506, 0x0708});
    ElementBuilder& keys = media.Keys(image);
    keys.Text(Tags::kReferencedFileID, Vr::kCS, isWritten ? "IMAGES\\A_5" : "images\\a_5")
        .Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, "1.2");
    if (!isWritten) keys.Numbers32({0x0008, 0x0000}, Vr::kUL, {4711});
    keys.Sequence({0x0008, 0x1140}, {outer.GetBytes(), Bytes(), inner.GetBytes()}, lengths)
        .Numbers16({0x0009, 0x1001}, vrOf(Vr::kAT), {1, 0x0203})
        .Numbers32({0x0009, 0x1003}, vrOf(Vr::kFL), {0x01020304, 0x05060708})
        .Numbers32({0x0009, 0x1005}, vrOf(Vr::kFD), {isBig ? 0x3FF00506U : 1U, isBig ? 1U : 0x3FF00506U})
        .Text({0x0009, 0x1007}, vrOf(Vr::kUT), std::string(70000, 'x'))
        .Text(Tags::kInstanceNumber, Vr::kIS, "5")
        .Sequence({0x0088, 0x0200}, {icon.GetBytes()}, lengths);
    media.AddInstance(image, 6, "PRIVATE ");
    media.AddInstance(series, 7, "SR DOCUMENT ");
    media.Keys(media.Add(series, "RAW DATA")).Text(Tags::kInstanceNumber, Vr::kIS, "8");
    // What no parent takes.
    media.AddInstance(media.AddInstance(study, 10), 11, "PRIVATE ");
    media.AddSeries(media.AddPatient(12), 13);
    media.AddInstance(kRoot, 14, "HANGING PROTOCOL");
    media.AddInstance(media.AddSeries(kRoot, 15), 16);
    return media;
}

// The records one after the other, without their links, which come first.
std::vector<Bytes> RecordsIn(TDicomDirectory& directory) {
    constexpr int kLinksSize = 34;
    std::vector<Bytes> records;
    const TDicomDataSet& elements = *directory.GetDataSet();
    int32_t sequence = 0, item = TDicomDataSet::kFromStart;
    uint32_t length = 0;
    elements.FindElement(Tags::kDirectoryRecordSequence, nullptr, nullptr, nullptr, 0, &sequence);
    while (elements.FindNextItem(sequence, item, length, &item, &length)) {
        records.emplace_back(elements.GetDataSet() + item + kLinksSize,
                             elements.GetDataSet() + item + length);
    }
    return records;
}

// What was read again and written once more was all linked.
TEST_F(UpdateTest, EveryRecordComesOutAsItWentIn) {
    for (const Encoding& encoding : kEncodings) {
        Open(FullMedium(encoding, Lengths::kDefined, true).Build());
        const std::string tree = TreesOf(*fDirectory);
        const std::vector<Bytes> expected = RecordsIn(*fDirectory);
        EXPECT_EQ(expected.size(), 14U);
        for (const int variant : {0, 1, 2, 3}) {
            SCOPED_TRACE(testing::Message() << testing::PrintToString(encoding) << " " << variant);
            const auto lengths = variant < 2 ? Lengths::kDefined : Lengths::kUndefined;
            Open(FullMedium(encoding, lengths, false).Build());
            if (variant % 2 == 0) TreesOf(*fDirectory);  // looks at every record
            fDirectory->WriteDICOMDIR();
            EXPECT_FALSE(fDirectory->IsOpen());
            EXPECT_EQ(InstanceUID(), FileBuilder::kInstanceUID);
            EXPECT_TRUE(RecordsIn(*fDirectory) == expected);
            const Bytes written = ReadWholeFile(fPath);
            fDirectory->RefreshDocs();
            EXPECT_EQ(TreesOf(*fDirectory), tree);
            fDirectory->WriteDICOMDIR();
            EXPECT_TRUE(ReadWholeFile(fPath) == written);
        }
    }
}

// Also where there were no records yet, and in the order that others find them by, the last of several.
TEST_F(UpdateTest, KeepsTheElementsBesideTheRecords) {
    for (const bool hasRecords : {false, true}) {
        FileBuilder file(Uids::kExplicitVRBigEndian, Uids::kMediaStorageDirectory);
        file.Data().Text(Tags::kFileSetID, Vr::kCS, "OLD");
        for (const char* name : {"OTHER ", "README"}) file.Data().Text({0x0004, 0x1141}, Vr::kCS, name);
        file.Data().Numbers32(Tags::kLastRootRecordOffset, Vr::kUL, {4711});
        if (hasRecords) file.Data().Sequence(Tags::kDirectoryRecordSequence, {}, Lengths::kUndefined);
        file.Data().Numbers16(Tags::kRows, Vr::kUS, {0x0102}).Text({0x0004, 0x1142}, Vr::kCS, "ISO_IR 100");
        Open(file.Build());
        AddPatient("ID1");
        fDirectory->SetDirName("a longer name");
        fDirectory->WriteDICOMDIR();
        Open(ReadWholeFile(fPath));
        EXPECT_EQ(TreesOf(*fDirectory), "P1") << hasRecords;
        const TDicomDataSet& dataSet = *fDirectory->GetDataSet();
        EXPECT_EQ(TextOf(dataSet, Tags::kFileSetID), "A LONGER NAME ");
        EXPECT_EQ(TextOf(dataSet, {0x0004, 0x1141}), "README");
        EXPECT_EQ(TextOf(dataSet, {0x0004, 0x1142}), "ISO_IR 100");
        EXPECT_EQ(dataSet.CountElements(), 8);
        EXPECT_EQ(TextOf(dataSet, Tags::kRows), "\x02\x01");
        EXPECT_EQ(TextOf(dataSet, Tags::kLastRootRecordOffset),
                  TextOf(dataSet, Tags::kFirstRootRecordOffset));
    }
}

// Whoever writes it anew from what is in memory must not bring an old name back.
TEST_F(UpdateTest, TakesTheNameThatAnotherProgramHasGivenIt) {
    char name[TDicomDirectory::kDirectoryNameSize] = {};
    for (const bool isUpdate : {false, true}) {
        Open(Medium().Build());
        FileBuilder renamed(Uids::kExplicitVRLittleEndian, Uids::kMediaStorageDirectory);
        renamed.Data().Text(Tags::kFileSetID, Vr::kCS, "RENAMED ");
        Replace(renamed.Build(), 60);
        EXPECT_TRUE(isUpdate ? fDirectory->OpenForUpdating() : fDirectory->ReloadIfChanged());
        fDirectory->CloseFile();
        fDirectory->GetDirName(name, sizeof(name));
        EXPECT_STREQ(name, "RENAMED ");
        FileBuilder unnamed(Uids::kExplicitVRLittleEndian, Uids::kMediaStorageDirectory);
        unnamed.Data().Numbers16(Tags::kFileSetConsistencyFlag, Vr::kUS, {0});
        Replace(unnamed.Build(), 120);
        EXPECT_TRUE(fDirectory->ReloadIfChanged());
        fDirectory->GetDirName(name, sizeof(name));
        EXPECT_STREQ(name, "") << "it has none any more";
    }
}

TEST_F(UpdateTest, WritesWhatIsLeftOfADamagedMedium) {
    const DirectoryBuilder media = FullMedium(kEncodings[0], Lengths::kUndefined, false);
    const Bytes whole = media.Build();
    for (size_t size = media.OffsetOf(0); size < whole.size(); size += 41) {
        Open(Bytes(whole.data(), whole.data() + size));
        const std::string tree = TreesOf(*fDirectory);
        EXPECT_EQ(ThrownBy([this] { fDirectory->WriteDICOMDIR(); }), "nothing") << size;
        EXPECT_EQ(TreeOnDisk(), tree) << size;
    }
}

// What every record has, and what their files know.
TEST_F(UpdateTest, CompletesDocumentsMadeInMemory) {
    Open(Medium().Build());
    auto* const image = new TImageDoc(nullptr, fDirectory.get(), 0);
    image->SetSOPClassUID("1.2");
    auto file = std::make_unique<TDicomFile>(0, TFileSpec(fFolder.PathOf("images/new")), 0);
    file->SetTransferSyntaxUID("1.2.8");
    image->SetDicomFile(std::move(file));
    ASSERT_TRUE((*fDirectory->GetSeriesDocs()->begin())->AddChild(image, nullptr, true, fError));
    fDirectory->WriteDICOMDIR();
    Open(ReadWholeFile(fPath));
    TDicomDataSet& record = *(*fDirectory->GetImageDocs()->rbegin())->GetDataSet();
    EXPECT_EQ(TextOf(record, Tags::kReferencedFileID), "IMAGES\\NEW");
    EXPECT_EQ(TextOf(record, Tags::kReferencedTransferSyntaxUIDInFile), std::string("1.2.8\0", 6));
    EXPECT_EQ(TextOf(record, Tags::kInstanceNumber), "");
}

}  // namespace
