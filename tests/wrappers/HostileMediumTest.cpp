// A medium that was made to erase or overwrite what lies beside it: whatever its names and links lead to,
// nothing changes there, and what is good on it goes on working.

#include <map>
#include <system_error>

#include "tests/wrappers/FakeControl.h"
#include "tests/wrappers/Workstation.h"
#include "wrappers/SeriesSaver.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using namespace VantorWrappers;

namespace fs = std::filesystem;

constexpr char kMedium[] = "C/CD";
constexpr char kOwn[] = "D/OWN";
constexpr char kVictim[] = "C/NEXT/VICTIM";

constexpr int kFirstGood = 4;
constexpr int kFirstHostile = 100;
constexpr int kLastGood = 500;

class HostileMediumTest : public Workstation {
  protected:
    // What lies beside the medium is older than everything that is written now.
    HostileMediumTest() {
        for (const char* name : {kVictim, "C/VICTIM", "C/CDX/4", "D/VICTIM", "C/NEXT/4", "C/NEXT/IMAGES/4"})
            fFolder.WriteFile(name, FileOf({}).Build());
        fFolder.WriteFile("C/NEXT/DICOMDIR", DirectoryBuilder().Build());
        fFolder.MakeFolder("D");
        for (const auto& entry : fs::recursive_directory_iterator(fFolder.GetPath())) {
            MakeOld(fs::relative(entry, fFolder.GetPath()).generic_string());
        }
        MakeMedium();
    }
    void MakeOld(const std::string& name) const {
        std::error_code refused;  // of folders, on Windows
        const auto yesterday = fs::file_time_type::clock::now() - std::chrono::hours(24);
        fs::last_write_time(fFolder.PathOf(name), yesterday, refused);
    }

    // Anew, with all file IDs in one series between two good images.
    void MakeMedium(int seriesNumber = 3) {
        fManager.reset();
        fs::remove_all(fFolder.PathOf(kMedium));
        fs::remove_all(fFolder.PathOf(kOwn));
        fFolder.MakeFolder("C/CD/LINKS");
        fFolder.WriteFile("C/CD/IMAGES/README", "the user's own");
        Link("C/NEXT", "C/CD/LINKS/oUt");
        Link("C/CD/LINKS/oUt", "C/CD/LINKS/HOP");
        Link(kVictim, "C/CD/LINKS/VICTIM");
        Link("C/NEXT/NEW", "C/CD/LINKS/NOTHING");
        const Bytes content = MakeDirectory(seriesNumber);
        fFolder.WriteFile("C/CD/DICOMDIR", content);
        Start();
    }

    Bytes MakeDirectory(int seriesNumber) const {
        DirectoryBuilder media;
        const int series = media.AddSeries(media.AddStudy(media.AddPatient(1), 2), seriesNumber);
        const auto addGood = [&](int number) {
            media.AddInstance(series, number);
            fFolder.WriteFile("C/CD/IMAGES/" + std::to_string(number), FileOf({number}).Build());
        };
        addGood(kFirstGood);
        int number = kFirstHostile;
        for (const std::string& fileID : HostileNames()) {
            const std::string uid = "1.2.3.3." + std::to_string(number);
            media.Keys(media.Add(series, "IMAGE "))
                .Text(Tags::kReferencedFileID, Vr::kCS, fileID)
                .Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, FileBuilder::kSecondaryCapture)
                .Text(Tags::kReferencedSOPInstanceUIDInFile, Vr::kUI, uid)
                .Text(Tags::kInstanceNumber, Vr::kIS, std::to_string(number++));
        }
        addGood(kLastGood);
        return media.Build();
    }

    std::vector<std::string> HostileNames() const {
        const std::string full = fFolder.PathOf(kVictim);
        std::string slashed = full;
        std::replace(slashed.begin(), slashed.end(), '\\', '/');
        return {"..\\NEXT\\VICTIM",
                ".. \\NEXT\\VICTIM",
                "...\\NEXT\\VICTIM",
                ".\\..\\NEXT\\VICTIM",
                "IMAGES\\..\\..\\NEXT\\VICTIM",
                "IMAGES/../../NEXT/VICTIM",
                "IMAGES\\\\..\\..\\NEXT\\VICTIM",
                "..\\CDX\\4",
                "A\\B\\C\\D\\E\\F\\G\\H\\..\\..\\..\\..\\..\\..\\..\\..\\..\\NEXT\\VICTIM",
                full,
                slashed,
                "\\..\\NEXT\\VICTIM",
                "\\NEXT\\VICTIM",
                "\\\\SRV\\SHARE\\VICTIM",
                "C:VICTIM",
                "C:\\NEXT\\VICTIM",
                "LINKS\\OUT\\VICTIM",
                "LINKS\\HOP\\VICTIM",
                "LINKS\\HOP\\IMAGES\\4",
                "links\\out\\victim",
                "LINKS\\VICTIM",
                "LINKS\\NOTHING",
                "LINKS\\OUT\\NEW",
                "DICOMDIR",
                ".\\DICOMDIR",
                "dicomdir.",
                "IMAGES\\..\\DICOMDIR",
                "DICOMDIR::$DATA",
                "IMAGES\\README:STREAM",
                "CON",
                "IMAGES\\NUL",
                "NUL.DCM",
                "COM1 .X",
                std::string(300, 'A'),
                "\\",
                " ",
                ""};
    }

    // Users of Windows may not make links: what is tried through one is then tried through nothing.
    bool Link(const std::string& target, const std::string& link) const {
        std::error_code refused;
        const std::string path = fFolder.PathOf(target);
        const bool isFolder = fs::is_directory(path) || target.ends_with("oUt");
        isFolder ? fs::create_directory_symlink(path, fFolder.PathOf(link), refused)
                 : fs::create_symlink(path, fFolder.PathOf(link), refused);
        return !refused;
    }

    // All that is neither on the medium nor in the workstation's own directory: every file with its content,
    // and when it and each folder was changed.
    std::map<std::string, std::string> Outside() const {
        std::map<std::string, std::string> found;
        for (auto entry = fs::recursive_directory_iterator(fFolder.GetPath()); entry != fs::end(entry);
             ++entry) {
            const std::string path = entry->path().string();
            if (path == fFolder.PathOf(kMedium) || path == fFolder.PathOf(kOwn)) {
                entry.disable_recursion_pending();
                continue;
            }
            const std::string time = std::to_string(entry->last_write_time().time_since_epoch().count());
            found[path] = time + (entry->is_directory() ? "" : ReadWholeFileAsText(path));
        }
        return found;
    }
    void ExpectNothingChangedOutside(const char* by) const {
        const auto now = Outside();
        for (const auto& [path, content] : fBefore) {
            const auto found = now.find(path);
            EXPECT_TRUE(found != now.end() && found->second == content) << by << " changed " << path;
        }
        EXPECT_EQ(now.size(), fBefore.size()) << by;
        EXPECT_EQ(ReadWholeFileAsText(fFolder.PathOf("C/CD/IMAGES/README")), "the user's own") << by;
    }
    void NoteOutside() { fBefore = Outside(); }

    // Overwrites whatever it is told to, if it can.
    static std::unique_ptr<FakeControl> MakeControl(const ImageDirRec& image) {
        auto control = std::make_unique<FakeControl>(image.GetImagePath());
        control->fAtSave = [&made = *control] {
            made.fResult = fs::exists(fs::path(made.fTarget).parent_path()) ? 0 : 1;
        };
        return control;
    }

    bool IsThere(const std::string& name) const { return fs::exists(fFolder.PathOf(name)); }
    size_t CountFilesIn(const std::string& folder) const {
        const auto files = fFolder.ListFiles();
        return static_cast<size_t>(std::count_if(files.begin(), files.end(), [&](const std::string& file) {
            return file.starts_with(folder + "/");
        }));
    }

    TestClock fClock{Platform::LocalTime{2026, 3, 9, 14, 5, 33, 0}};
    std::map<std::string, std::string> fBefore;
};

TEST_F(HostileMediumTest, IsDeleted) {
    const auto directory = Open("C/CD/DICOMDIR");
    NoteOutside();
    EXPECT_EQ(directory->DeleteSeries(directory->GetSeriesList().at(0)), kSuccess);
    ExpectNothingChangedOutside("deleting");
    EXPECT_EQ(TreeOnDisk("C/CD/DICOMDIR"), "");
    EXPECT_FALSE(IsThere("C/CD/IMAGES/4") || IsThere("C/CD/IMAGES/500"));
}

TEST_F(HostileMediumTest, IsSavedInPlaceAndAsACopyOnItself) {
    const auto directory = Open("C/CD/DICOMDIR");
    SeriesDirRec series = directory->GetSeriesList().at(0);
    std::vector<ImageDirRec> images;
    series.GetImages(images);
    EXPECT_EQ(images.size(), HostileNames().size() + 2);
    std::vector<std::unique_ptr<FakeControl>> owned;
    SeriesSaver::ImageControls controls;
    for (const ImageDirRec& image : images) {
        owned.push_back(MakeControl(image));
        controls.push_back(owned.back().get());
    }
    NoteOutside();
    const SaveInfo saveInfo;
    SeriesSaver saver;
    EXPECT_EQ(saver.SaveSeries(&saveInfo, &images, &controls, &series),
              Fatal(ErrorNumber::SaveGeneralFailure));
    ExpectNothingChangedOutside("saving");
    EXPECT_EQ(ReadWholeFileAsText(fFolder.PathOf("C/CD/IMAGES/4")), "image=1;");
    EXPECT_EQ(ReadWholeFileAsText(fFolder.PathOf("C/CD/IMAGES/500")), owned.back()->fNotes);
    SaveAsInfo info;
    info.SetDestinationDirectory(directory);
    HostString newUID;
    EXPECT_EQ(saver.SaveAsSeries(&info, &images, &controls, &series, newUID), kSuccess);
    ExpectNothingChangedOutside("saving a copy");
    EXPECT_EQ(CountFilesIn("C/CD/" + Spelled("imagesdc")), images.size());
}

TEST_F(HostileMediumTest, IsCopied) {
    fFolder.WriteFile("D/OWN/DICOMDIR", DirectoryBuilder().Build());
    const auto directory = Open("C/CD/DICOMDIR");
    const auto own = Open("D/OWN/DICOMDIR");
    NoteOutside();
    EXPECT_EQ(own->CopySeries(directory->GetSeriesList().at(0)), kSuccess);
    ExpectNothingChangedOutside("copying");
    const std::string images = "D/OWN/" + Spelled("Imagesdc/I_00000");
    EXPECT_EQ(ReadWholeFile(fFolder.PathOf(images + Spelled("0.dcm"))), FileOf({kFirstGood}).Build());
    EXPECT_TRUE(IsThere("C/CD/IMAGES/4"));
}

// A file whose instance the destination has is put in place of the one that it was copied from.
TEST_F(HostileMediumTest, IsCopiedWhereItsInstancesAreKnown) {
    fFolder.WriteFile("D/OWN/DICOMDIR", MakeDirectory(8));
    const auto directory = Open("C/CD/DICOMDIR");
    const auto own = Open("D/OWN/DICOMDIR");
    NoteOutside();
    EXPECT_EQ(own->CopySeries(directory->GetSeriesList().at(0)), kSuccess);
    ExpectNothingChangedOutside("copying what is known");
    EXPECT_EQ(CountFilesIn("D/OWN"), 1U) << "the DICOMDIR; no file is left that no record names";
    EXPECT_TRUE(IsThere("C/CD/IMAGES/4") && IsThere("C/CD/IMAGES/500"));
}

TEST_F(HostileMediumTest, IsCopiedTo) {
    WriteMedium(kOwn, {1});
    for (const char* target : {"C/NEXT", "C/NEXT/NONE"}) {
        for (const char* link : {"C/CD/IMAGESDC", "C/CD/iMaGeSdC"}) {
            MakeMedium();
            WriteMedium(kOwn, {21});
            if (!Link(target, link)) GTEST_SKIP() << "no links here";
            const auto directory = Open("C/CD/DICOMDIR");
            const auto own = Open("D/OWN/DICOMDIR");
            NoteOutside();
            const SeriesDirRec series = own->GetSeriesList().at(0);
            EXPECT_EQ(directory->CopySeries(series), Fatal(ErrorNumber::CopySeriesFailure)) << link;
            ExpectNothingChangedOutside("copying to it");
            fs::remove(fFolder.PathOf(link));
            EXPECT_EQ(directory->CopySeries(series), kSuccess) << link;
            ExpectNothingChangedOutside("copying to it");
            EXPECT_EQ(CountFilesIn("C/CD/IMAGESDC"), 2U) << link;
        }
    }
}

TEST_F(HostileMediumTest, IsAddedToAndRepaired) {
    const auto directory = Open("C/CD/DICOMDIR");
    NoteOutside();
    for (const std::string& name : HostileNames()) {
        TFileSpec fileSpec;
        directory->GetUmDirectory()->MakeFileSpec(name, fileSpec);
        directory->AddFile(Wide(fileSpec.fPath));
    }
    directory->Save();
    EXPECT_EQ(directory->GetError(), kSuccess);
    ExpectNothingChangedOutside("adding");
    EXPECT_EQ(fManager->RepairDirectory(directory, L"NEW"), kSuccess);
    EXPECT_TRUE(directory->AddFile(PathOf("C/CD/IMAGES/4")));
    directory->Save();
    ExpectNothingChangedOutside("repairing");
    EXPECT_EQ(TreeOnDisk("C/CD/DICOMDIR"), "P1(S2(s1(i4)))");
}

// What is written to a link is written where it leads.
TEST_F(HostileMediumTest, HasADICOMDIRThatIsALink) {
    fFolder.WriteFile("C/NEXT/WHOLE", MakeDirectory(3));
    MakeOld("C/NEXT");
    const auto put = [&](const char* target) {
        MakeMedium();
        fs::remove(fFolder.PathOf("C/CD/DICOMDIR"));
        const bool isLinked = Link(target, "C/CD/DICOMDIR");
        NoteOutside();
        return isLinked;
    };
    for (const char* path : {"C/CD/DICOMDIR", kMedium}) {
        if (!put("C/NEXT/WHOLE")) GTEST_SKIP() << "no links here";
        const auto directory = Open(path);
        ASSERT_EQ(directory->GetSeriesList().size(), 1U);
        EXPECT_EQ(directory->DeleteSeries(directory->GetSeriesList().at(0)),
                  Fatal(ErrorNumber::DirectoryReadOnly));
        EXPECT_EQ(fManager->RepairDirectory(directory, L"NEW"), Fatal(ErrorNumber::RepairFailure));
        directory->SetDirName(L"NEW");
        directory->Save();
        directory->CreateDICOMDIR();
        EXPECT_EQ(directory->GetError(), Fatal(ErrorNumber::DirectoryWriteError));
        ExpectNothingChangedOutside(path);
    }
    for (const char* target : {"C/NEXT/WHOLE", kVictim, "C/NEXT/NONE"}) {
        put(target);
        Link("C/NEXT", "C/CD/" + Spelled("imagesdc"));
        fGranted.clear();
        fManager->CreateOrReplaceDirectory(PathOf(kMedium), L"NEW", false);
        ExpectNothingChangedOutside(target);
        EXPECT_EQ(fGranted, std::vector<HostString>()) << "for others to write";
        put(target);
        fManager->CreateOrReplaceDirectory(PathOf("C/CD/DICOMDIR"), L"NEW", true);
        ExpectNothingChangedOutside(target);
        EXPECT_EQ(TreeOnDisk("C/CD/DICOMDIR"), "") << "in place of the link";
    }
}

// The folder of a study goes with the study, and copies are saved into it.
TEST_F(HostileMediumTest, NamesFoldersOfItsStudies) {
    const std::string full = fFolder.PathOf("C/NEXT");
    const std::vector<std::string> paths = {"\\EXAMS\\..",
                                            "\\EXAMS\\.",
                                            "\\EXAMS\\.. ",
                                            "\\EXAMS\\...",
                                            "..\\NEXT",
                                            "\\EXAMS\\",
                                            "\\",
                                            full,
                                            "\\EXAMS\\OUT",
                                            "\\EXAMS\\out",
                                            "\\EXAMS\\X:Y",
                                            "\\EXAMS\\C:",
                                            "\\EXAMS\\NUL",
                                            "\\EXAMS\\..\\",
                                            "",
                                            "../NEXT",
                                            "\\EXAMS\\NOTHING"};
    for (const bool isLink : {false, true}) {
        for (const char* exams : {"C/CD/EXAMS", "C/CD/eXaMs"}) {
            MakeMedium();
            DirectoryBuilder media;
            const int patient = media.AddPatient(1);
            int number = 2;
            const auto addStudy = [&](const std::string& path) {
                const int study = media.AddStudy(patient, number);
                media.Keys(study)
                    .Text(Tags::kExamCreator, Vr::kLO, "ANY")
                    .Text(Tags::kExamFolder, Vr::kST, path);
                media.AddInstance(media.AddSeries(study, number), number);
                number += 1;
            };
            addStudy("\\EXAMS\\NEXT");
            for (const std::string& path : paths) addStudy(path);
            if (isLink && !Link("C", exams)) continue;
            if (!isLink) {
                fFolder.WriteFile(exams + std::string("/NEXT/IMAGES/5"), "x");
                Link("C/NEXT", exams + std::string("/OUT"));
                Link("C/NEXT/NONE", exams + std::string("/NOTHING"));
            }
            fFolder.WriteFile("C/CD/DICOMDIR", media.Build());
            const auto directory = Open("C/CD/DICOMDIR");
            NoteOutside();
            for (const SeriesDirRec& each : directory->GetSeriesList()) {
                SeriesDirRec series = each;
                std::vector<ImageDirRec> images;
                series.GetImages(images);
                const auto control = MakeControl(images.at(0));
                const SeriesSaver::ImageControls controls = {control.get()};
                SaveAsInfo info;
                info.SetDestinationDirectory(directory);
                info.SetPatientNumber(L"ID1");
                HostString newUID;
                SeriesSaver().SaveAsSeries(&info, &images, &controls, &series, newUID);
            }
            if (isLink) {
                char name[TDicomDoc::kFolderNameSize];
                EXPECT_EQ(ThrownBy([&] {
                              directory->GetUmDirectory()->CreateExamFolders(name, sizeof(name), 0, nullptr);
                          }),
                          "102 Cannot make folder.");
            }
            ExpectNothingChangedOutside("saving a copy in a study");
            directory->UpdateDirRecs();
            const auto all = directory->GetSeriesList();
            for (auto series = all.rbegin(); series != all.rend(); ++series) {
                EXPECT_TRUE(isLink || IsThere(exams + std::string("/NEXT/IMAGES/5"))) << "a good study's own";
                EXPECT_EQ(directory->DeleteSeries(*series), kSuccess);
            }
            ExpectNothingChangedOutside("deleting studies");
            EXPECT_EQ(TreeOnDisk("C/CD/DICOMDIR"), "");
            EXPECT_TRUE(isLink || !IsThere(exams + std::string("/NEXT")));
        }
    }
}

}  // namespace
