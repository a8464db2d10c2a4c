// Nothing is lost, wherever a program ends or a medium fails while it is changed: the DICOMDIR is the whole
// old one or the whole new one, and the files that it names are whole.

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "cli/SeriesImages.h"
#include "directory/ExamFolder.h"
#include "tests/support/MediumFaults.h"
#include "tests/support/OwnProcess.h"
#include "tests/wrappers/Workstation.h"
#include "wrappers/SeriesSaver.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using VantorWrappers::ImageDirRec;
using VantorWrappers::SaveAsInfo;
using VantorWrappers::SaveInfo;
using VantorWrappers::SeriesSaver;

namespace fs = std::filesystem;

enum class Layout { kStandard, kExam, kFolder };

constexpr size_t kPixels = 100000;  // more than is copied at once

// They tell an instance by themselves.
Bytes PixelsOf(int instance) { return Bytes(kPixels, static_cast<uint8_t>(instance)); }

Bytes ImageFile(int series, int instance) {
    FileKeys keys{.fInstance = instance, .fSeries = series};
    keys.fClass = "1.2.840.10008.5.1.4.1.1.6.1";
    FileBuilder file = FileOf(keys);
    file.Data().Value(Tags::kPixelData, Vr::kOB, PixelsOf(instance));
    return file.Build();
}

// An image is whole when it ends with all of its pixels, which are alike.
bool IsWhole(const std::string& path) {
    const Bytes content = ReadWholeFile(path);
    return content.size() > kPixels && content.back() != 0 &&
           std::equal(content.end() - kPixels, content.end(), PixelsOf(content.back()).begin());
}

class CrashSafetyTest : public Workstation, public testing::WithParamInterface<Layout> {
  public:
    // ---- What is done to the medium in drive C ----

    void Create() {
        const bool isFolder = GetParam() == Layout::kFolder;
        fManager->CreateOrReplaceDirectory(PathOf(isFolder ? "C" : "C/DICOMDIR"), L"NEW", !isFolder);
    }
    void Empty() { OpenMedium()->CreateDICOMDIR(); }
    // The old DICOMDIR is there until all files are entered into the new one.
    void CreateFilled() {
        const auto directory = fManager->PrepareDirectory(PathOf("C/DICOMDIR"), L"NEW");
        if (!directory->OpenForUpdating()) return;
        for (const char* name : {"C/MORE/A.DCM", "C/MORE/B.DCM"}) directory->AddFile(PathOf(name));
        directory->Save();
    }
    void Repair() { fManager->RepairDirectory(OpenMedium(), L"REPAIRED"); }
    void Rename() { OpenMedium()->SetDirName(L"RENAMED"); }
    void Enter() {
        const auto directory = OpenMedium();
        if (!directory->OpenForUpdating()) return;
        for (const char* name : {"C/MORE/A.DCM", "C/MORE/B.DCM"}) directory->AddFile(PathOf(name));
        directory->Save();
    }
    void Copy() {
        const TestClock clock;
        OpenMedium()->CopySeries(Open("D/DICOMDIR")->GetSeriesList().at(0));
    }
    void CopyOntoItself() {
        const TestClock clock;
        const auto directory = OpenMedium();
        TDicomDirectory& native = *directory->GetUmDirectory();
        TListOf<TDicomDoc> series;
        for (TSeriesDoc* each : *native.GetSeriesDocs()) series.InsertItemAt(series.kAtEnd, each);
        native.SetImportDocs(series);
        int32_t numbers[4];
        char message[TDicomDirectory::kMessageSize];
        ThrownBy([&] {
            while (!native.ImportDocs(1, numbers[0], numbers[1], numbers[2], numbers[3], message)) {
            }
        });
        directory->WriteDirectory();
    }
    void DeleteOne() { Delete(1); }
    void DeleteAll() { Delete(2); }
    void Save() { SaveInPlace(SaveInfo()); }
    void SaveWithNewUids() {
        SaveInfo info;
        info.SetAssignNewUIDsFlag(true);
        SaveInPlace(info);
    }
    void SaveInPlace(const SaveInfo& info) {
        WithImages([&](SeriesSaver& saver, auto& records, const auto& controls, const SeriesDirRec& series) {
            saver.SaveSeries(&info, &records, &controls, &series);
        });
    }
    void SaveAs() {
        SaveAsInfo info;
        info.SetDestinationDirectory(OpenMedium());
        info.SetPatientName(VantorHost::PatientName(L"New^Name"));
        info.SetPatientNumber(L"ID9");
        info.SetStudyID(L"7");
        info.SetNewStudyFlag(true);
        WithImages([&](SeriesSaver& saver, auto& records, const auto& controls, const SeriesDirRec& series) {
            HostString uid;
            saver.SaveAsSeries(&info, &records, &controls, &series, uid);
        });
    }

  protected:
    // In drive C the medium, with two more files that are not entered; in D another one, with an image that
    // is in C as well.
    CrashSafetyTest() {
        const bool isExam = GetParam() == Layout::kExam;
        const std::string folder = isExam ? "EXAMS/EXAM0000/IMAGES/" : "IMAGES/";
        WriteMedium("C", folder, {{3, 4}, {3, 5}, {6, 7}}, isExam);
        fFolder.WriteFile("C/MORE/A.DCM", ImageFile(8, 9));
        fFolder.WriteFile("C/MORE/B.DCM", ImageFile(8, 10));
        WriteMedium("D", "IMAGES/", {{13, 14}, {13, 5}, {13, 15}}, false);
        for (const char* drive : {"C", "D"}) {
            fs::copy(fFolder.PathOf(drive), fPristine.PathOf(drive), fs::copy_options::recursive);
        }
    }

    void Restore() {
        fManager.reset();
        for (const char* drive : {"C", "D"}) {
            fs::remove_all(fFolder.PathOf(drive));
            fs::copy(fPristine.PathOf(drive), fFolder.PathOf(drive), fs::copy_options::recursive);
        }
        if (!fHasDICOMDIR) fs::remove(fFolder.PathOf("C/DICOMDIR"));
    }

    bool fHasDICOMDIR = true;   // what is disturbed begins with one
    bool fChangesState = true;  // and ends with another tree

    using Change = void (CrashSafetyTest::*)();

    // As a program of its own does it.
    void Run(Change change) {
        Start();
        (this->*change)();
        fManager.reset();
    }

    // Disturbs a change at each of its steps, in each way. `between` brings the medium into a state that it
    // also has on the way.
    void Disturb(Change change, Change between = nullptr) {
        fDeletes = change == &CrashSafetyTest::DeleteOne || change == &CrashSafetyTest::DeleteAll;
        fMayChangeUids = change == &CrashSafetyTest::SaveWithNewUids;
        Restore();
        fOld = ReadState();
        fStates = {fOld};
        if (between != nullptr) {
            Run(between);
            fStates.insert(ReadState());
            Restore();
        }
        size_t steps = 0;
        {
            MediumFaults none;
            Run(change);
            steps = none.GetCount();
        }
        fNew = ReadState();
        ExpectWholeFiles(fNew);
        fNewUids = fUids;
        EXPECT_EQ(fStates.insert(fNew).second, fChangesState) << fNew;
        ASSERT_GT(steps, 4U);
        for (size_t step = 0; step < steps; ++step) {
            SCOPED_TRACE("step " + std::to_string(step) + " of " + std::to_string(steps));
            EndAt(step, change);
            LosePowerAt(step, change);
            FailAt(step, change, MediumFaults::Cause::kDiskFull);
            FailAt(step, change, MediumFaults::Cause::kHardIO);
        }
    }

  private:
    void WriteMedium(const std::string& drive, const std::string& folder,
                     const std::vector<std::pair<int, int>>& images, bool isExam) {
        const auto type = isExam ? TDicomDirectory::kExamLayout : TDicomDirectory::kStandardLayout;
        TDicomDirectory directory(TFileSpec(fFolder.PathOf(drive + "/DICOMDIR")), "OLD", type,
                                  "1.2.840.10008.1.3.10", "1.2.3", Uids::kExplicitVRLittleEndian,
                                  Uids::kImplementationClass, false);
        for (const auto& [series, instance] : images) {
            const std::string name = drive + "/" + folder + std::to_string(instance) + ".DCM";
            directory.AddFile(fFolder.WriteFile(name, ImageFile(series, instance)));
        }
        TStudyDoc& study = **directory.GetStudyDocs()->begin();
        if (isExam) ExamFolder::WritePath(*study.GetDataSet(), "\\EXAMS\\EXAM0000");
        directory.WriteDICOMDIR();
    }

    std::shared_ptr<DicomDirectory> OpenMedium() {
        return GetParam() == Layout::kFolder ? fManager->FindOrCreateFolderDirectory(PathOf("C"))
                                             : Open("C/DICOMDIR");
    }

    void Delete(size_t count) {
        const auto directory = OpenMedium();
        const auto series = directory->GetSeriesList();
        for (size_t index = 0; index < std::min(count, series.size()); ++index) {
            directory->DeleteSeries(series[index]);
        }
    }

    template <typename Action>
    void WithImages(Action action) {
        const auto directory = OpenMedium();
        const SeriesDirRec series = directory->GetSeriesList().at(0);
        std::vector<ImageDirRec> records;
        series.GetImages(records);
        VantorCli::SeriesImages images(records);
        SeriesSaver saver;
        action(saver, records, images.GetControls(), series);
        images.Finish();
    }

    // ---- What disturbs ----

    void EndAt(size_t step, Change change) {
        SCOPED_TRACE("ended");
        Restore();
        const bool isRun = RunInCopyOfProcess([&] {
            const MediumFaults end = MediumFaults::EndAt(step, EndProcessAtOnce);
            Run(change);
        });
        EXPECT_NE(isRun, kIsWindows);  // which cannot copy a process; it has LosePowerAt
        if (isRun) ExpectAWholeState(change);
    }

    void LosePowerAt(size_t step, Change change) {
        SCOPED_TRACE("without power");
        Restore();
        {
            MediumFaults faults = MediumFaults::RefuseFrom(step);
            Run(change);
            faults.LoseWhatIsNotFlushed();
        }
        ExpectAWholeState(change);
    }

    // The program goes on: what could be done is done.
    void FailAt(size_t step, Change change, MediumFaults::Cause cause) {
        SCOPED_TRACE(Platform::CauseText(cause));
        Restore();
        {
            const MediumFaults faults = MediumFaults::RefuseOne(step, cause);
            Run(change);
        }
        for (const std::string& file : fFolder.ListFiles()) {
            EXPECT_EQ(file.find("VNT"), std::string::npos) << "left behind: " << file;
        }
        const std::string state = ReadState();
        EXPECT_TRUE(state != "none" || !fHasDICOMDIR);
        ExpectWholeFiles(state);
    }

    // ---- What is found afterwards ----

    void ExpectAWholeState(Change change) {
        const std::string state = ReadState();
        EXPECT_TRUE(fStates.count(state)) << state;
        ExpectWholeFiles(state);
        if (state == fNew) return;
        Run(change);
        EXPECT_EQ(ReadState(), fNew) << "when it is done again";
        ExpectWholeFiles(fNew);
    }

    // A deletion takes its files first; and files are given the UIDs that they are to have before the
    // DICOMDIR names these.
    void ExpectWholeFiles(const std::string& state) const {
        if (!fDeletes || state == fNew) {
            EXPECT_EQ(fMissing, Lines());
        }
        for (const auto& [recorded, stored] : fUids) {
            const bool isAhead = fMayChangeUids && state == fOld && fNewUids.count({stored, stored}) > 0;
            EXPECT_TRUE(recorded == stored || isAhead) << recorded << " is " << stored;
        }
        for (const char* name : {"14", "5", "15"}) {
            EXPECT_TRUE(IsWhole(fFolder.PathOf("D/IMAGES/" + std::string(name) + ".DCM"))) << "D: " << name;
        }
    }

    // The medium as another program finds it.
    std::string ReadState() {
        fMissing.clear();
        fUids.clear();
        if (!fs::exists(fFolder.PathOf("C/DICOMDIR"))) return "none";
        std::string state;
        const std::string thrown = ThrownBy([&] {
            TDicomDirectory directory(TFileSpec(fFolder.PathOf("C/DICOMDIR")), 0);
            char name[TDicomDirectory::kDirectoryNameSize];
            directory.GetDirName(name, sizeof(name));
            state = std::string(name) + " " + TreesOf(directory);
            for (TImageDoc* image : *directory.GetImageDocs()) CheckFile(*image);
        });
        EXPECT_EQ(thrown, "nothing");
        return state;
    }

    void CheckFile(TImageDoc& image) {
        TDicomFile& file = *image.GetDicomFile();
        const std::string path = file.GetFileSpec()->fPath;
        if (!fs::exists(path)) {
            fMissing.push_back(path);
            return;
        }
        EXPECT_TRUE(IsWhole(path)) << path;
        TDicomFile onDisk(0, TFileSpec(path), 0);
        onDisk.OpenFile(Platform::FileAccess::kRead);
        EXPECT_TRUE(onDisk.ReadFile());
        onDisk.CloseFile();
        TUidText recorded, stored;
        file.GetSOPInstanceUID(recorded.fText);
        onDisk.GetSOPInstanceUID(stored.fText);
        fUids.insert({recorded.fText, stored.fText});
    }

    TestFolder fPristine;
    std::set<std::string> fStates;  // of the undisturbed medium: before, on the way, afterwards
    std::string fOld;
    std::string fNew;
    bool fDeletes = false;
    bool fMayChangeUids = false;
    Lines fMissing;                                       // files that are named and not there
    std::set<std::pair<std::string, std::string>> fUids;  // of an image, in its record and in its file
    std::set<std::pair<std::string, std::string>> fNewUids;
};

TEST_P(CrashSafetyTest, Creating) {
    fHasDICOMDIR = false;
    Disturb(&CrashSafetyTest::Create);
}
TEST_P(CrashSafetyTest, Replacing) { Disturb(&CrashSafetyTest::Create); }
TEST_P(CrashSafetyTest, ReplacingByAFilledOne) { Disturb(&CrashSafetyTest::CreateFilled); }
TEST_P(CrashSafetyTest, Emptying) { Disturb(&CrashSafetyTest::Empty); }
TEST_P(CrashSafetyTest, Repairing) { Disturb(&CrashSafetyTest::Repair); }
TEST_P(CrashSafetyTest, Renaming) { Disturb(&CrashSafetyTest::Rename); }
TEST_P(CrashSafetyTest, Entering) { Disturb(&CrashSafetyTest::Enter); }
TEST_P(CrashSafetyTest, Copying) { Disturb(&CrashSafetyTest::Copy); }
TEST_P(CrashSafetyTest, CopyingWhatIsThere) {
    fChangesState = false;
    Disturb(&CrashSafetyTest::CopyOntoItself);
}
TEST_P(CrashSafetyTest, DeletingASeries) { Disturb(&CrashSafetyTest::DeleteOne); }
TEST_P(CrashSafetyTest, DeletingAPatient) {
    Disturb(&CrashSafetyTest::DeleteAll, &CrashSafetyTest::DeleteOne);
}
TEST_P(CrashSafetyTest, Saving) { Disturb(&CrashSafetyTest::Save); }
TEST_P(CrashSafetyTest, SavingWithNewUids) { Disturb(&CrashSafetyTest::SaveWithNewUids); }
TEST_P(CrashSafetyTest, SavingACopy) { Disturb(&CrashSafetyTest::SaveAs); }

INSTANTIATE_TEST_SUITE_P(Layouts, CrashSafetyTest,
                         testing::Values(Layout::kStandard, Layout::kExam, Layout::kFolder));

}  // namespace
