// How a DICOMDIR is created, brought up to date and written.

#include <gtest/gtest.h>

#include <set>

#include "dicom/TException.h"
#include "tests/directory/DirectorySupport.h"

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
    void Replace(const Bytes& content, fs::file_time_type time) {
        const std::string other = fFolder.WriteFile("OTHER", content);
        fs::last_write_time(other, time);
        fs::rename(other, fPath);
    }
    std::string TreeOnDisk() const {
        TDicomDirectory directory(TFileSpec(fPath), 0);
        return TreesOf(directory);
    }
    std::string Identity() {
        char uids[2][kMaximumUidLength + 1] = {};
        fDirectory->GetSOPClassUID(uids[0]);
        fDirectory->GetSOPInstanceUID(uids[1]);
        return std::string(uids[0]) + " " + uids[1];
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
    const std::string kIdentity = std::string("1.2.840.10008.1.3.10 ") + FileBuilder::kInstanceUID;
};

TEST_F(UpdateTest, CreatesAnEmptyDICOMDIRInPlaceOfWhateverIsThere) {
    ElementBuilder meta;
    meta.Value(Tags::kFileMetaInformationVersion, Vr::kOB, {0x01, 0x00})
        .Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, "1.2.840.10008.1.3.10")
        .Text(Tags::kMediaStorageSOPInstanceUID, Vr::kUI, "1.2.840.990017.990017.1115.103057")
        .Text(Tags::kTransferSyntaxUID, Vr::kUI, "1.2.840.10008.1.2.1")
        .Text(Tags::kImplementationClassUID, Vr::kUI, "2.16.840.990017.100.98.19");
    FileBuilder expected;
    expected.ReplaceMeta(
        ElementBuilder().Numbers32({0x0002, 0x0000}, Vr::kUL, {meta.GetSize()}).Raw(meta.GetBytes()));
    expected.Data()
        .Text(Tags::kFileSetID, Vr::kCS, "MY DISC")
        .Numbers32(Tags::kFirstRootRecordOffset, Vr::kUL, {0})
        .Numbers32(Tags::kLastRootRecordOffset, Vr::kUL, {0})
        .Numbers16(Tags::kFileSetConsistencyFlag, Vr::kUS, {0})
        .Sequence(Tags::kDirectoryRecordSequence, {});
    const TestClock clock(kNovember);
    for (const bool isThere : {false, true}) {
        fDirectory = std::make_unique<TDicomDirectory>(TFileSpec(fPath), "my disc", 0, "1.2", "1.2.3",
                                                       Uids::kExplicitVRBigEndian, "1.2.3.4", true);
        AddPatient("ID1");
        isThere ? WriteWholeFile(fPath, Bytes(100000)) : void(fs::remove(fPath));
        fDirectory->CreateEmptyDICOMDIR();
        EXPECT_EQ(ReadWholeFile(fPath), expected.Build());
        EXPECT_FALSE(fDirectory->IsOpen());
        ASSERT_TRUE(fDirectory->OpenForUpdating());
        EXPECT_EQ(TreesOf(*fDirectory), "P1") << "only in memory, and current";
        fDirectory->WriteDICOMDIR();
        EXPECT_EQ(TreeOnDisk(), "P1");
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
    ASSERT_TRUE(fDirectory->OpenForUpdating());
    EXPECT_EQ(ThrownBy([&] { fDirectory->WriteDICOMDIR(); }), "102 No Patient ID");
    EXPECT_FALSE(fDirectory->IsOpen());
    EXPECT_EQ(ReadWholeFile(fPath), content);
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"DICOMDIR"});
    EXPECT_EQ(Identity(), kIdentity);
    patient->SetPatientNumber("ID7");
    fDirectory->WriteDICOMDIR();
    EXPECT_EQ(TreeOnDisk(), "P1(S2(s3(i4))) P7");
}

TEST_F(UpdateTest, ReadsAgainWhatIsNotTheFileThatItRead) {
    DirectoryBuilder longer = Medium(7);
    longer.AddPatient(8);
    const std::tuple<Bytes, int, std::string> cases[] = {{{}, 0, "P9(S2(s3(i4)))"},
                                                         {Medium(7).Build(), 2, "P7(S2(s3(i4)))"},
                                                         {Medium(7).Build(), -2, "P7(S2(s3(i4)))"},
                                                         {Medium(7).Build(), 0, "P7(S2(s3(i4)))"},
                                                         {longer.Build(), 0, "P7(S2(s3(i4))) P8"}};
    for (const auto& [content, secondsLater, expected] : cases) {
        Open(Medium().Build());
        (*fDirectory->GetPatientDocs()->begin())->SetPatientNumber("ID9");
        TDicomDirectory second(TFileSpec(fPath), 0);
        const auto time = fs::last_write_time(fPath) + std::chrono::seconds(secondsLater);
        if (!content.empty()) Replace(content, time);
        ASSERT_TRUE(fDirectory->OpenForUpdating());
        EXPECT_EQ(TreesOf(*fDirectory), expected);
        {
            const TestClock clock(kNovember);
            EXPECT_FALSE(second.OpenForUpdating()) << "while the first one updates";
        }
        fDirectory->WriteDICOMDIR();
        ASSERT_TRUE(second.OpenForUpdating());
        EXPECT_EQ(TreesOf(second), expected);
    }
}

TEST_F(UpdateTest, StaysWhatItWasWhenTheFileHasBecomeUnreadable) {
    const char* const otherClass = FileBuilder::kSecondaryCapture;
    FileBuilder damaged(Uids::kImplicitVRLittleEndian, otherClass, "9.9");
    damaged.Data().Header({0x0004, 0x0001}, Vr::kUT, 0x7FFFFFF0).Raw(Bytes(40));
    FileBuilder withoutSyntax;
    withoutSyntax.ReplaceMeta(ElementBuilder().Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, otherClass));
    withoutSyntax.Data().Text(Tags::kModality, Vr::kCS, "US");
    const std::pair<const char*, Bytes> cases[] = {{"empty", {}},
                                                   {"garbage", Bytes(3000, 'x')},
                                                   {"meta information only", FileBuilder().Build()},
                                                   {"no transfer syntax", withoutSyntax.Build()},
                                                   {"no way to the records", damaged.Build()}};
    for (const auto& [name, content] : cases) {
        SCOPED_TRACE(name);
        Open(Medium().Build());
        AddPatient("ID9");
        fDirectory->SetDirName("ANOTHER");
        const Bytes dataSet = BytesOf(*fDirectory->GetDataSet());
        const auto time = fs::last_write_time(fPath) + std::chrono::seconds(2);
        Replace(content, time);
        for (int attempt = 0; attempt < 2; ++attempt) {
            EXPECT_FALSE(fDirectory->OpenForUpdating());
            EXPECT_FALSE(fDirectory->IsOpen());
            EXPECT_EQ(TreesOf(*fDirectory), "P1(S2(s3(i4))) P9");
            EXPECT_EQ(BytesOf(*fDirectory->GetDataSet()), dataSet);
            EXPECT_EQ(Identity(), kIdentity);
            EXPECT_TRUE(fDirectory->IsExplicit());
        }
        fDirectory->RefreshDocs();
        EXPECT_EQ(TreesOf(*fDirectory), "P1(S2(s3(i4)))");
        Replace(Medium(7).Build(), time);
        EXPECT_TRUE(fDirectory->OpenForUpdating());
        EXPECT_EQ(TreesOf(*fDirectory), "P7(S2(s3(i4)))");
        fDirectory->CloseFile();
        fs::remove(fPath);
        EXPECT_FALSE(fDirectory->OpenForUpdating());
        EXPECT_EQ(TreesOf(*fDirectory), "P7(S2(s3(i4)))");
    }
}

// A medium with everything that a record may have, as it is read, or as it is to be written from that.
DirectoryBuilder FullMedium(const Encoding& encoding, Lengths given, bool isWritten) {
    const char* const syntax = isWritten ? Uids::kExplicitVRLittleEndian : encoding.fTransferSyntax;
    const Lengths lengths = isWritten ? Lengths::kDefined : given;
    const bool isBig = !isWritten && encoding.fIsBigEndian;
    const auto vrOf = [&](VrCode vr) { return isWritten && !encoding.fIsExplicit ? Vr::kUN : vr; };
    DirectoryBuilder media(syntax, lengths);
    const int study = media.AddStudy(media.AddPatient(1), 2);
    const int series = media.AddSeries(study, 3);
    media.AddInstance(series, 4);
    const int image = media.Add(series, "IMAGE ");
    ElementBuilder& keys = media.Keys(image);
    keys.Text(Tags::kReferencedFileID, Vr::kCS, isWritten ? "IMAGES\\A_5" : "images\\a_5")
        .Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, "1.2");
    if (!isWritten) keys.Numbers32({0x0008, 0x0000}, Vr::kUL, {4711});
    ElementBuilder inner(syntax), outer(syntax), icon(syntax);
    inner.Text(Tags::kReferencedSOPInstanceUID, Vr::kUI, "1.2.9");
    outer.Sequence({0x0008, 0x1199}, {inner.GetBytes(), inner.GetBytes()}, lengths);
    icon.Text({0x0028, 0x0004}, Vr::kCS, isWritten ? "MONOCHROME2" : "Monochrome2")
        .Numbers16(Tags::kRows, Vr::kUS, {2})
        .Numbers16(Tags::kPixelData, Vr::kOW, {0x0102, 0x0304, 0x0506, 0x0708});
    keys.Sequence({0x0008, 0x1140}, {outer.GetBytes(), Bytes(), inner.GetBytes()}, lengths)
        .Sequence({0x0008, 0x1199}, {Bytes()}, lengths)
        .Text({0x0009, 0x0010}, vrOf(Vr::kLO), "A Vendor")
        .Numbers16({0x0009, 0x1001}, vrOf(Vr::kUS), {1, 0x0203})
        .Numbers32({0x0009, 0x1002}, vrOf(Vr::kSL), {0x01020304})
        .Numbers32({0x0009, 0x1003}, vrOf(Vr::kFL), {0x01020304, 0x05060708})
        .Numbers16({0x0009, 0x1004}, vrOf(Vr::kAT), {0x0010, 0x0020})
        .Numbers32({0x0009, 0x1005}, vrOf(Vr::kFD), {isBig ? 0x3FF00506U : 1U, isBig ? 1U : 0x3FF00506U})
        .Value({0x0009, 0x1006}, vrOf(Vr::kOB), {1, 2, 3, 4})
        .Text({0x0009, 0x1007}, vrOf(Vr::kUT), std::string(70000, 'x'))
        .Text(Tags::kInstanceNumber, Vr::kIS, "5")
        .Text({0x0020, 0x4000}, Vr::kLT, "mixed Case")
        .Sequence({0x0088, 0x0200}, {icon.GetBytes()}, lengths);
    media.AddInstance(image, 6, "PRIVATE ");
    media.AddInstance(series, 7, "SR DOCUMENT ");
    media.Keys(media.Add(series, "RAW DATA")).Text(Tags::kInstanceNumber, Vr::kIS, "8");
    media.AddInstance(series, 9, "PRIVATE ");
    // What no parent takes.
    media.AddInstance(media.AddInstance(study, 10), 11, "PRIVATE ");
    media.AddSeries(media.AddPatient(12), 13);
    media.AddInstance(kRoot, 14, "HANGING PROTOCOL");
    media.AddInstance(media.AddSeries(kRoot, 15), 16);
    return media;
}

// The records one after the other, without their links; checks that these lead to each record once.
std::vector<Bytes> RecordsIn(TDicomDirectory& directory) {
    std::vector<Bytes> records;
    std::multiset<int64_t> starts;
    std::multiset<int64_t> targets;
    const auto follow = [&targets](TDicomDataSet& elements, Tag tag) {
        uint32_t target = 0;
        int32_t offset = 0;
        ASSERT_TRUE(elements.FindElement(tag, nullptr, nullptr, &target, sizeof(target), &offset));
        if (target != 0) targets.insert(target);
        std::fill_n(elements.GetDataSet() + offset + 8, sizeof(target), uint8_t{0});
    };
    Bytes bytes = BytesOf(*directory.GetDataSet());
    TDicomDataSet copy = Over(bytes);
    follow(copy, Tags::kFirstRootRecordOffset);
    int32_t sequence = 0, item = TDicomDataSet::kFromStart;
    uint32_t length = 0;
    EXPECT_TRUE(copy.FindElement(Tags::kDirectoryRecordSequence, nullptr, nullptr, nullptr, 0, &sequence));
    while (copy.FindNextItem(sequence, item, length, &item, &length)) {
        starts.insert(directory.GetHeaderSize() + item - 8);
        records.emplace_back(copy.GetDataSet() + item, copy.GetDataSet() + item + length);
        TDicomDataSet record = Over(records.back());
        follow(record, Tags::kNextRecordOffset);
        follow(record, Tags::kLowerLevelOffset);
    }
    EXPECT_EQ(targets, starts);
    return records;
}

TEST_F(UpdateTest, EveryRecordComesOutAsItWentIn) {
    for (const Encoding& encoding : kEncodings) {
        Open(FullMedium(encoding, Lengths::kDefined, true).Build());
        const std::string tree = TreesOf(*fDirectory);
        const std::vector<Bytes> expected = RecordsIn(*fDirectory);
        for (const int variant : {0, 1, 2, 3}) {
            SCOPED_TRACE(testing::Message() << testing::PrintToString(encoding) << " " << variant);
            const auto lengths = variant < 2 ? Lengths::kDefined : Lengths::kUndefined;
            Open(FullMedium(encoding, lengths, false).Build());
            if (variant % 2 == 0) TreesOf(*fDirectory);  // looks at every record
            fDirectory->WriteDICOMDIR();
            EXPECT_FALSE(fDirectory->IsOpen());
            EXPECT_EQ(Identity(), kIdentity);
            const std::vector<Bytes> records = RecordsIn(*fDirectory);
            ASSERT_EQ(records.size(), expected.size());
            for (size_t index = 0; index < records.size(); ++index) {
                EXPECT_TRUE(records[index] == expected[index]) << "record " << index;
            }
            const Bytes written = ReadWholeFile(fPath);
            fDirectory->RefreshDocs();
            EXPECT_EQ(TreesOf(*fDirectory), tree);
            fDirectory->WriteDICOMDIR();
            EXPECT_TRUE(ReadWholeFile(fPath) == written);
            EXPECT_EQ(TreeOnDisk(), tree);
        }
    }
}

// Also where there were no records yet.
TEST_F(UpdateTest, KeepsTheElementsBesideTheRecords) {
    for (const Encoding& encoding : kEncodings) {
        for (const int records : {0, 1, 2}) {
            FileBuilder file(encoding.fTransferSyntax, Uids::kMediaStorageDirectory);
            file.Data()
                .Text(Tags::kFileSetID, Vr::kCS, "OLD")
                .Text({0x0004, 0x1141}, Vr::kCS, "README")
                .Numbers32(Tags::kLastRootRecordOffset, Vr::kUL, {4711});
            const auto lengths = records == 1 ? Lengths::kDefined : Lengths::kUndefined;
            if (records > 0) file.Data().Sequence(Tags::kDirectoryRecordSequence, {}, lengths);
            file.Data().Text({0x0008, 0x0080}, Vr::kLO, "Hospital").Numbers16(Tags::kRows, Vr::kUS, {0x0102});
            Open(file.Build());
            AddPatient("ID1");
            fDirectory->SetDirName("a longer name");
            fDirectory->WriteDICOMDIR();
            Open(ReadWholeFile(fPath));
            EXPECT_EQ(TreesOf(*fDirectory), "P1") << testing::PrintToString(encoding) << records;
            RecordsIn(*fDirectory);
            const TDicomDataSet& dataSet = *fDirectory->GetDataSet();
            EXPECT_EQ(TextOf(dataSet, Tags::kFileSetID), "A LONGER NAME ");
            EXPECT_EQ(TextOf(dataSet, {0x0004, 0x1141}), "README");
            EXPECT_EQ(TextOf(dataSet, {0x0008, 0x0080}), "Hospital");
            EXPECT_EQ(TextOf(dataSet, Tags::kRows), "\x02\x01");
            EXPECT_EQ(TextOf(dataSet, Tags::kLastRootRecordOffset),
                      TextOf(dataSet, Tags::kFirstRootRecordOffset));
        }
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
