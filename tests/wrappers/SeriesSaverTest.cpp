// Saving a series in place, and as a copy: what the image controls are told, what the host hears, and what is
// in the directories afterwards.

#include <algorithm>
#include <filesystem>
#include <functional>
#include <stdexcept>

#include "platform/File.h"
#include "tests/wrappers/FakeControl.h"
#include "tests/wrappers/Workstation.h"
#include "wrappers/SeriesSaver.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using namespace VantorWrappers;

class SeriesSaverTest : public Workstation {
  protected:
    SeriesSaverTest() {
        WriteMedium("C", {1});
        fFolder.WriteFile("D/DICOMDIR", DirectoryBuilder().Build());
        Start();
        fSource = Open("C/DICOMDIR");
        fDestination = Open("D/DICOMDIR");
        Choose(0);
        fInfo.SetDestinationDirectory(fDestination);
        fInfo.SetPatientName(VantorHost::PatientName(L"New^Name^^"));
        fInfo.SetPatientNumber(L"ID9");
        fInfo.SetStudyID(L"S7");
        fInfo.SetStudyDescription(L"Stress");
        fInfo.SetAccessionNumber(L"A1");
        fInfo.SetSeriesNumber(L"8");
        fInfo.SetSeriesDescription(L"Copy");
        fSaver.eSaveAsStatus.Subscribe([this](const SaveAsEventArgs& status) {
            fStatus.push_back({status.GetTotalImages(), status.GetCurrentImage(), status.GetTotalFrames(),
                               status.GetCurrentFrame(), static_cast<int32_t>(status.GetCurrentState())});
        });
    }

    void Choose(size_t index) {
        fSeries = fSource->GetSeriesList().at(index);
        fSeries.GetImages(fImages);
        fControls.clear();
        fOwned.clear();
        for (const ImageDirRec& image : fImages) {
            fOwned.push_back(std::make_unique<FakeControl>(image.GetImagePath()));
            fControls.push_back(fOwned.back().get());
        }
    }
    void TraceArea(VantorHost::TraceArea area) {
        VantorHost::Trace::SetLevel(area, VantorHost::TraceLevel::kWarning);
    }
    LuminaError Save() { return fSaver.SaveSeries(&fSaveInfo, &fImages, &fControls, &fSeries); }
    LuminaError SaveAs(const SeriesDirRec* series) {
        return fSaver.SaveAsSeries(&fInfo, &fImages, &fControls, series, fNewUID);
    }

    size_t FilesOfCopies() const {
        const auto files = fFolder.ListFiles();
        return static_cast<size_t>(std::count_if(files.begin(), files.end(), [](const std::string& name) {
            return name.starts_with("D/") && !name.ends_with("DICOMDIR");
        }));
    }

    using Status = std::vector<int32_t>;

    TestClock fClock{Platform::LocalTime{2026, 3, 9, 14, 5, 33, 0}};
    std::shared_ptr<DicomDirectory> fSource;
    std::shared_ptr<DicomDirectory> fDestination;
    SeriesDirRec fSeries;
    std::vector<ImageDirRec> fImages;
    std::vector<std::unique_ptr<FakeControl>> fOwned;
    SeriesSaver::ImageControls fControls;
    SeriesSaver fSaver;
    SaveInfo fSaveInfo;
    SaveAsInfo fInfo;
    HostString fNewUID = L"old";
    std::vector<Status> fStatus;
};

// ---- A copy ----

constexpr char kNewStudy[] = "1.2.840.990017.990017.1309.140533";

TEST_F(SeriesSaverTest, ACopyWithoutSourceSeriesIsANewStudyOfSecondaryCaptures) {
    EXPECT_EQ(SaveAs(nullptr), kSuccess);
    const std::string study = kNewStudy;
    EXPECT_EQ(fNewUID, Wide(study + ".1"));
    const std::string told =
        "series number=8;series name=Copy;study name=Stress;accession=A1;series=" + study +
        ".1;study=" + study + ";study ID=S7;";
    EXPECT_EQ(fOwned[0]->fNotes, "instance=" + study + ".1.1;name=New^Name^^;ID=ID9;" + told + "image=1;");
    EXPECT_EQ(fOwned[1]->fNotes, "instance=" + study + ".1.2;name=New^Name^^;ID=ID9;" + told + "image=2;");
    EXPECT_EQ(TreeOnDisk("D/DICOMDIR"), "P9(SS7(s8(i1 i2)))");

    TDicomDirectory onDisk(TFileSpec(fFolder.PathOf("D/DICOMDIR")), 0);
    const TDicomDataSet& record = *(*onDisk.GetStudyDocs()->begin())->GetDataSet();
    EXPECT_EQ(TextOf(record, Tags::kStudyDate) + TextOf(record, Tags::kStudyTime), "202603091405");
    EXPECT_EQ(TextOf(record, Tags::kStudyInstanceUID).c_str(), study);
    EXPECT_EQ(TextOf(*(*onDisk.GetSeriesDocs()->begin())->GetDataSet(), Tags::kModality), "SC");
    TImageDoc& image = *(*onDisk.GetImageDocs()->begin());
    EXPECT_EQ(image.GetFilePath(), fFolder.PathOf("D/IMAGESDC/I_000000.DCM"));
    EXPECT_EQ(ReadWholeFileAsText(image.GetFilePath()), fOwned[0]->fNotes);
    TUidText uid;
    EXPECT_TRUE(image.GetSOPInstanceUID(uid.fText));
    EXPECT_EQ(uid.fText, study + ".1.1");
    EXPECT_FALSE(fDestination->IsCurrent());
    EXPECT_FALSE(fDestination->GetUmDirectory()->IsOpen());
    // Made within the same second, it is another study all the same.
    EXPECT_EQ(SaveAs(nullptr), kSuccess);
    EXPECT_EQ(fNewUID, Wide(study + "1.1"));
    EXPECT_EQ(TreeOnDisk("D/DICOMDIR"), "P9(SS7(s8(i1 i2)) SS7(s8(i1 i2)))");
}

TEST_F(SeriesSaverTest, ACopyJoinsTheStudyOfItsSource) {
    fInfo.SetMakeAnonymousFlag(true);
    EXPECT_EQ(SaveAs(&fSeries), kSuccess);
    EXPECT_EQ(TreeOnDisk("D/DICOMDIR"), "P9(SS7(s8(i1 i2)))");
    EXPECT_EQ(fNewUID, L"1.2.3.1.2.1");
    EXPECT_NE(fOwned[0]->fNotes.find("ID=ID9;level=1;series number"), std::string::npos);
    // Into its own directory, where the study keeps its patient: no patient without a study is left behind.
    fInfo.SetDestinationDirectory(fSource);
    fInfo.SetErasePhysicianNamesFlag(true);
    fInfo.SetPatientNumber(L"");
    EXPECT_EQ(SaveAs(&fSeries), kSuccess);
    EXPECT_EQ(TreeOnDisk("C/DICOMDIR"), "P1(S2(s3(i4 i5) s6(i7) s8(i1 i2)))");
    EXPECT_NE(fOwned[0]->fNotes.find("name=New^Name^^;level=2;series number"), std::string::npos);
}

// Two series of one UID would pass for the same one, wherever both come together.
TEST_F(SeriesSaverTest, ACopyInTheSameStudyElsewhereIsAnotherSeries) {
    fInfo.SetSeriesNumber(L"9");
    EXPECT_EQ(SaveAs(nullptr), kSuccess);
    const HostString study = Wide(kNewStudy);
    EXPECT_EQ(fNewUID, study + L".1");
    fFolder.WriteFile("D/NEXT/DICOMDIR", DirectoryBuilder().Build());
    fInfo.SetDestinationDirectory(Open("D/NEXT/DICOMDIR"));
    fDestination->UpdateDirRecs();
    const SeriesDirRec copy = fDestination->GetSeriesList().at(0);
    copy.GetImages(fImages);
    EXPECT_EQ(SaveAs(&copy), kSuccess);
    EXPECT_EQ(fNewUID, study + L".2");
}

TEST_F(SeriesSaverTest, AnExamLayoutGivesAStudyItsFolder) {
    DirectoryBuilder media;
    const int study = media.AddStudy(media.AddPatient(1), 2);
    media.Keys(study).Text(Tags::kExamCreator, Vr::kLO, "ANY");
    media.AddSeries(study, 3);
    fFolder.WriteFile("D/EXAM/DICOMDIR", media.Build());
    fInfo.SetDestinationDirectory(Open("D/EXAM/DICOMDIR"));
    EXPECT_EQ(SaveAs(nullptr), kSuccess);
    const auto pathOf = [&](const std::string& name) {
        return Wide(fFolder.PathOf("D/EXAM/" + Spelled("Exams/EXAM0000/Images/" + name)));
    };
    EXPECT_EQ(fOwned[0]->fTarget, pathOf("4"));
    EXPECT_EQ(fOwned[1]->fTarget, pathOf("5"));
    EXPECT_EQ(TreeOnDisk("D/EXAM/DICOMDIR"), "P1(S2(s3)) P9(SS7(s8(i1 i2)))");
}

TEST_F(SeriesSaverTest, TextBeyondASCIITellsItsCharacterSet) {
    fInfo.SetPatientName(VantorHost::PatientName(L"M\xFCller"));
    EXPECT_EQ(SaveAs(nullptr), kSuccess);
    TPatientDoc& patient = **fDestination->GetUmDirectory()->GetPatientDocs()->begin();
    EXPECT_EQ(TextOf(*patient.GetDataSet(), Tags::kSpecificCharacterSet),
              kIsWindows ? "ISO_IR 100" : "ISO_IR 192");
}

// A host that only hands texts on need not know what they are in. UTF-8 stands for whatever hosts see of a
// set that cannot be mixed with the text that was given.
TEST_F(SeriesSaverTest, TextsOfTheSourceKeepTheirCharacterSet) {
    struct Case {
        std::string fSet;
        std::string fDescription;
        HostString fAccession;
        std::string fNewSet;
        std::string fNewDescription;
        std::string fNewAccession;
    };
    const std::string native = kIsWindows ? "ISO_IR 100" : "ISO_IR 192";
    const Case cases[] = {
        {"ISO_IR 144", "\xB8\xD2", L"12", "ISO_IR 144", "\xB8\xD2", "12"},
        {"", "\x1B$B;3\x1B(B", L"12", "(absent)", "\x1B$B;3\x1B(B", "12"},
        {"ISO 2022 IR 100 ", "\xD6l", L"\xE4\xF6", "ISO 2022 IR 100 ", "\xD6l", "\xE4\xF6"},
        {"", "\xD6l", L"\xE4\xF6", "ISO_IR 100", "\xD6l", "\xE4\xF6"},
        {"ISO_IR 100", "\xD6l", L"\x65E5", "ISO_IR 192", "\xC3\x96l ", "\xE6\x97\xA5 "},
        {"ISO_IR 144", "\xB8\xD2", L"\xE4\xF6", native, kIsWindows ? "\xB8\xD2" : "\xC2\xB8\xC3\x92",
         kIsWindows ? "\xE4\xF6" : "\xC3\xA4\xC3\xB6"},
    };
    for (const Case& each : cases) {
        DirectoryBuilder media;
        const int patient = media.Add(DirectoryBuilder::kRoot, "PATIENT ");
        media.Keys(patient)
            .Text(Tags::kSpecificCharacterSet, Vr::kCS, each.fSet)
            .Text(Tags::kPatientName, Vr::kPN, each.fDescription)
            .Text(Tags::kPatientID, Vr::kLO, "12");
        const int study = media.Add(patient, "STUDY ");
        media.Keys(study)
            .Text(Tags::kSpecificCharacterSet, Vr::kCS, each.fSet)
            .Text(Tags::kStudyDescription, Vr::kLO, each.fDescription)
            .Text(Tags::kStudyInstanceUID, Vr::kUI, "1.2.3.1.7");
        media.AddInstance(media.AddSeries(study, 3), 4);
        fFolder.WriteFile("C/MORE/DICOMDIR", media.Build());
        fFolder.WriteFile("D/MORE/DICOMDIR", DirectoryBuilder().Build());
        Start();
        fSource = Open("C/MORE/DICOMDIR");
        Choose(0);
        fInfo.SetDestinationDirectory(Open("D/MORE/DICOMDIR"));
        fInfo.SetPatientName(VantorHost::PatientName(fSeries.GetDicomPatientName()));
        fInfo.SetPatientNumber(fSeries.GetPatientNumber());
        fInfo.SetStudyDescription(fSeries.GetStudyDescription());
        fInfo.SetAccessionNumber(each.fAccession);
        EXPECT_EQ(SaveAs(&fSeries), kSuccess);
        TDicomDirectory onDisk(TFileSpec(fFolder.PathOf("D/MORE/DICOMDIR")), 0);
        const TDicomDataSet& owner = *(*onDisk.GetPatientDocs()->begin())->GetDataSet();
        EXPECT_EQ(TextOf(owner, Tags::kSpecificCharacterSet), each.fSet.empty() ? "(absent)" : each.fSet);
        EXPECT_EQ(TextOf(owner, Tags::kPatientName), each.fDescription);
        const TDicomDataSet& record = *(*onDisk.GetStudyDocs()->begin())->GetDataSet();
        EXPECT_EQ(TextOf(record, Tags::kSpecificCharacterSet), each.fNewSet);
        EXPECT_EQ(TextOf(record, Tags::kStudyDescription), each.fNewDescription);
        EXPECT_EQ(TextOf(record, Tags::kAccessionNumber), each.fNewAccession);
    }
}

// ---- Progress ----

TEST_F(SeriesSaverTest, TellsHowFarItIs) {
    constexpr int32_t kStarting = 1, kRunning = 2, kStopping = 3;
    fOwned[0]->fFrames = 5;
    fOwned[0]->fPending = {5, 4, 4, 1, 0};
    const std::vector<Status> expected = {
        {2, 0, 0, 0, kStarting}, {2, 1, 0, 0, kRunning}, {2, 1, 5, 2, kRunning}, {2, 1, 5, 2, kRunning},
        {2, 1, 5, 5, kRunning},  {2, 2, 0, 0, kRunning}, {0, 0, 0, 0, kStopping}};
    EXPECT_EQ(SaveAs(&fSeries), kSuccess);
    EXPECT_EQ(fStatus, expected);
    fStatus.clear();
    fOwned[0]->fPolls = 0;
    EXPECT_EQ(Save(), kSuccess);
    EXPECT_EQ(fStatus, expected);
    EXPECT_EQ(fClock.fRests, std::vector<int32_t>(6, 250));
}

// Hosts rely on both limits: a control that stalls is left to itself, and its image passes for saved.
TEST_F(SeriesSaverTest, GoesOnWhenAControlStalls) {
    for (const auto& [isInPlace, polls] : {std::pair(true, 21U), std::pair(false, 201U)}) {
        Choose(0);
        fClock.fRests.clear();
        fOwned[0]->fPending = {3, 3, 2, 2};
        fOwned[0]->fLateResult = 5;
        EXPECT_EQ(isInPlace ? Save() : SaveAs(&fSeries), kSuccess);
        // The first look, one that finds no change, one that does, and those that end the wait.
        EXPECT_EQ(fOwned[0]->fPolls, 3 + polls);
        EXPECT_EQ(fClock.fRests.size(), 2 + polls);
        EXPECT_EQ(fOwned[1]->fPolls, 1U);
    }
    EXPECT_EQ(TreeOnDisk("D/DICOMDIR"), "P9(SS7(s8(i1 i2)))");
}

// ---- In place ----

TEST_F(SeriesSaverTest, SavesInPlace) {
    EXPECT_EQ(Save(), kSuccess);
    EXPECT_EQ(fOwned[1]->fTarget, fImages[1].GetImagePath());
    EXPECT_EQ(fOwned[1]->fNotes, "image=2;");
    EXPECT_EQ(fImages[1].GetImageNumber(), 2);
    EXPECT_EQ(TreeOnDisk("C/DICOMDIR"), "P1(S2(s3(i1 i2) s6(i7)))");
    EXPECT_FALSE(fSource->IsCurrent());

    fSaveInfo.SetAssignNewUIDsFlag(true);
    EXPECT_EQ(Save(), kSuccess);
    EXPECT_EQ(fOwned[0]->fNotes, "image=1;instance=1.2.3.2.3.6;image=1;");
    EXPECT_EQ(fImages[1].GetInstanceUID(), L"1.2.3.2.3.7");
    EXPECT_NE(fSource->GetUmImage(L"1.2.3.2.3.7"), nullptr);
}

// The record goes on saying what the file says.
TEST_F(SeriesSaverTest, AnImageThatCannotBeSavedKeepsItsRecord) {
    fSaveInfo.SetAssignNewUIDsFlag(true);
    TraceArea(VantorHost::TraceArea::kSave);
    fOwned[0]->fResult = 28;
    fOwned[0]->fInstanceUID = L"1.1";
    const HostString uid = fImages[0].GetInstanceUID();
    EXPECT_EQ(Save(), Fatal(ErrorNumber::SaveGeneralFailure));
    EXPECT_EQ(fTrace.Take(), Lines{"error: Call to DicomImage::SaveAs failed; error = 28"});
    EXPECT_EQ(fImages[0].GetInstanceUID(), uid);
    EXPECT_EQ(fOwned[0]->fInstanceUID, L"1.1") << "or it gives the next file the UID of another one";
    EXPECT_NE(fSource->GetUmImage(uid), nullptr);
    EXPECT_EQ(TreeOnDisk("C/DICOMDIR"), "P1(S2(s3(i4 i2) s6(i7)))");
    fOwned[0]->fResult = 0;
    EXPECT_EQ(Save(), Fatal(ErrorNumber::SaveGeneralFailure)) << "of the call before: hosts rely on it";
    EXPECT_EQ(TreeOnDisk("C/DICOMDIR"), "P1(S2(s3(i1 i2) s6(i7)))");
    EXPECT_EQ(SaveAs(&fSeries), kSuccess);
}

// A medium of a stranger may name any file of this computer.
TEST_F(SeriesSaverTest, NothingIsWrittenBesideTheMedium) {
    TraceArea(VantorHost::TraceArea::kSave);
    const std::string elsewhere = fFolder.WriteFile("D/SECRET", "kept");
    const std::filesystem::path links = fFolder.MakeFolder("C/LINKS");
    std::error_code isWithoutLinks;  // users of Windows may not make them
    std::filesystem::create_directory_symlink(fFolder.PathOf("D"), links / "OUT", isWithoutLinks);
    std::filesystem::create_symlink(elsewhere, links / "SECRET", isWithoutLinks);
    std::filesystem::create_directory_symlink(fFolder.PathOf("C/IMAGES"), links / "IN", isWithoutLinks);
    struct Case {
        const char* fPath;
        bool fIsWritten;
        bool fHasLink;
    };
    for (const auto& [path, isWritten, hasLink] :
         {Case{"C/IMAGES/4", true, false}, Case{"D/SECRET", false, false},
          Case{"C/IMAGES/../../D/SECRET", false, false}, Case{"C/LINKS/OUT/SECRET", false, true},
          Case{"C/LINKS/SECRET", false, true}, Case{"C/LINKS/IN/4", !kIsWindows, true}}) {
        if (hasLink && isWithoutLinks) continue;
        fSaver = SeriesSaver();
        fOwned[0]->fPath = Wide(fFolder.PathOf(path));
        fOwned[0]->fTarget.clear();
        EXPECT_EQ(Save(), isWritten ? kSuccess : Fatal(ErrorNumber::SaveGeneralFailure)) << path;
        EXPECT_EQ(!fOwned[0]->fTarget.empty(), isWritten) << path;
        EXPECT_EQ(fOwned[1]->fNotes, "image=2;") << "the others go on";
        fOwned[1]->fNotes.clear();
        const Lines refused = {"error: Image file is not in the folder of its directory"};
        EXPECT_EQ(fTrace.Take(), isWritten ? Lines() : refused) << path;
        EXPECT_EQ(ReadWholeFileAsText(elsewhere), "kept") << path;
    }
    if (isWithoutLinks) return;
    DirectoryBuilder exams;
    exams.Keys(exams.AddStudy(exams.AddPatient(1), 2)).Text(Tags::kExamCreator, Vr::kLO, "ANY");
    fFolder.WriteFile("D/EXAM/DICOMDIR", exams.Build());
    for (const char* images : {"D/IMAGESDC", "D/EXAM/EXAMS"}) {
        fDestination = Open(std::string(images).substr(0, std::string(images).rfind('/')) + "/DICOMDIR");
        fInfo.SetDestinationDirectory(fDestination);
        ASSERT_TRUE(std::filesystem::remove(fFolder.PathOf(Spelled(images)))) << images;
        std::filesystem::create_directory_symlink(fFolder.MakeFolder("C/PLACE"), fFolder.PathOf(images));
        EXPECT_EQ(SaveAs(nullptr), Fatal(ErrorNumber::SaveGeneralFailure)) << images;
        EXPECT_TRUE(std::filesystem::is_empty(fFolder.PathOf("C/PLACE"))) << images;
    }
    EXPECT_EQ(TreeOnDisk("D/DICOMDIR"), "");
}

// ---- What fails ----

TEST_F(SeriesSaverTest, SaysWhatIsWrongWithASaveInPlace) {
    const LuminaError internal{ErrorSeverity::InternalError, ErrorNumber::SaveGeneralFailure};
    struct Case {
        const char* fLine;
        LuminaError fError;
        std::function<LuminaError()> fSave;
        const char* fTree = "P1(S2(s3(i4 i5) s6(i7)))";
    };
    const SeriesDirRec nowhere;
    const Case cases[] = {
        {"Missing parameters in SaveSeries()", internal,
         [&] { return fSaver.SaveSeries(&fSaveInfo, nullptr, &fControls, &fSeries); }},
        {"Directory open for update failed", Fatal(ErrorNumber::SaveOpenForUpdateFailure),
         [&] { return fSaver.SaveSeries(&fSaveInfo, &fImages, &fControls, &nowhere); }},
        {"Missing image control", internal,
         [&] {
             fControls[0] = nullptr;
             return Save();
         },
         "P1(S2(s3(i4 i2) s6(i7)))"},
        {"Failed to find the unmanaged image object", Fatal(ErrorNumber::SaveGeneralFailure),
         [&] {
             fImages[0].SetInstanceUID(L"1.2");
             fSource->SyncWithDiskVersion();
             return Save();
         },
         "P1(S2(s3(i4 i2) s6(i7)))"},
        {"Exception thrown on Write or Update directory after Save, error = 102",
         Fatal(ErrorNumber::DirectoryWriteError),
         [&] {
             MakeUnwritable(*fSource);
             return Save();
         },
         "P1(S2(s3(i4 i2) s6(i7)))"},
    };
    TraceArea(VantorHost::TraceArea::kSave);
    for (const Case& each : cases) {
        Choose(0);
        fStatus.clear();
        EXPECT_EQ(each.fSave(), each.fError) << each.fLine;
        EXPECT_EQ(fTrace.Take(), Lines{std::string("error: ") + each.fLine});
        EXPECT_EQ(fStatus.back(), (Status{0, 0, 0, 0, 3})) << each.fLine;
        EXPECT_EQ(TreeOnDisk("C/DICOMDIR"), each.fTree) << each.fLine;
    }
}

TEST_F(SeriesSaverTest, SaysWhatIsWrongWithACopy) {
    const LuminaError internal{ErrorSeverity::InternalError, ErrorNumber::SaveGeneralFailure};
    const LuminaError general = Fatal(ErrorNumber::SaveGeneralFailure);
    struct Case {
        Lines fLines;
        LuminaError fError;
        std::function<void()> fArrange;
        const char* fTree = "";
    };
    // Too far down for the names of files.
    const std::string farAway = "D/" + std::string(130, 'X') + "/DICOMDIR";
    const Case cases[] = {
        {{"Missing parameters in SaveAsSeries()"}, internal, nullptr},
        {{"Could not retrieve destination directory."},
         internal,
         [&] { fInfo.SetDestinationDirectory(nullptr); }},
        {{"Directory open for update failed"},
         Fatal(ErrorNumber::SaveOpenForUpdateFailure),
         [&] { fDestination->Dispose(); }},
        {{"Failed to find unmanaged series object"}, general, [&] { fSeries = SeriesDirRec(); }},
        {{"Image file name generation failed", "Image file name generation failed"},
         Fatal(ErrorNumber::FileNamesAllUsed),
         [&] { fInfo.SetDestinationDirectory(Open(farAway)); }},
        {{"Call to DicomImage::SaveAs failed; error = 7"},
         general,
         [&] { fOwned[0]->fLateResult = 7; },
         "P9(SS7(s8(i2)))"},
        {{"Missing image control"}, internal, [&] { fControls.pop_back(); }, "P9(SS7(s8(i1)))"},
        {{"Exception thrown on Write or Update directory after Save As, error = 102"},
         Fatal(ErrorNumber::DirectoryWriteError),
         [&] { MakeUnwritable(*fDestination); }},
    };
    TraceArea(VantorHost::TraceArea::kSaveAs);
    for (const Case& each : cases) {
        fInfo.SetDestinationDirectory(nullptr);
        fDestination.reset();
        std::filesystem::remove_all(fFolder.PathOf("D"));
        for (const std::string& name : {std::string("D/DICOMDIR"), farAway}) {
            fFolder.WriteFile(name, DirectoryBuilder().Build());
        }
        Start();
        fSource = Open("C/DICOMDIR");
        fDestination = Open("D/DICOMDIR");
        fInfo.SetDestinationDirectory(fDestination);
        Choose(0);
        fStatus.clear();
        if (each.fArrange) each.fArrange();
        fTrace.Take();
        const LuminaError error = each.fArrange
                                      ? SaveAs(&fSeries)
                                      : fSaver.SaveAsSeries(&fInfo, &fImages, nullptr, &fSeries, fNewUID);
        EXPECT_EQ(error, each.fError) << each.fLines[0];
        Lines lines = fTrace.Take();
        for (std::string& line : lines) line.erase(0, std::string("error: ").size());
        EXPECT_EQ(lines, each.fLines);
        EXPECT_EQ(fStatus.back(), (Status{0, 0, 0, 0, 3})) << each.fLines[0];
        EXPECT_EQ(TreeOnDisk("D/DICOMDIR"), each.fTree) << each.fLines[0];
    }
}

// What a control throws passes; the images before it are saved and entered. The record of an image whose
// control had begun to write goes with what is being written, whoever throws then.
TEST_F(SeriesSaverTest, WhatAControlThrowsPasses) {
    fOwned[1]->fAtSave = [] { throw std::runtime_error("no memory for the pixels"); };
    EXPECT_THROW(SaveAs(&fSeries), std::runtime_error);
    EXPECT_EQ(TreeOnDisk("D/DICOMDIR"), "P9(SS7(s8(i1)))");
    EXPECT_FALSE(fDestination->GetUmDirectory()->IsOpen());
    EXPECT_EQ(FilesOfCopies(), 1U);
    fSaveInfo.SetAssignNewUIDsFlag(true);
    const HostString uid = fImages[1].GetInstanceUID();
    EXPECT_THROW(Save(), std::runtime_error);
    EXPECT_EQ(TreeOnDisk("C/DICOMDIR"), "P1(S2(s3(i1 i5) s6(i7)))");
    EXPECT_EQ(fImages[1].GetInstanceUID(), uid);
    EXPECT_NE(fSource->GetUmImage(uid), nullptr);
    fOwned[1]->fAtSave = nullptr;
    fSaver.eSaveAsStatus.Subscribe([](const SaveAsEventArgs& status) {
        if (status.GetCurrentImage() == 2) throw std::runtime_error("no window");
    });
    EXPECT_THROW(Save(), std::runtime_error);
    EXPECT_EQ(TreeOnDisk("C/DICOMDIR"), "P1(S2(s3(i1 i2) s6(i7)))");
    EXPECT_NE(fImages[1].GetInstanceUID(), uid);
    // A copy that is complete then, but has no record.
    fOwned[1]->fPending = {2, 2, 1, 0};
    fOwned[1]->fPolls = 0;
    EXPECT_THROW(SaveAs(&fSeries), std::runtime_error);
    EXPECT_EQ(fOwned[1]->fPolls, 4U) << "it is waited for";
    EXPECT_EQ(FilesOfCopies(), 2U) << "one of each copy";
}

// A subscriber may do away with everything.
TEST_F(SeriesSaverTest, SurvivesItsDirectories) {
    fOwned[0]->fAtSave = [this] {
        fSource->SyncWithDiskVersion();
        fDestination->SyncWithDiskVersion();
    };
    SaveAs(&fSeries);
    fOwned[0]->fAtSave = [this] {
        fInfo.SetDestinationDirectory(nullptr);
        fDestination->Dispose();
        fDestination.reset();
    };
    EXPECT_FALSE(SaveAs(&fSeries).IsSuccess());
    EXPECT_EQ(FilesOfCopies(), 0U) << "none without a record";
    fOwned[0]->fAtSave = [this] {
        fSource->Dispose();
        fSource.reset();
    };
    EXPECT_FALSE(Save().IsSuccess());
}

// Nor may the answer to a question be the last thing that the directory hears.
TEST_F(SeriesSaverTest, SurvivesItsDirectoriesAtEachQuestion) {
    DirectoryBuilder exams;
    const int study = exams.AddStudy(exams.AddPatient(1), 2);
    exams.Keys(study).Text(Tags::kExamCreator, Vr::kLO, "ANY");
    const std::string layouts[] = {"D/DICOMDIR", "D/EXAM/DICOMDIR"};
    for (const std::string& layout : layouts) {
        for (const bool isInPlace : {false, true}) {
            for (int last = 1; last <= 5; ++last) {
                fFolder.WriteFile("D/EXAM/DICOMDIR", exams.Build());
                WriteMedium("C", {1});
                Start();
                fSource = Open("C/DICOMDIR");
                Choose(0);
                fSaver = SeriesSaver();
                fDestination = Open(layout);
                fInfo.SetDestinationDirectory(fDestination);
                int questions = 0;
                fOwned[0]->fAtQuestion = [&] {
                    if (++questions == last) (isInPlace ? fSource : fDestination)->Dispose();
                };
                const LuminaError error = isInPlace ? Save() : SaveAs(&fSeries);
                EXPECT_EQ(error.IsSuccess(), questions < last) << last;
            }
        }
    }
    EXPECT_EQ(FilesOfCopies(), 4U) << "of those that nobody disturbed";
}

// A host that closes the window in between.
TEST_F(SeriesSaverTest, SurvivesTheLists) {
    fSaveInfo.SetAssignNewUIDsFlag(true);
    for (const bool isInPlace : {false, true}) {
        Choose(0);
        fOwned[0]->fLateResult = 5;  // the record is put right
        fOwned[0]->fAtSave = [this] {
            std::vector<ImageDirRec>().swap(fImages);
            fControls.clear();
        };
        EXPECT_FALSE((isInPlace ? Save() : SaveAs(&fSeries)).IsSuccess());
    }
    EXPECT_EQ(TreeOnDisk("C/DICOMDIR"), "P1(S2(s3(i4 i5) s6(i7)))");
}

}  // namespace
