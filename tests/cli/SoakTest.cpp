// Two hosts at work on the same media for many random steps, with a medium that fails now and then and
// without: after each step another program finds what a plain model says. The same seed gives the same run.
//
// VANTOR_SOAK_STEPS makes the runs longer, VANTOR_SOAK_SEED begins them elsewhere.

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <thread>

#include "cli/SeriesImages.h"
#include "directory/ExamFolder.h"
#include "directory/TFolderDirectory.h"
#include "platform/Clock.h"
#include "tests/cli/SoakModel.h"
#include "tests/support/MediumFaults.h"
#include "tests/wrappers/Workstation.h"
#include "wrappers/SeriesSaver.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using VantorWrappers::ImageDirRec;
using VantorWrappers::SaveAsInfo;
using VantorWrappers::SaveInfo;
using VantorWrappers::SeriesSaver;

constexpr size_t kMostImages = 40;  // on one medium; then only deletions are chosen

enum class Layout { kStandard, kExam, kFolder, kPlainFolder };

int NumberFromEnvironment(const char* name, int otherwise) {
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : std::atoi(text);
}

// ---- Files ----

// Of different sizes, below and above what is copied at once. Each two bytes hold the mark.
Bytes PixelsOf(int mark) {
    Bytes pixels(mark % 5 == 0 ? 80000 : 600);
    for (size_t index = 0; index < pixels.size(); index += 2) {
        pixels[index] = static_cast<uint8_t>(mark);
        pixels[index + 1] = static_cast<uint8_t>(mark >> 8);
    }
    return pixels;
}

// -1 when the file does not end with all pixels of an image.
int MarkOf(const std::string& path) {
    const Bytes content = ReadWholeFile(path);
    if (content.size() < 2) return -1;
    const int mark = content[content.size() - 2] | content.back() << 8;
    const Bytes pixels = PixelsOf(mark);
    const bool isWhole =
        content.size() > pixels.size() && std::equal(pixels.rbegin(), pixels.rend(), content.rbegin());
    return isWhole ? mark : -1;
}

std::string Trimmed(std::string text) {
    text.erase(text.find_last_not_of(std::string_view(" \0", 2)) + 1);
    return text;
}

std::string ValueOf(TDicomDoc& doc, Tag tag) { return Trimmed(TextOf(*doc.GetDataSet(), tag)); }

// The UIDs of an image, of its series and of its study, in the file.
std::array<std::string, 3> UidsInFile(const std::string& path) {
    TDicomFile file(0, TFileSpec(path), 0);
    file.OpenFile(Platform::FileAccess::kRead);
    EXPECT_TRUE(file.ReadFile()) << path;
    file.CloseFile();
    const auto value = [&](Tag tag) { return Trimmed(TextOf(*file.GetDataSet(), tag)); };
    return {value(Tags::kSOPInstanceUID), value(Tags::kSeriesInstanceUID), value(Tags::kStudyInstanceUID)};
}

// ---- The time ----

// Each look at the time of day is a second after the last one, so that no two new UIDs are alike, on whatever
// media, and all runs have the same ones.
class SecondsClock final : public Platform::Clock {
  public:
    std::chrono::steady_clock::time_point Now() override { return std::chrono::steady_clock::now(); }
    void Sleep(std::chrono::milliseconds duration) override { std::this_thread::sleep_for(duration); }
    std::optional<Platform::LocalTime> GetLocalTime() override {
        const int now = fSeconds++;
        return Platform::LocalTime{
            2026, 10 + now / 2073600, 10 + now / 86400 % 24, now / 3600 % 24, now / 60 % 60, now % 60, 0};
    }

  private:
    std::atomic<int> fSeconds = 0;
    Platform::ReplacedClock fReplaced{*this};
};

// ---- The run ----

class Soak final : public Workstation {
  public:
    Soak(int seed, bool isDisturbed) : fRandom(static_cast<uint32_t>(seed)), fWithFaults(isDisturbed) {
        const Layout layouts[] = {Layout::kStandard, Layout::kExam, Layout::kFolder, Layout::kPlainFolder};
        for (const Layout layout : layouts) MakeMedium(layout);
        StartHosts();
    }
    void TestBody() override {}

    // What was done, a line for each step. Ends with the first fault.
    Lines Run(int steps) {
        for (int step = 0; step < steps && !HasFailure(); ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            TakeStep();
        }
        EndHosts();
        for (Place& place : fPlaces) Judge(place, {}, false);
        if (HasFailure()) ADD_FAILURE() << "the steps before: " << testing::PrintToString(fDone);
        return fDone;
    }

  private:
    struct Place {
        Layout fLayout;
        std::string fFolder;
        SoakMedium fMust;
        std::vector<SoakChange> fPending;  // that failed: who tried them may write them with a later one

        bool HasDICOMDIR() const { return fLayout != Layout::kPlainFolder; }
    };
    using Host = std::unique_ptr<DirectoriesMgr>;

    // What a host is about to do. `fRun` gives false when the host is told that it failed.
    struct Plan {
        std::string fWhat;
        Place* fPlace = nullptr;
        SoakChange fChange = {};
        std::function<bool()> fRun = nullptr;
        bool fIsDoneAgain = false;   // what a failure leaves agrees only when it has been done again
        bool fMayBeRefused = false;  // to a host that does not know the last state; nothing is changed then
    };

    size_t Roll(size_t count) { return fRandom() % count; }

    // ---- Media and hosts ----

    void MakeMedium(Layout layout) {
        Place place{layout, std::string(1, "CDEF"[fPlaces.size()]), {}, {}};
        fFolder.MakeFolder(place.fFolder);
        if (place.HasDICOMDIR()) {
            const auto type =
                layout == Layout::kExam ? TDicomDirectory::kExamLayout : TDicomDirectory::kStandardLayout;
            place.fMust.fName = "NAME";
            TDicomDirectory directory(TFileSpec(fFolder.PathOf(place.fFolder + "/DICOMDIR")), "NAME", type,
                                      "1.2.840.10008.1.3.10", "1.2.3", Uids::kExplicitVRLittleEndian,
                                      Uids::kImplementationClass, false);
            directory.WriteDICOMDIR();
        }
        fPlaces.push_back(place);
    }

    void StartHosts() {
        for (Host& host : fHosts) host = std::make_unique<DirectoriesMgr>(false, false, L"");
    }
    void EndHosts() {
        for (Host& host : fHosts) host.reset();
    }

    // As the host knows it, which may be from before the other one's last step, or as it is now.
    std::shared_ptr<DicomDirectory> Open(Host& host, const Place& place, bool isFresh = true) {
        const auto directory = place.fLayout == Layout::kFolder || place.fLayout == Layout::kPlainFolder
                                   ? host->FindOrCreateFolderDirectory(PathOf(place.fFolder))
                                   : host->OpenDirectory(PathOf(place.fFolder + "/DICOMDIR"));
        if (isFresh) directory->UpdateDirRecs();
        return directory;
    }

    // Without what the host could not write.
    std::shared_ptr<DicomDirectory> Reload(Host& host, const Place& place) {
        const auto directory = Open(host, place, false);
        directory->SyncWithDiskVersion();
        directory->UpdateDirRecs();
        return directory;
    }

    static std::optional<SeriesDirRec> FindSeries(const DicomDirectory& directory, const HostString& uid) {
        for (const SeriesDirRec& series : directory.GetSeriesList()) {
            if (series.GetSeriesUID() == uid) return series;
        }
        return std::nullopt;
    }

    // Nothing when the host sees none.
    HostString ChooseSeries(const DicomDirectory& directory) {
        const auto& list = directory.GetSeriesList();
        return list.empty() ? HostString() : list[Roll(list.size())].GetSeriesUID();
    }

    // ---- Steps ----

    void TakeStep() {
        Host& host = fHosts[Roll(fHosts.size())];
        Place& place = fPlaces[Roll(fPlaces.size())];
        const bool isFull = place.fMust.fImages.size() > kMostImages;
        auto plan = isFull ? Delete(host, place) : Choose(host, place);
        if (!plan) return;
        SCOPED_TRACE(plan->fWhat);
        const Attempt attempt = CarryOut(*plan);
        Judge(*plan->fPlace, plan->fChange, attempt.fIsDisturbed);
        if (attempt.fHasLostPower) {
            for (Place& each : fPlaces) each.fPending.clear();
        }
        fDone.push_back(plan->fWhat + (attempt.fIsDisturbed ? ", disturbed: " : ": ") +
                        std::to_string(plan->fPlace->fMust.fImages.size()));
        // A host that goes on shows what it could not write.
        if (!HasFailure() && plan->fPlace->fPending.empty()) ExpectSeen(host, *plan->fPlace);
    }

    std::optional<Plan> Choose(Host& host, Place& place) {
        Place& other = fPlaces[Roll(fPlaces.size())];
        switch (Roll(9)) {
            case 0:
            case 1:
                return Enter(host, place);
            case 2:
            case 3:
                return Copy(host, other, place);
            case 4:
                return Delete(host, place);
            case 5:
                return Rename(host, place);
            case 6:
                return Save(host, place);
            case 7:
                return SaveAs(host, other, place);
            default:
                return Restart(host, place);
        }
    }

    Plan Restart(Host& host, Place& place) {
        return {"restart", &place, {}, [&host] {
                    host = std::make_unique<DirectoriesMgr>(false, false, L"");
                    return true;
                }};
    }

    // New files, most of them of series that may be there already.
    Plan Enter(Host& host, Place& place) {
        Plan plan{"enter into " + place.fFolder, &place};
        Lines paths;
        const size_t count = 1 + Roll(3);
        const int patient = 1 + static_cast<int>(Roll(3));
        const int study = 10 * patient + static_cast<int>(Roll(2));
        const int series = 10 * study + static_cast<int>(Roll(3));
        for (size_t file = 0; file < count; ++file) {
            const int mark = ++fLastMark;
            const std::string patientID = "ID" + std::to_string(patient);
            FileKeys keys{.fInstance = mark, .fSeries = series, .fPatientID = patientID.c_str()};
            keys.fStudy = study;
            keys.fClass = "1.2.840.10008.5.1.4.1.1.6.1";
            FileBuilder builder = FileOf(keys);
            builder.Data().Value(Tags::kPixelData, Vr::kOB, PixelsOf(mark));
            const std::string name = place.fFolder + "/IMAGES/N" + std::to_string(mark) + ".DCM";
            paths.push_back(fFolder.WriteFile(name, builder.Build()));
            plan.fChange.fComing["1.2.3.3." + std::to_string(mark)] = {
                patientID, "1.2.3.1." + std::to_string(study), "1.2.3.2." + std::to_string(series), mark};
        }
        const bool isFresh = Roll(2) == 0;
        plan.fRun = [this, &host, &place, paths, isFresh] {
            if (!place.HasDICOMDIR()) return true;
            const auto directory = Open(host, place, isFresh);
            if (!directory->OpenForUpdating()) return false;
            bool isEntered = true;
            for (const std::string& path : paths) isEntered = directory->AddFile(Wide(path)) && isEntered;
            directory->Save();
            return isEntered;
        };
        return plan;
    }

    std::optional<Plan> Copy(Host& host, Place& from, Place& to) {
        if (!to.HasDICOMDIR()) return std::nullopt;
        const HostString series = ChooseSeries(*Reload(host, from));
        if (series.empty()) return std::nullopt;
        Plan plan{"copy from " + from.fFolder + " to " + to.fFolder + ": " + Platform::FromHostText(series),
                  &to};
        const std::string uid = Platform::FromHostText(series);
        if (to.fMust.ImagesOf(uid).empty()) plan.fChange.fComing = from.fMust.ImagesOf(uid);
        plan.fRun = [this, &host, &from, &to, series] {
            const auto source = Reload(host, from);
            const auto record = FindSeries(*source, series);
            return record && Open(host, to)->CopySeries(*record) == kSuccess;
        };
        return plan;
    }

    // By a host that may not know the last state: then the series may be gone, or have more images.
    std::optional<Plan> Delete(Host& host, Place& place) {
        const bool isFresh = !place.HasDICOMDIR() || Roll(3) > 0;
        const HostString series = ChooseSeries(isFresh ? *Reload(host, place) : *Open(host, place, false));
        if (series.empty()) return std::nullopt;
        Plan plan{"delete in " + place.fFolder + ": " + Platform::FromHostText(series), &place};
        for (const auto& image : place.fMust.ImagesOf(Platform::FromHostText(series))) {
            plan.fChange.fGoing.insert(image.first);
        }
        plan.fRun = [this, &host, &place, isFresh, series] {
            const auto directory = isFresh ? Reload(host, place) : Open(host, place, false);
            const auto record = FindSeries(*directory, series);
            return !record || directory->DeleteSeries(*record) == kSuccess;
        };
        plan.fIsDoneAgain = true;
        return plan;
    }

    std::optional<Plan> Rename(Host& host, Place& place) {
        if (!place.HasDICOMDIR()) return std::nullopt;
        Plan plan{"rename " + place.fFolder, &place};
        plan.fChange.fName = "NAME" + std::to_string(10 + Roll(90));
        const bool isFresh = Roll(2) == 0;
        plan.fMayBeRefused = !isFresh;
        plan.fRun = [this, &host, &place, isFresh, name = Wide(*plan.fChange.fName)] {
            const auto directory = Open(host, place, isFresh);
            directory->SetDirName(name);
            return directory->GetError() == kSuccess;
        };
        return plan;
    }

    template <typename Action>
    bool WithImages(Host& host, const Place& place, const HostString& series, Action action) {
        const auto directory = Reload(host, place);
        const auto record = FindSeries(*directory, series);
        if (!record) return false;
        std::vector<ImageDirRec> records;
        record->GetImages(records);
        VantorCli::SeriesImages images(records);
        SeriesSaver saver;
        const LuminaError result = action(saver, records, images.GetControls(), *record);
        return images.Finish() && result == kSuccess;
    }

    std::optional<Plan> Save(Host& host, Place& place) {
        if (!place.HasDICOMDIR()) return std::nullopt;
        const HostString series = ChooseSeries(*Reload(host, place));
        if (series.empty()) return std::nullopt;
        SaveInfo info;
        info.SetAssignNewUIDsFlag(Roll(2) == 0);
        Plan plan{"save in " + place.fFolder + ": " + Platform::FromHostText(series), &place};
        plan.fIsDoneAgain = info.GetAssignNewUIDsFlag();
        for (const auto& [uid, image] : place.fMust.ImagesOf(Platform::FromHostText(series))) {
            if (!info.GetAssignNewUIDsFlag()) continue;
            plan.fChange.fGoing.insert(uid);
            plan.fChange.fComingAnew.push_back(image);
        }
        plan.fRun = [this, &host, &place, series, info] {
            return WithImages(host, place, series,
                              [&](SeriesSaver& saver, auto& records, auto& controls, auto& record) {
                                  return saver.SaveSeries(&info, &records, &controls, &record);
                              });
        };
        return plan;
    }

    std::optional<Plan> SaveAs(Host& host, Place& from, Place& to) {
        if (!to.HasDICOMDIR()) return std::nullopt;
        const HostString series = ChooseSeries(*Reload(host, from));
        if (series.empty()) return std::nullopt;
        Plan plan{
            "save as from " + from.fFolder + " to " + to.fFolder + ": " + Platform::FromHostText(series),
            &to};
        const std::string number = "ID" + std::to_string(7 + Roll(3));
        for (const auto& image : from.fMust.ImagesOf(Platform::FromHostText(series))) {
            plan.fChange.fComingAnew.push_back({number, "", "", image.second.fMark});
        }
        plan.fRun = [this, &host, &from, &to, series, number] {
            SaveAsInfo info;
            info.SetDestinationDirectory(Open(host, to));
            info.SetPatientName(VantorHost::PatientName(L"New^Name"));
            info.SetPatientNumber(Wide(number));
            info.SetStudyID(L"7");
            info.SetNewStudyFlag(true);
            return WithImages(host, from, series,
                              [&](SeriesSaver& saver, auto& records, auto& controls, auto& record) {
                                  HostString uid;
                                  return saver.SaveAsSeries(&info, &records, &controls, &record, uid);
                              });
        };
        return plan;
    }

    // ---- With a medium that fails ----

    struct Attempt {
        bool fIsDone = false;  // as the host is told
        bool fIsDisturbed = false;
        bool fHasLostPower = false;  // afterwards
    };

    Attempt CarryOut(Plan& plan) {
        Attempt attempt = Try(plan);
        if (!attempt.fIsDisturbed) {
            EXPECT_TRUE(attempt.fIsDone || plan.fMayBeRefused);
            if (!attempt.fIsDone) plan.fChange = {};
        } else if (plan.fIsDoneAgain) {
            EXPECT_TRUE(plan.fRun()) << "when it is done again";
            attempt.fIsDisturbed = false;
        }
        return attempt;
    }

    Attempt Try(const Plan& plan) {
        if (!fWithFaults || Roll(2) == 0) return {plan.fRun(), false, false};
        const size_t number = Roll(40);
        const size_t how = Roll(3);
        return how == 0 ? LosePowerAt(number, plan) : FailAt(number, how == 1, plan);
    }

    Attempt LosePowerAt(size_t number, const Plan& plan) {
        Attempt attempt;
        {
            MediumFaults faults = MediumFaults::RefuseFrom(number);
            attempt.fIsDone = plan.fRun();
            EndHosts();
            attempt.fIsDisturbed = faults.HasRefused();
            faults.LoseWhatIsNotFlushed();
        }
        StartHosts();
        attempt.fHasLostPower = true;
        return attempt;
    }

    static Attempt FailAt(size_t number, bool isFull, const Plan& plan) {
        const MediumFaults faults = MediumFaults::RefuseOne(
            number, isFull ? MediumFaults::Cause::kDiskFull : MediumFaults::Cause::kHardIO);
        const bool isDone = plan.fRun();
        if (faults.HasRefused()) plan.fPlace->fPending.push_back(plan.fChange);
        return {isDone, faults.HasRefused(), false};
    }

    // ---- What must be there ----

    // As another program finds it, with all files that are named.
    SoakMedium Read(const Place& place) const {
        SoakMedium medium;
        const std::string folder = fFolder.PathOf(place.fFolder);
        std::unique_ptr<TDicomDirectory> directory;
        if (place.HasDICOMDIR()) {
            directory = std::make_unique<TDicomDirectory>(TFileSpec(folder + kSeparator + "DICOMDIR"), 0);
            char name[TDicomDirectory::kDirectoryNameSize] = {};
            directory->GetDirName(name, sizeof(name));
            medium.fName = name;
        } else {
            directory = std::make_unique<TFolderDirectory>(folder, "", TFolderDirectory::kFolder);
        }
        for (TImageDoc* image : *directory->GetImageDocs()) {
            TDicomDoc& series = *image->GetParentObj();
            TDicomDoc& study = *series.GetParentObj();
            TUidText uid;
            image->GetDicomFile()->GetSOPInstanceUID(uid.fText);
            const std::string path = image->GetDicomFile()->GetFileSpec()->fPath;
            const SoakImage found{ValueOf(*study.GetParentObj(), Tags::kPatientID),
                                  ValueOf(study, Tags::kStudyInstanceUID),
                                  ValueOf(series, Tags::kSeriesInstanceUID), MarkOf(path)};
            EXPECT_EQ(UidsInFile(path), (std::array<std::string, 3>{uid.fText, found.fSeries, found.fStudy}));
            EXPECT_NE(found.fMark, -1) << "not whole: " << path;
            EXPECT_TRUE(medium.fImages.emplace(uid.fText, found).second) << "twice: " << uid.fText;
        }
        return medium;
    }

    void Judge(Place& place, const SoakChange& change, bool isDisturbed) {
        SoakMedium found;
        EXPECT_EQ(ThrownBy([&] { found = Read(place); }), "nothing");
        EXPECT_EQ(SoakJudge(place.fMust, change, place.fPending, isDisturbed).FaultsOf(found), Lines());
        place.fMust = found;
    }

    // By a host that looks again.
    void ExpectSeen(Host& host, const Place& place) {
        std::map<std::string, int> expected;
        std::map<std::string, int> seen;
        for (const auto& image : place.fMust.fImages) ++expected[image.second.fSeries];
        const auto directory = place.HasDICOMDIR() ? Open(host, place) : Reload(host, place);
        for (const SeriesDirRec& series : directory->GetSeriesList()) {
            seen[Platform::FromHostText(series.GetSeriesUID())] = series.GetNumberDicomObjects();
        }
        EXPECT_EQ(seen, expected);
    }

    SecondsClock fClock;
    std::mt19937 fRandom;
    bool fWithFaults;
    std::vector<Place> fPlaces;
    std::array<Host, 2> fHosts;
    int fLastMark = 0;
    Lines fDone;
};

class SoakTest : public testing::TestWithParam<std::tuple<int, bool>> {};

TEST_P(SoakTest, FindsWhatMustBeThere) {
    const auto [seed, isDisturbed] = GetParam();
    Soak(seed + NumberFromEnvironment("VANTOR_SOAK_SEED", 0), isDisturbed)
        .Run(NumberFromEnvironment("VANTOR_SOAK_STEPS", 120));
}

INSTANTIATE_TEST_SUITE_P(Seeds, SoakTest, testing::Combine(testing::Values(1, 2), testing::Bool()),
                         [](const auto& run) {
                             return (std::get<1>(run.param) ? "Disturbed" : "Undisturbed") +
                                    std::to_string(std::get<0>(run.param));
                         });

TEST(SoakRunTest, IsTheSameWithTheSameSeed) {
    const Lines first = Soak(3, true).Run(40);
    EXPECT_EQ(Soak(3, true).Run(40), first);
}

}  // namespace
