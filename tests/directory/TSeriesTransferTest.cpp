// How a directory takes in documents of others with their files, in steps.

#include <gtest/gtest.h>

#include "platform/FileSystem.h"
#include "tests/directory/DirectorySupport.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Numbers = std::vector<int32_t>;

constexpr size_t kChunk = 65536;

template <typename Doc>
Doc* First(TListOf<Doc>* docs) {
    return *docs->begin();
}

// A file of its own for each seed; files are copied whatever they are.
Bytes Noise(size_t size, int seed) {
    Bytes bytes(size, static_cast<uint8_t>(seed));
    for (size_t index = 1; index < size; ++index)
        bytes[index] = static_cast<uint8_t>(index * 31 + index / 251);
    return bytes;
}

// Tells what is in the files of a document.
size_t ContentOf(TDicomDoc& doc) {
    TListOf<TDicomFile> files;
    doc.CollectFiles(files);
    std::string contents;
    for (TDicomFile* file : files) contents += ReadWholeFileAsText(file->GetFileSpec()->fPath) + "|";
    return std::hash<std::string>()(contents);
}

class Destination final : public TDicomDirectory {
  public:
    using TDicomDirectory::TDicomDirectory;
    void AfterTransfer(TDicomDoc* imported, TDicomDoc* source) override {
        fSeen.append(TreeOf(*source)).append(">").append(imported == nullptr ? "" : TreeOf(*imported));
    }
    std::string fSeen;
};

// Patient 1 with study 2: images 4 and 5 and a report in series 3, raw data and a private record in series 7.
DirectoryBuilder Medium() {
    DirectoryBuilder media;
    const int study = media.AddStudy(media.AddPatient(1), 2);
    const int series = media.AddSeries(study, 3);
    for (const int number : {4, 5}) media.AddInstance(series, number);
    media.AddInstance(series, 6, "SR DOCUMENT ");
    const int other = media.AddSeries(study, 7);
    media.AddInstance(other, 8, "RAW DATA");
    media.AddInstance(other, 9, "PRIVATE ");
    return media;
}
constexpr char kTree[] = "P1(S2(s3(i4 i5 d6) s7(r8 x9)))";
constexpr char kSeriesTree[] = "P1(S2(s3(i4 i5 d6)))";

void WriteFiles(const TestFolder& folder, int seed = 0) {
    for (int number = 4; number <= 9; ++number) {
        folder.WriteFile("IMAGES/" + std::to_string(number),
                         Noise(number == 5 ? 2 * kChunk : 1000, seed + number));
    }
}

// A source medium, a destination that is empty at first, and what ImportDocs says.
struct Media {
    Media() {
        WriteFiles(fSourceFolder);
        OpenSource(Medium());
        fFolder.WriteFile("DICOMDIR", DirectoryBuilder().Build());
        Open();
    }

    // Reports are looked into, so their files have to be there.
    void OpenSource(const DirectoryBuilder& media) { fSource = Load(fSourceFolder, media.Build()); }
    void Open() { fDirectory = std::make_unique<Destination>(TFileSpec(fFolder.PathOf("DICOMDIR")), 0); }
    void OpenWithFiles() {
        WriteFiles(fFolder);
        fFolder.WriteFile("DICOMDIR", Medium().Build());
        Open();
    }
    void Save() {
        fDirectory->WriteDICOMDIR();
        Open();
    }

    TPatientDoc* Patient() { return First(fSource->GetPatientDocs()); }
    TStudyDoc* Study() { return First(fSource->GetStudyDocs()); }
    TSeriesDoc* Series() { return First(fSource->GetSeriesDocs()); }
    std::string Tree() const { return TreesOf(*fDirectory); }

    void Choose(std::initializer_list<TDicomDoc*> docs) {
        TListOf<TDicomDoc> list;
        for (TDicomDoc* doc : docs) list.InsertItemAt(list.kAtEnd, doc);
        fDirectory->SetImportDocs(list);
    }
    void ExpectCopied() { EXPECT_EQ(ContentOf(*First(fDirectory->GetSeriesDocs())), ContentOf(*Series())); }
    bool Step(int32_t budget = 0) {
        return fDirectory->ImportDocs(budget, fIndex, fCount, fDoneKB, fTotalKB, fMessage);
    }
    int Finish() {
        for (int steps = 1; steps < 1000; ++steps) {
            if (Step()) return steps;
        }
        ADD_FAILURE() << "never done";
        return 0;
    }
    int Import(std::initializer_list<TDicomDoc*> docs) {
        Choose(docs);
        return Finish();
    }

    TestFolder fSourceFolder;
    TestFolder fFolder;
    std::unique_ptr<TDicomDirectory> fSource;
    std::unique_ptr<Destination> fDirectory;
    int32_t fIndex = -1;
    int32_t fCount = -1;
    int32_t fDoneKB = -1;
    int32_t fTotalKB = -1;
    char fMessage[TDicomDirectory::kMessageSize] = "";
};

class TSeriesTransferTest : public testing::Test, protected Media {};

TEST_F(TSeriesTransferTest, TellsHowFarItIsAndStopsWhenTheTimeIsUp) {
    EXPECT_FALSE(Step()) << "nothing to do";
    EXPECT_EQ(fCount, 0);
    const std::tuple<size_t, int32_t, Numbers> cases[] = {
        {100000, 0, {0, 0, 64, 64 + 33}},  // whole kilobytes of each chunk
        {0, 0, {0, 0, 0}},
        {10 * kChunk, 3, {0, 0, 3 * 64, 6 * 64, 9 * 64, 10 * 64}}};
    DirectoryBuilder media;
    media.AddInstance(media.AddSeries(media.AddStudy(media.AddPatient(1), 2), 3), 4);
    OpenSource(media);
    for (const auto& [size, budget, expected] : cases) {
        fSourceFolder.WriteFile("IMAGES/4", Noise(size, 4));
        const TestClock clock;
        Choose({Series()});
        Numbers done;
        while (!Step(budget)) done.push_back(fDoneKB);
        EXPECT_EQ(done, expected);
        EXPECT_EQ((Numbers{fTotalKB, fIndex, fCount}),
                  (Numbers{static_cast<int32_t>((size + 1) / 1024), 1, 1}));
    }
    EXPECT_STREQ(fMessage, "");
}

// Also those that a host has open, and has read from.
TEST_F(TSeriesTransferTest, CopiesEveryFileUnderANameOfItsOwn) {
    TDicomFile& openFile = *First(fSource->GetImageDocs())->GetDicomFile();
    openFile.OpenFile(Platform::FileAccess::kRead);
    uint8_t bytes[100];
    openFile.ReadNext(bytes, sizeof(bytes));
    Import({Patient()});
    openFile.CloseFile();
    EXPECT_EQ(fDirectory->fSeen, std::string(kTree) + ">" + kTree);
    Save();
    EXPECT_EQ(Tree(), kTree);
    ExpectCopied();
    EXPECT_EQ(ContentOf(*First(fDirectory->GetRawDataDocs())), ContentOf(*First(fSource->GetRawDataDocs())));
    std::vector<std::string> files{"DICOMDIR"};
    for (const char* name : {"I_000000", "I_000001", "I_000003", "I_000004", "SR000002"}) {
        files.push_back(Spelled("imagesdc") + "/" + Spelled(std::string(name) + ".dcm"));
    }
    EXPECT_EQ(fFolder.ListFiles(), files);
    Import({Patient()});
    EXPECT_EQ(Tree(), "P1(S2(s3(i4 i5 d6) s7(r8 r8 x9 x9)))") << "what cannot be told comes again";
}

TEST_F(TSeriesTransferTest, DocumentsWithoutFilesAndSeveralOnes) {
    DirectoryBuilder media = Medium();
    const int patient = media.AddPatient(11);
    media.AddStudy(patient, 12);
    media.AddSeries(media.AddStudy(patient, 13), 14);
    OpenSource(media);
    EXPECT_EQ(Import({*fSource->GetPatientDocs()->rbegin()}), 2);
    Choose({Series(), *fSource->GetSeriesDocs()->rbegin()});
    Numbers places;
    for (bool isDone = false; !isDone; places.push_back(fIndex * 10 + fCount)) isDone = Step();
    EXPECT_EQ(places, (Numbers{12, 12, 12, 12, 12, 12, 12, 12, 12, 22, 22}));
    Save();
    EXPECT_EQ(Tree(), std::string("P11(S12 S13(s14)) ") + kSeriesTree);
    // What is new below what is known gets in at its place, also when the medium is another one by then.
    Choose({Study()});
    Step();
    DirectoryBuilder other = Medium();
    other.AddPatient(15);
    fFolder.WriteFile("DICOMDIR", other.Build());
    Finish();
    Save();
    EXPECT_EQ(Tree(), "P1(S2(s3(i4 i5 d6) s7(r8 r8 x9 x9))) P15");
}

// A host may take a document or its file away between two steps; the rest is copied.
TEST_F(TSeriesTransferTest, DocumentsAndFilesMayGoMeanwhile) {
    for (const bool takesDocument : {true, false}) {
        for (int steps = 1; steps < 6; ++steps) {
            OpenSource(Medium());
            Choose({Series()});
            for (int step = 0; step < steps; ++step) EXPECT_FALSE(Step());
            TImageDoc* const image = First(fSource->GetImageDocs());
            takesDocument ? image->Discard() : image->SetDicomFile(nullptr);
            Finish();
            EXPECT_NE(Tree().find("d6"), std::string::npos);
            First(fDirectory->GetPatientDocs())->Discard();
            fDirectory->WriteDICOMDIR();
        }
    }
}

// A host that shows progress may look meanwhile whether the source has changed.
TEST_F(TSeriesTransferTest, TheSourceMayBeReadAgainMeanwhile) {
    Choose({Series()});
    Step();
    fSource->RefreshDocs();
    Finish();
    Save();
    EXPECT_EQ(Tree(), kSeriesTree);
}

// The files that were given are replaced by their copies; no record and no file comes twice.
TEST_F(TSeriesTransferTest, IntoTheDirectoryThatHoldsItAlready) {
    OpenWithFiles();
    const auto files = fFolder.ListFiles();
    for (const bool isOwn : {false, true}) {
        const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(48);
        const auto isReplaced = [old](const TestFolder& folder) {
            return std::filesystem::last_write_time(folder.PathOf("IMAGES/5")) > old + std::chrono::hours(1);
        };
        for (const TestFolder* folder : {&fFolder, &fSourceFolder}) {
            std::filesystem::last_write_time(folder->PathOf("IMAGES/5"), old);
        }
        Import({isOwn ? First(fDirectory->GetPatientDocs()) : static_cast<TDicomDoc*>(Series())});
        Save();
        EXPECT_EQ(Tree(), kTree);
        EXPECT_EQ(fFolder.ListFiles(), files);
        ExpectCopied();
        EXPECT_EQ(isReplaced(fFolder), isOwn);
        EXPECT_EQ(isReplaced(fSourceFolder), !isOwn);
    }
}

// Six times, a second apart: then the file stays what it was.
TEST_F(TSeriesTransferTest, TriesToReplaceASourceThatIsHeld) {
    OpenWithFiles();
    const std::string path = fFolder.PathOf("IMAGES/5");
    for (const size_t restsUntilFree : {size_t{5}, size_t{6}}) {
        fDoneKB = 0;
        Choose({*fDirectory->GetImageDocs()->rbegin()});
        while (fDoneKB == 0) Step();
        TestClock clock;
        TDicomFile holder(0, TFileSpec(path), 0);
        if (kIsWindows) {
            holder.OpenFile(Platform::FileAccess::kRead);
        } else {
            std::filesystem::remove(path);
            fFolder.MakeFolder("IMAGES/5");
        }
        clock.fAtRest = [&] {
            if (clock.fRests.size() < restsUntilFree) return;
            holder.CloseFile();
            if (!kIsWindows) std::filesystem::remove(path);
        };
        Finish();
        EXPECT_EQ(clock.fRests, Numbers(5, 1000));
        holder.CloseFile();
        ASSERT_EQ(Platform::IsFolder(path), !kIsWindows && restsUntilFree > 5);
        EXPECT_TRUE(std::filesystem::is_empty(fFolder.PathOf(Spelled("imagesdc")))) << "no copy is left";
        if (!Platform::IsFolder(path)) {
            EXPECT_EQ(ReadWholeFile(path), Noise(2 * kChunk, 5));
        }
    }
}

TEST_F(TSeriesTransferTest, AFileThatCannotBeReadIsPassedBy) {
    std::filesystem::remove(fSourceFolder.PathOf("IMAGES/4"));
    MemoryStorage storage;
    TFileSpec& shrinking = *(*fSource->GetImageDocs()->rbegin())->GetDicomFile()->GetFileSpec();
    storage.SetContent(shrinking.fPath, Noise(3 * kChunk, 5));
    shrinking.fStorage = &storage;
    Choose({Series()});
    while (fDoneKB <= 0) Step();
    storage.SetContent(shrinking.fPath, Noise(kChunk + 10, 5));
    Finish();
    Save();
    EXPECT_EQ(Tree(), kSeriesTree) << "the records are there";
    std::string fileIDs;
    for (TImageDoc* image : *fDirectory->GetImageDocs()) {
        fileIDs += TextOf(*image->GetDataSet(), Tags::kReferencedFileID);
    }
    EXPECT_EQ(fileIDs, "NOT_COPIEDNOT_COPIED");
    EXPECT_EQ(ContentOf(*First(fDirectory->GetSRDocs())), ContentOf(*First(fSource->GetSRDocs())));
}

TEST_F(TSeriesTransferTest, FailuresOfTheDestinationAreThrownAndCanBeMended) {
    TDicomFile& file = *First(fSource->GetImageDocs())->GetDicomFile();
    const std::string imageFolder = fFolder.PathOf(Spelled("imagesdc"));
    std::filesystem::remove(imageFolder);
    WriteWholeFile(imageFolder, "a file in the way");
    Choose({Series()});
    Step();
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_NE(ThrownBy([&] { Step(); }), "nothing");
        EXPECT_FALSE(file.IsOpen());
    }
    std::filesystem::remove(imageFolder);
    MemoryStorage full;
    const auto putInto = [&](MemoryStorage* storage) {
        fDirectory->GetFileSpec()->fStorage = storage;
        fDirectory->SetFolderpath("");  // has the places looked up again
    };
    putInto(&full);
    EXPECT_FALSE(Step());
    full.FailOn(MemoryStorage::Fault::kWrite);
    EXPECT_NE(ThrownBy([&] { Step(); }), "nothing");
    EXPECT_FALSE(file.IsOpen());
    putInto(nullptr);
    Finish();
    Save();
    ExpectCopied();
}

TEST_F(TSeriesTransferTest, SaysWhenTheDICOMDIRCannotBeOpened) {
    TDicomFile holder(0, TFileSpec(fFolder.PathOf("DICOMDIR")), 0);
    holder.OpenFile(Platform::FileAccess::kRead);
    const TestClock clock;
    Import({Series()});
    EXPECT_STREQ(fMessage, "Can not open DICOMDIR for updating.");
    EXPECT_EQ(fDirectory->GetImageDocs()->GetCount(), 0);
    EXPECT_EQ(fFolder.ListFiles().size(), 4U) << "the files stay";
    holder.CloseFile();
    Import({Series()});
    Save();
    EXPECT_EQ(Tree(), kSeriesTree);
    ExpectCopied();
}

// A study without Study ID is given that of the first file that has one.
TEST_F(TSeriesTransferTest, RepairsTheStudyID) {
    // The document imported; the ID of study 1; the studies of three files of it, with their IDs; the tree.
    using Files = std::vector<std::pair<int, const char*>>;
    const std::tuple<int32_t, const char*, Files, const char*> cases[] = {
        {TDicomDoc::kSeries, "", {{1, ""}, {1, "7"}, {1, "8"}}, "P1(S7(s1(i0 i1 i2)))"},
        {TDicomDoc::kSeries, "", {{9, "7"}, {1, "8"}, {1, "8"}}, "P1(S7(s1(i0 i1 i2)))"},
        {TDicomDoc::kStudy, "5", {{1, "7"}, {1, "8"}, {1, "9"}}, "P1(S5(s1(i0 i1 i2)))"},
        {TDicomDoc::kPatient, "", {{1, "7"}, {2, "8"}, {1, "9"}}, "P1(S7(s1(i0 i1 i2)) S8(s2))"},
        {TDicomDoc::kPatient, "5", {{9, "7"}, {1, "6"}, {2, "8"}}, "P1(S5(s1(i0 i1 i2)) S8(s2))"},
    };
    for (const auto& [docType, recordID, files, tree] : cases) {
        DirectoryBuilder media;
        const int patient = media.AddPatient(1);
        const int first = media.Add(patient, "STUDY "), second = media.Add(patient, "STUDY ");
        media.Keys(first)
            .Text(Tags::kStudyInstanceUID, Vr::kUI, "1.2.1")
            .Text(Tags::kStudyID, Vr::kSH, recordID);
        media.Keys(second).Text(Tags::kStudyInstanceUID, Vr::kUI, "1.2.2");
        const int series = media.AddSeries(first, 1);
        media.AddSeries(second, 2);
        int number = 0;
        for (const auto& [study, studyID] : files) {
            FileBuilder file;
            file.Data().Text(Tags::kStudyInstanceUID, Vr::kUI, "1.2." + std::to_string(study));
            file.Data().Text(Tags::kStudyID, Vr::kSH, studyID).Value(Tags::kPixelData, Vr::kOB, Bytes(16));
            fSourceFolder.WriteFile("IMAGES/" + std::to_string(number), file.Build());
            media.AddInstance(series, number++);
        }
        OpenSource(media);
        fFolder.WriteFile("DICOMDIR", DirectoryBuilder().Build());
        Open();
        TDicomDoc* const docs[] = {Patient(), Study(), Series()};
        const std::string before = TreeOf(*Study());
        Import({docs[docType]});
        EXPECT_EQ(Study()->IsModified(), TreeOf(*Study()) != before);
        Save();
        EXPECT_EQ(Tree(), tree);
    }
}

// Wherever an import is given up, whichever directory goes first, the medium is what it was. It can be begun
// again, with what the files are by then: what was copied before is of no use any more.
TEST_F(TSeriesTransferTest, CanBeGivenUpAndBegunAgainAtAnyStep) {
    const int steps = Import({Series()});
    for (int count = 0; count < steps; ++count) {
        for (const bool doesSourceGo : {true, false}) {
            Media media;
            media.Choose({media.Series(), media.Patient()});
            for (int step = 0; step < count; ++step) media.Step();
            if (doesSourceGo) {
                media.fSource.reset();
                media.Step();
                media.fDirectory.reset();
            } else {
                media.fDirectory->ClearDocsToMove();
                EXPECT_FALSE(media.Step());
            }
            EXPECT_EQ(ReadWholeFile(media.fFolder.PathOf("DICOMDIR")), DirectoryBuilder().Build());
            if (doesSourceGo) continue;
            WriteFiles(media.fSourceFolder, 100);
            media.Import({media.Series()});
            media.Save();
            EXPECT_EQ(media.Tree(), kSeriesTree) << count;
            media.ExpectCopied();
        }
    }
}

}  // namespace
