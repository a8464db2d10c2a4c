// Copying of files in chunks. What it hunts: content that is lost or half replaced when a copy onto the file
// itself fails or is given up, and files that are left behind.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "dicom/TDicomFile.h"
#include "platform/StructuredStorage.h"
#include "tests/dicom/DataSetTestSupport.h"
#include "tests/dicom/FailureOf.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Platform::FileAccess;
using Fault = MemoryStorage::Fault;

// Writes something else into the copy, as classes do that rewrite a file while they copy it.
class RewritingFile : public TDicomFile {
  public:
    using TDicomFile::TDicomFile;

    void WriteToCopy(const Bytes& bytes) { WriteBytes(*fCopyFile, bytes.data(), bytes.size()); }
};

Bytes Numbered(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 256);
    return bytes;
}

// Copies all that remains; gives the number of chunks.
int CopyAll(TDicomFile& file) {
    int chunks = 1;
    while (file.CopyNextChunk() > 0) ++chunks;
    return chunks;
}

std::set<std::string> TemporaryCopies() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::temp_directory_path())) {
        const std::string name = entry.path().filename().string();
        if (name.substr(0, 3) == "VNT") names.insert(name);
    }
    return names;
}

class FileCopy : public testing::Test {
  protected:
    const Bytes fOld = Numbered(100);
    const Bytes fNew = VantorTest::BytesOf(std::string_view("what the copy was rewritten to"));
    TestFolder fFolder;
    TFileSpec fSource = TFileSpec(fFolder.WriteFile("SOURCE.DCM", fOld));
    TFileSpec fTarget = TFileSpec(fFolder.PathOf("TARGET.DCM"));
    RewritingFile fFile = RewritingFile(0, fSource, 0);
    int64_t fSize = -1;
};

TEST_F(FileCopy, CarriesEveryByteToAnotherFile) {
    const struct {
        size_t fSize;
        int fChunks;
    } cases[] = {{0, 1}, {1, 1}, {65535, 1}, {65536, 1}, {65537, 2}, {200000, 4}};
    for (const auto& [size, chunks] : cases) {
        SCOPED_TRACE(size);
        const Bytes content = Numbered(size);
        TDicomFile file(0, TFileSpec(fFolder.WriteFile("SOURCE.DCM", content)), 0);
        ASSERT_EQ(file.BeginCopy(fTarget, fSize), 0);
        EXPECT_EQ(fSize, static_cast<int64_t>(size));
        EXPECT_EQ(CopyAll(file), chunks);
        file.EndCopy(&fTarget);
        EXPECT_FALSE(file.IsOpen());
        EXPECT_STREQ(file.GetFileSpec()->fPath, fTarget.fPath);
        EXPECT_EQ(ReadWholeFile(fTarget.fPath), content);
        EXPECT_EQ(ReadWholeFile(fSource.fPath), content);
    }
}

TEST_F(FileCopy, TellsWhatRemains) {
    TDicomFile file(0, TFileSpec(fFolder.WriteFile("SOURCE.DCM", Numbered(150000))), 0);
    file.BeginCopy(fTarget, fSize);
    EXPECT_EQ(file.CopyNextChunk(), 150000 - 65536);
    EXPECT_EQ(file.CopyNextChunk(), 150000 - 2 * 65536);
    EXPECT_EQ(file.CopyNextChunk(), 0);
    EXPECT_EQ(file.CopyNextChunk(), 0);
    file.EndCopy(&fTarget);
    EXPECT_EQ(std::filesystem::file_size(fTarget.fPath), 150000U);
}

TEST_F(FileCopy, GivenUpItLeavesNoDestination) {
    fFolder.WriteFile("TARGET.DCM", "was there before");
    fFile.BeginCopy(fTarget, fSize);
    fFile.CopyNextChunk();
    fFile.EndCopy(nullptr);
    EXPECT_FALSE(fFile.IsOpen());
    EXPECT_STREQ(fFile.GetFileSpec()->fPath, fSource.fPath);
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"SOURCE.DCM"});
}

TEST_F(FileCopy, OutsideACopyThereIsNothingToDo) {
    EXPECT_EQ(fFile.CopyNextChunk(), 0);
    fFile.EndCopy(&fTarget);
    fFile.EndCopy(nullptr);
    EXPECT_STREQ(fFile.GetFileSpec()->fPath, fSource.fPath);
    EXPECT_EQ(ReadWholeFile(fSource.fPath), fOld);
}

TEST_F(FileCopy, DestroyingTheFileGivesTheCopyUp) {
    {
        TDicomFile file(0, fSource, 0);
        file.BeginCopy(fTarget, fSize);
        file.CopyNextChunk();
    }
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"SOURCE.DCM"});
}

TEST_F(FileCopy, ASecondCopyGivesTheFirstOneUp) {
    const TFileSpec other(fFolder.PathOf("OTHER.DCM"));
    fFile.BeginCopy(other, fSize);
    fFile.CopyNextChunk();
    fFile.BeginCopy(fTarget, fSize);
    CopyAll(fFile);
    fFile.EndCopy(&fTarget);
    EXPECT_EQ(fFolder.ListFiles(), (std::vector<std::string>{"SOURCE.DCM", "TARGET.DCM"}));
    EXPECT_EQ(ReadWholeFile(fTarget.fPath), fOld);
}

TEST_F(FileCopy, AMissingSourceCostsNoDestination) {
    fFolder.WriteFile("TARGET.DCM", "was there before");
    TDicomFile missing(0, TFileSpec(fFolder.PathOf("MISSING.DCM")), 0);
    EXPECT_EQ(FailureOf([&] { missing.BeginCopy(fTarget, fSize); }),
              fFolder.PathOf("MISSING.DCM") + ": file not found");
    EXPECT_EQ(ReadWholeFileAsText(fTarget.fPath), "was there before");
}

TEST_F(FileCopy, ADestinationThatCannotBeMadeLeavesTheFileClosed) {
    const std::string path = fFolder.PathOf("missing/TARGET.DCM");
    EXPECT_EQ(FailureOf([&] { fFile.BeginCopy(TFileSpec(path), fSize); }),
              path + ": path not found or not usable");
    EXPECT_FALSE(fFile.IsOpen());
    EXPECT_EQ(fFile.CopyNextChunk(), 0);
}

TEST_F(FileCopy, OntoItselfItReplacesTheFileOnCommitOnly) {
    const std::set<std::string> before = TemporaryCopies();
    fFile.BeginCopy(fSource, fSize);
    EXPECT_EQ(fSize, 100);
    fFile.WriteToCopy(fNew);
    std::set<std::string> made;
    for (const std::string& name : TemporaryCopies()) {
        if (before.count(name) == 0) made.insert(name);
    }
    EXPECT_FALSE(made.empty());
    EXPECT_EQ(ReadWholeFile(fSource.fPath), fOld);
    fFile.EndCopy(&fSource);
    EXPECT_EQ(ReadWholeFile(fSource.fPath), fNew);
    EXPECT_FALSE(fFile.IsOpen());
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"SOURCE.DCM"});
    const std::set<std::string> after = TemporaryCopies();
    EXPECT_TRUE(
        std::any_of(made.begin(), made.end(), [&](const auto& name) { return after.count(name) == 0; }));
}

TEST_F(FileCopy, OntoItselfAndGivenUpItChangesNothing) {
    fFile.BeginCopy(fSource, fSize);
    fFile.WriteToCopy(fNew);
    fFile.EndCopy(nullptr);
    EXPECT_EQ(ReadWholeFile(fSource.fPath), fOld);
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"SOURCE.DCM"});
}

// Creating the destination empties it: under another name that would be the source.
TEST_F(FileCopy, OntoItselfUnderAnotherNameItLosesNothing) {
    const TFileSpec spelled(fFolder.MakeFolder("SUB") + "/../SOURCE.DCM");
    fFile.BeginCopy(spelled, fSize);
    EXPECT_EQ(CopyAll(fFile), 1);
    fFile.EndCopy(&spelled);
    EXPECT_EQ(ReadWholeFile(fSource.fPath), fOld);

    std::filesystem::create_hard_link(fSource.fPath, fTarget.fPath);
    TDicomFile file(0, fSource, 0);
    file.BeginCopy(fTarget, fSize);
    CopyAll(file);
    file.EndCopy(&fTarget);
    EXPECT_EQ(ReadWholeFile(fSource.fPath), fOld);
    EXPECT_EQ(ReadWholeFile(fTarget.fPath), fOld);
}

// ---- Streams ----

class StreamCopy : public FileCopy {
  protected:
    StreamCopy() { fStorage.SetContent("Report", fOld); }

    TFileSpec Named(const char* name) { return TFileSpec(name, &fStorage); }

    using Names = std::vector<std::string>;
    MemoryStorage fStorage;
    RewritingFile fStream = RewritingFile(0, Named("Report"), 0);
};

TEST_F(StreamCopy, GoesToAnotherStream) {
    const TFileSpec target = Named("Other");
    fStream.BeginCopy(target, fSize);
    CopyAll(fStream);
    fStream.EndCopy(&target);
    EXPECT_EQ(fStorage.GetContent("Other"), fOld);
    EXPECT_EQ(fStorage.ListStreams(), (Names{"Other", "Report"}));
    EXPECT_STREQ(fStream.GetFileSpec()->fPath, "Other");
}

TEST_F(StreamCopy, GoesToADiskFileAndBack) {
    fStream.BeginCopy(fTarget, fSize);
    CopyAll(fStream);
    fStream.EndCopy(&fTarget);
    EXPECT_EQ(ReadWholeFile(fTarget.fPath), fOld);
    EXPECT_EQ(fStream.GetFileSpec()->fStorage, nullptr);
    const TFileSpec back = Named("Back");
    fStream.BeginCopy(back, fSize);
    CopyAll(fStream);
    fStream.EndCopy(&back);
    EXPECT_EQ(fStorage.GetContent("Back"), fOld);
}

TEST_F(StreamCopy, OntoItselfGoesThroughTemp) {
    for (const char* name : {"Report", "REPORT"}) {
        SCOPED_TRACE(name);
        const Bytes old = fStorage.GetContent("Report");
        const TFileSpec target = Named(name);
        fStream.BeginCopy(target, fSize);
        fStream.WriteToCopy(fNew);
        EXPECT_TRUE(fStorage.HasStream("Temp"));
        EXPECT_EQ(fStorage.GetContent("Report"), old);
        fStream.EndCopy(&target);
        EXPECT_EQ(fStorage.ListStreams(), Names{name});
        EXPECT_EQ(fStorage.GetContent("Report"), fNew);
        EXPECT_TRUE(fStorage.IsFlushed("Report"));
    }
}

TEST_F(StreamCopy, OntoItselfAndGivenUpItChangesNothing) {
    fStream.BeginCopy(Named("Report"), fSize);
    fStream.WriteToCopy(fNew);
    fStream.EndCopy(nullptr);
    EXPECT_EQ(fStorage.ListStreams(), Names{"Report"});
    EXPECT_EQ(fStorage.GetContent("Report"), fOld);
}

TEST_F(StreamCopy, AStreamThatIsNamedTempIsCopiedOntoItselfToo) {
    fStorage.SetContent("Temp", fOld);
    const TFileSpec temp = Named("Temp");
    TDicomFile file(0, temp, 0);
    file.BeginCopy(temp, fSize);
    CopyAll(file);
    file.EndCopy(&temp);
    EXPECT_EQ(fStorage.GetContent("Temp"), fOld);
    EXPECT_EQ(fStorage.ListStreams(), (Names{"Report", "Temp"}));
}

TEST_F(StreamCopy, EndsWhenTheSourceBecomesShorter) {
    fStorage.SetContent("Report", Numbered(100000));
    const TFileSpec target = Named("Other");
    fStream.BeginCopy(target, fSize);
    EXPECT_EQ(fStream.CopyNextChunk(), 100000 - 65536);
    fStorage.SetContent("Report", Numbered(70000));
    EXPECT_EQ(FailureOf([&] { fStream.CopyNextChunk(); }), "image data: unexpected end of file");
    fStream.EndCopy(nullptr);
    EXPECT_EQ(fStorage.ListStreams(), Names{"Report"});
}

TEST_F(StreamCopy, FailuresNameWhatWasDone) {
    const struct {
        Fault fFault;
        const char* fFailure;
    } cases[] = {{Fault::kRead, "image data: device error"}, {Fault::kWrite, "image file: disk is full"}};
    for (const auto& [fault, failure] : cases) {
        fStream.BeginCopy(Named("Other"), fSize);
        fStorage.FailOn(fault);
        EXPECT_EQ(FailureOf([&] { fStream.CopyNextChunk(); }), failure);
        fStorage.FailOn(Fault::kNone);
        fStream.EndCopy(nullptr);
        EXPECT_EQ(fStorage.ListStreams(), Names{"Report"});
    }
}

TEST_F(StreamCopy, ACommitThatFailsKeepsTheContent) {
    const struct {
        Fault fFault;
        const char* fFailure;
        Names fStreams;  // what is left, the content in the first
        Bytes fContent;
    } cases[] = {
        {Fault::kFlush, "Temp: device error", {"Report"}, fOld},
        {Fault::kRemove, "Report: access denied", {"Report", "Temp"}, fOld},
        {Fault::kRename, "Temp: access denied", {"Temp"}, fNew},
    };
    for (const auto& [fault, failure, streams, content] : cases) {
        SCOPED_TRACE(failure);
        MemoryStorage storage;
        storage.SetContent("Report", fOld);
        const TFileSpec target("Report", &storage);
        RewritingFile file(0, target, 0);
        file.BeginCopy(target, fSize);
        file.WriteToCopy(fNew);
        storage.FailOn(fault);
        EXPECT_EQ(FailureOf([&] { file.EndCopy(&target); }), failure);
        storage.FailOn(Fault::kNone);
        EXPECT_EQ(storage.ListStreams(), streams);
        EXPECT_EQ(storage.GetContent(streams.front()), content);
        EXPECT_FALSE(file.IsOpen());
        EXPECT_EQ(file.CopyNextChunk(), 0);
    }
}

// ---- A compound file of the system ----

TEST_F(FileCopy, WorksInsideACompoundFile) {
    if (!Platform::StructuredStorage::IsAvailable()) GTEST_SKIP() << "this system has no compound files";
    const auto storage = Platform::StructuredStorage::Create(fFolder.PathOf("EXAM.STG"));
    const TFileSpec report("Report", storage.get());
    TDicomFile written(0, report, 0, nullptr, FileBuilder::kSecondaryCapture, "1.2.3",
                       Uids::kExplicitVRLittleEndian, Uids::kImplementationClass, false);
    PutText(*written.GetDataSet(), Tags::kPatientName, Vr::kPN, "Doe^Jane");
    written.OpenFile(FileAccess::kReadWrite);
    written.WriteFile();
    written.CloseFile();

    const TFileSpec other("Other", storage.get());
    for (const TFileSpec& target : {report, other, fTarget}) {
        SCOPED_TRACE(target.fPath);
        TDicomFile file(0, report, 0);
        file.BeginCopy(target, fSize);
        CopyAll(file);
        file.EndCopy(&target);
        EXPECT_FALSE(storage->HasStream("Temp"));
        file.OpenFile(FileAccess::kRead);
        ASSERT_TRUE(file.ReadFile());
        EXPECT_EQ(TextOf(*file.GetDataSet(), Tags::kPatientName), "Doe^Jane");
    }
    TDicomFile file(0, other, 0);
    EXPECT_EQ(file.GetFileSizeKB(), 0U);
    file.DeleteDiskFile();
    EXPECT_FALSE(storage->HasStream("Other"));
    EXPECT_TRUE(storage->HasStream("Report"));
}

}  // namespace
