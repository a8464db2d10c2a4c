// Copying of files in chunks. What it hunts: content that is lost or half replaced when a copy onto the file
// itself fails or is given up, and files that are left behind.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "dicom/TDicomFile.h"
#include "platform/StructuredStorage.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Fault = MemoryStorage::Fault;
using Names = std::vector<std::string>;

// Writes something else into the copy, as classes do that rewrite a file while they copy it.
class RewritingFile : public TDicomFile {
  public:
    explicit RewritingFile(const TFileSpec& spec) : TDicomFile(0, spec, 0) {}

    void WriteToCopy(const Bytes& bytes) { WriteBytes(*fCopyFile, bytes.data(), bytes.size()); }
};

Bytes Numbered(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 256);
    return bytes;
}

class FileCopy : public testing::Test {
  protected:
    FileCopy() { fStorage.SetContent("Report", fOld); }

    // Copies a whole file; gives the number of chunks.
    int Copy(const TFileSpec& from, const TFileSpec& to) {
        TDicomFile file(0, from, 0);
        EXPECT_EQ(file.BeginCopy(to, fSize), 0);
        int chunks = 1;
        while (file.CopyNextChunk() > 0) ++chunks;
        file.EndCopy(&to);
        EXPECT_STREQ(file.GetFileSpec()->fPath, to.fPath);
        return chunks;
    }

    TFileSpec Stream(const char* name) { return TFileSpec(name, &fStorage); }

    const Bytes fOld = Numbered(100);
    const Bytes fNew = Numbered(30);
    TestFolder fFolder;
    const TFileSpec fSource = TFileSpec(fFolder.WriteFile("SOURCE.DCM", fOld));
    const TFileSpec fTarget = TFileSpec(fFolder.PathOf("TARGET.DCM"));
    MemoryStorage fStorage;
    int64_t fSize = -1;
};

TEST_F(FileCopy, CarriesEveryByteToAnotherFileOrStream) {
    for (const auto& [size, chunks] : std::map<size_t, int>{{0, 1}, {65536, 1}, {65537, 2}, {200000, 4}}) {
        fStorage.SetContent("Report", Numbered(size));
        EXPECT_EQ(Copy(Stream("Report"), fTarget), chunks);
        EXPECT_EQ(Copy(fTarget, fSource), chunks);
        EXPECT_EQ(Copy(fSource, Stream("Other")), chunks);
        EXPECT_EQ(fStorage.GetContent("Other"), Numbered(size)) << size;
        EXPECT_EQ(ReadWholeFile(fTarget.fPath), Numbered(size)) << size;
    }
}

TEST_F(FileCopy, GivenUpOrNeverBegunItLeavesNoDestination) {
    TDicomFile missing(0, fTarget, 0);
    EXPECT_NE(ThrownBy([&] { missing.BeginCopy(fSource, fSize); }), "nothing");
    EXPECT_EQ(ReadWholeFile(fSource.fPath), fOld);
    {
        TDicomFile file(0, fSource, 0);
        EXPECT_NE(ThrownBy([&] { file.BeginCopy(TFileSpec(fFolder.PathOf("no/folder")), fSize); }),
                  "nothing");
        EXPECT_FALSE(file.IsOpen());
        file.BeginCopy(fTarget, fSize);
        file.EndCopy(nullptr);
        EXPECT_STREQ(file.GetFileSpec()->fPath, fSource.fPath);
        EXPECT_EQ(fFolder.ListFiles(), Names{"SOURCE.DCM"});
        file.BeginCopy(fTarget, fSize);                             // given up by the next one,
        file.BeginCopy(TFileSpec(fFolder.PathOf("OTHER")), fSize);  // which the end of the object gives up
        EXPECT_EQ(fFolder.ListFiles(), (Names{"OTHER", "SOURCE.DCM"}));
    }
    EXPECT_EQ(fFolder.ListFiles(), Names{"SOURCE.DCM"});
}

// Creating the destination empties it: under any of its names that would be the source.
TEST_F(FileCopy, OntoItselfItReplacesTheFileOnCommitOnly) {
    std::filesystem::create_hard_link(fSource.fPath, fTarget.fPath);
    const TFileSpec spelled(fFolder.MakeFolder("SUB") + "/../SOURCE.DCM");
    for (const TFileSpec& name : {fTarget, spelled, fSource}) {
        SCOPED_TRACE(name.fPath);
        WriteWholeFile(fSource.fPath, fOld);
        for (const bool isCommitted : {false, true}) {
            RewritingFile file(fSource);
            file.BeginCopy(name, fSize);
            file.WriteToCopy(fNew);
            EXPECT_EQ(ReadWholeFile(name.fPath), fOld);
            file.EndCopy(isCommitted ? &name : nullptr);
            EXPECT_EQ(ReadWholeFile(name.fPath), isCommitted ? fNew : fOld);
        }
    }
    EXPECT_EQ(fFolder.ListFiles(), (Names{"SOURCE.DCM", "TARGET.DCM"}));
}

TEST_F(FileCopy, OfAStreamOntoItselfGoesThroughTemp) {
    for (const char* name : {"Report", "REPORT"}) {
        fStorage.SetContent("Report", fOld);
        const TFileSpec target = Stream(name);
        RewritingFile file(Stream("Report"));
        file.BeginCopy(target, fSize);
        file.WriteToCopy(fNew);
        EXPECT_TRUE(fStorage.HasStream("Temp"));
        EXPECT_EQ(fStorage.GetContent("Report"), fOld);
        file.EndCopy(&target);
        EXPECT_EQ(fStorage.ListStreams(), Names{name});
        EXPECT_EQ(fStorage.GetContent("Report"), fNew);
    }
    fStorage.SetContent("Temp", fOld);
    Copy(Stream("Temp"), Stream("Temp"));
    EXPECT_EQ(fStorage.GetContent("Temp"), fOld);
}

TEST_F(FileCopy, AFailedChunkNamesWhatWasDone) {
    TDicomFile file(0, Stream("Report"), 0);
    file.BeginCopy(Stream("Other"), fSize);
    const auto failure = [&] { return ThrownBy([&] { file.CopyNextChunk(); }); };
    fStorage.FailOn(Fault::kRead);
    EXPECT_EQ(failure(), "image data: device error");
    fStorage.FailOn(Fault::kWrite);
    EXPECT_EQ(failure(), "image file: disk is full");
    fStorage.SetContent("Report", Numbered(99));
    EXPECT_EQ(failure(), "image data: unexpected end of file");
}

TEST_F(FileCopy, ACommitThatFailsKeepsTheContent) {
    const struct {
        Fault fFault;
        Names fStreams;  // what is left, the content in the first
        Bytes fContent;
    } cases[] = {{Fault::kFlush, {"Report"}, fOld},
                 {Fault::kRemove, {"Report", "Temp"}, fOld},
                 {Fault::kRename, {"Temp"}, fNew}};
    for (const auto& [fault, streams, content] : cases) {
        fStorage.SetContent("Report", fOld);
        const TFileSpec target = Stream("Report");
        RewritingFile file(target);
        file.BeginCopy(target, fSize);
        file.WriteToCopy(fNew);
        fStorage.FailOn(fault);
        EXPECT_NE(ThrownBy([&] { file.EndCopy(&target); }), "nothing");
        EXPECT_EQ(fStorage.ListStreams(), streams);
        EXPECT_EQ(fStorage.GetContent(streams.front()), content);
        fStorage.FailOn(Fault::kNone);
    }
}

TEST_F(FileCopy, WorksInsideACompoundFileOfTheSystem) {
    if (!Platform::StructuredStorage::IsAvailable()) GTEST_SKIP() << "this system has none";
    const auto storage = Platform::StructuredStorage::Create(fFolder.PathOf("EXAM.STG"));
    const TFileSpec report("Report", storage.get());
    const TFileSpec other("Other", storage.get());
    Copy(fSource, report);
    Copy(report, report);
    EXPECT_FALSE(storage->HasStream("Temp"));
    Copy(report, other);
    Copy(other, fTarget);
    EXPECT_EQ(ReadWholeFile(fTarget.fPath), fOld);
    TDicomFile(0, other, 0).DeleteDiskFile();
    EXPECT_FALSE(storage->HasStream("Other"));
}

}  // namespace
