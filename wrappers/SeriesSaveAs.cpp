#include "wrappers/SeriesSaveAs.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <string_view>

#include "dicom/Attempt.h"
#include "dicom/TException.h"
#include "dicom/TImageFile.h"
#include "directory/TDicomDirectory.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"
#include "records/TDicomUtils.h"
#include "records/TPatientDoc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/DirectoryUpdate.h"
#include "wrappers/NativeText.h"
#include "wrappers/RecordTexts.h"

namespace VantorWrappers {

using namespace Vantor;
using Platform::FromHostText;
using Platform::PathStyle;
using Platform::ToHostText;
using VantorHost::AxDicomImage;
using VantorHost::TraceLevel;

namespace {

// About fifty seconds without progress.
constexpr int32_t kStallLimit = 200;

constexpr wchar_t kModalityOfOthers[] = L"SC";

// What de-identification takes out: who the patient is; and the names of physicians as well.
constexpr int32_t kPatientLevel = 1;
constexpr int32_t kPhysiciansLevel = 2;

constexpr int32_t kUnknownError = -1;

// A text as a record holds it.
std::string Native(const HostString& text) {
    std::string bytes = FromHostText(text);
    bytes.resize(std::min(bytes.find('\0'), bytes.size()));
    bytes.resize(Platform::CutPosition(bytes, TDicomDoc::kLongestText));
    return bytes;
}

std::string Format(const char* format, int first, int second, int third = 0) {
    char text[40];
    std::snprintf(text, sizeof(text), format, first, second, third);
    return text;
}

const TDicomDoc* FindAbove(const TDicomDoc* doc) { return doc == nullptr ? nullptr : doc->GetParentObj(); }

std::string ReadUidOf(const TStudyDoc& study) {
    TUidText uid;
    study.GetStudyUID(uid.fText, sizeof(uid.fText));
    return uid.fText;
}

std::string ReadRecordText(const TDicomDoc& doc, Tag tag) {
    char text[TDicomDoc::kLongestText + 1] = {};
    doc.ViewRecord().GetText(tag, text, sizeof(text));
    return text;
}

// A file that a control writes under a name that was free. Goes away unless it is kept.
class NewFile {
  public:
    explicit NewFile(const std::string& path) : fPath(path) {}
    ~NewFile() {
        if (!fIsKept) Succeeds([this] { Platform::RemoveFile(fPath); });
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    void Keep() { fIsKept = true; }

  private:
    const std::string& fPath;
    bool fIsKept = false;
};

// Lends a document a parent that it does not keep.
class BorrowedParent {
  public:
    BorrowedParent(TDicomDoc& doc, TDicomDoc& parent) : fDoc(doc) { doc.SetParentObj(&parent); }
    ~BorrowedParent() { fDoc.LeaveParent(); }
    BorrowedParent(const BorrowedParent&) = delete;
    BorrowedParent& operator=(const BorrowedParent&) = delete;

  private:
    TDicomDoc& fDoc;
};

}  // namespace

SeriesSaveAs::SeriesSaveAs(const SeriesSaver& saver, LuminaError& result, HostString& newSeriesUID)
    : SeriesSave(saver, result, VantorHost::TraceArea::kSaveAs, kStallLimit), fNewSeriesUID(newSeriesUID) {}

void SeriesSaveAs::Run(const SaveAsInfo* saveAsInfo, Images* images, const ImageControls* controls,
                       const SeriesDirRec* series) {
    fNewSeriesUID.clear();
    const HostString number = saveAsInfo == nullptr ? HostString() : saveAsInfo->GetPatientNumber();
    Trace(TraceLevel::kInfo, "Save As starting for Patient ID = " + FromHostText(number));
    if (saveAsInfo == nullptr || images == nullptr || controls == nullptr) {
        FailGeneral(ErrorSeverity::InternalError, "Missing parameters in SaveAsSeries()");
    } else {
        SendStatus(static_cast<int32_t>(images->size()), 0, 0, 0, SaveAsState::Starting);
        fInfo = saveAsInfo;
        const std::shared_ptr<DicomDirectory> destination = saveAsInfo->GetDestinationDirectory();
        if (destination == nullptr) {
            FailGeneral(ErrorSeverity::InternalError, "Could not retrieve destination directory.");
        } else if (!destination->OpenForUpdating()) {
            Fail(ErrorSeverity::Fatal, ErrorNumber::SaveOpenForUpdateFailure,
                 "Directory open for update failed");
        } else {
            SaveInto(*destination, *images, *controls, series);
        }
    }
    SendStatus(0, 0, 0, 0, SaveAsState::Stopping);
}

// What a control or a subscriber throws must not leave files behind that no record names.
void SeriesSaveAs::SaveInto(DicomDirectory& destination, const Images& images, const ImageControls& controls,
                            const SeriesDirRec* series) {
    const auto finish = [&] {
        RemoveEmptyPlace();
        WriteDirectory(destination, "Save As");
    };
    fDestination = &destination;
    fPatientName = fInfo->GetPatientName().GetDicomPatientName();
    if (TrimTrailingCarets()) fPatientName.erase(fPatientName.find_last_not_of(L'^') + 1);
    try {
        if (MakePlace(series)) SaveImages(images, controls);
    } catch (...) {
        finish();
        throw;
    }
    finish();
}

void SeriesSaveAs::FailGeneral(ErrorSeverity severity, const std::string& line) {
    Fail(severity, ErrorNumber::SaveGeneralFailure, line);
}

template <typename Doc>
Doc* SeriesSaveAs::Require(const char* complaint, const Finder& find) {
    int32_t error = 0;
    TDicomDoc* doc = nullptr;
    try {
        doc = find(error);
    } catch (TException* thrown) {
        error = std::unique_ptr<TException>(thrown)->GetErrorNumber();
        doc = nullptr;
    } catch (const std::exception&) {
        error = kUnknownError;
    }
    if (doc != nullptr && error == 0) return static_cast<Doc*>(doc);
    FailGeneral(ErrorSeverity::Fatal, complaint + std::to_string(error));
    return nullptr;
}

TDicomDirectory* SeriesSaveAs::FindDirectory() const { return fDestination->GetUmDirectory(); }

TSeriesDoc* SeriesSaveAs::FindSeries() const {
    TDicomDirectory* const directory = FindDirectory();
    return directory == nullptr || fNewSeriesUID.empty() ? nullptr
                                                         : directory->FindSeries(FromHostText(fNewSeriesUID));
}

TSeriesDoc* SeriesSaveAs::FindSource(const SeriesDirRec* series) {
    DicomDirectory* const directory = series == nullptr ? nullptr : series->GetDicomDirectory();
    return directory == nullptr ? nullptr : directory->GetUmSeries(series->GetSeriesUID());
}

// ---- The records above the images ----

bool SeriesSaveAs::MakePlace(const SeriesDirRec* series) {
    if (FindDirectory() == nullptr) {
        FailGeneral(ErrorSeverity::InternalError, "Failed to locate unmanaged destination directory object");
        return false;
    }
    fDestination->ForceRefresh();
    TPatientDoc* const patient = MakePatient(FindSource(series));
    if (patient == nullptr) return false;
    const bool isNewStudy = fInfo->GetNewStudyFlag() || series == nullptr;
    TStudyDoc* const study =
        isNewStudy ? MakeNewStudy(*patient, FindSource(series)) : JoinStudy(*patient, FindSource(series));
    const bool isMade = study != nullptr && MakeSeries(*study, series) != nullptr;
    // A study that is there already keeps its patient.
    RemoveEmptyDocs(*FindDirectory(), patient, false);
    return isMade;
}

TPatientDoc* SeriesSaveAs::MakePatient(const TSeriesDoc* source) {
    std::unique_ptr<TPatientDoc> patient;
    const bool isMade = Succeeds([&] {
        patient = std::make_unique<TPatientDoc>(nullptr, nullptr);
        RecordTexts texts(FindAbove(FindAbove(source)));
        texts.Add(Tags::kPatientName, Vr::kPN, fPatientName);
        texts.Add(Tags::kPatientID, Vr::kLO, fInfo->GetPatientNumber());
        texts.PutInto(*patient);
    });
    if (!isMade) {
        FailGeneral(ErrorSeverity::InternalError, "Failed to create new unmanaged patient object");
        return nullptr;
    }
    return Require<TPatientDoc>(
        "Failed to find/create unmanaged patient object in directory; error = ",
        [&](int32_t& error) { return FindDirectory()->FindOrCreateDoc(patient.get(), error); });
}

// Two studies may be made within the second that a study UID tells: the last component of the next one gets
// longer, as another component would make it that of a series.
std::string SeriesSaveAs::MakeStudyUID() const {
    const std::string base = TDicomUtils().CreateNewStudyUID({});
    std::string uid = base;
    for (int next = 1; FindDirectory()->FindStudy(uid) != nullptr; ++next) {
        uid = base + std::to_string(next);
    }
    return uid;
}

void SeriesSaveAs::FillStudy(TStudyDoc& study, const TSeriesDoc* source) const {
    RecordTexts texts(FindAbove(source));
    // A study without study ID is given one when it is written.
    const HostString studyID = fInfo->GetStudyID().value_or(HostString());
    if (!studyID.empty()) texts.Add(Tags::kStudyID, Vr::kSH, studyID);
    texts.Add(Tags::kStudyDescription, Vr::kLO, fInfo->GetStudyDescription());
    texts.Add(Tags::kAccessionNumber, Vr::kSH, fInfo->GetAccessionNumber());
    texts.PutInto(study);
}

TStudyDoc* SeriesSaveAs::MakeNewStudy(TPatientDoc& patient, const TSeriesDoc* source) {
    std::unique_ptr<TStudyDoc> study;
    const bool isMade = Succeeds([&] {
        const auto now = Platform::Clock::Current().GetLocalTime().value_or(Platform::LocalTime());
        study = std::make_unique<TStudyDoc>(nullptr, nullptr);
        FillStudy(*study, source);
        study->SetStudyDate(Format("%04d%02d%02d", now.fYear, now.fMonth, now.fDay).c_str());
        study->SetStudyTime(Format("%02d%02d", now.fHour, now.fMinute).c_str());
        fStudyUID = MakeStudyUID();
        study->SetStudyUID(fStudyUID.c_str());
    });
    if (!isMade) {
        FailGeneral(ErrorSeverity::InternalError, "Failed to create unmanaged study object");
        return nullptr;
    }
    return Require<TStudyDoc>(
        "Failed to insert study into patient record; error = ", [&](int32_t& error) -> TDicomDoc* {
            if (!patient.AddChild(study.get(), nullptr, true, error)) return nullptr;
            return FindDirectory()->FindDoc(study.get());
        });
}

TStudyDoc* SeriesSaveAs::JoinStudy(TPatientDoc& patient, const TSeriesDoc* source) {
    if (source == nullptr) {
        FailGeneral(ErrorSeverity::Fatal, "Failed to find unmanaged series object");
        return nullptr;
    }
    const TStudyDoc* const sourceStudy = source->GetStudy();
    if (sourceStudy == nullptr) {
        FailGeneral(ErrorSeverity::InternalError, "Failed to find unmanaged study object");
        return nullptr;
    }
    fStudyUID = ReadUidOf(*sourceStudy);
    if (fStudyUID.empty()) fStudyUID = MakeStudyUID();
    return Require<TStudyDoc>("Failed to find the study in directory; error = ", [&](int32_t& error) {
        TStudyDoc study(nullptr, nullptr);
        FillStudy(study, source);
        study.SetStudyDate(ReadRecordText(*sourceStudy, Tags::kStudyDate).c_str());
        study.SetStudyTime(ReadRecordText(*sourceStudy, Tags::kStudyTime).c_str());
        study.SetStudyUID(fStudyUID.c_str());
        const BorrowedParent borrowed(study, patient);
        return FindDirectory()->FindOrCreateDoc(&study, error);
    });
}

// Where a study is continued on another medium, the next UID there may be that of the very series that is
// copied, or of one beside it: then the next one that both are without.
std::string SeriesSaveAs::MakeSeriesUID(TStudyDoc& study, const SeriesDirRec* source) const {
    const TDicomUtils utils;
    const std::string uid = utils.CreateNewSeriesUID(study);
    DicomDirectory* const directory = source == nullptr ? nullptr : source->GetDicomDirectory();
    const auto isTaken = [&](const std::string& candidate) {
        return directory != nullptr && directory->IsSeriesInDirectory(ToHostText(candidate));
    };
    std::string next = uid;
    for (int32_t component = utils.GetLastComponent(uid); isTaken(next);) {
        next = uid.substr(0, uid.rfind('.') + 1) + std::to_string(++component);
    }
    return next;
}

TSeriesDoc* SeriesSaveAs::MakeSeries(TStudyDoc& study, const SeriesDirRec* source) {
    const HostString modality = source == nullptr ? kModalityOfOthers : source->GetModality();
    std::unique_ptr<TSeriesDoc> series;
    const bool isMade = Succeeds([&] {
        series = std::make_unique<TSeriesDoc>(nullptr, nullptr);
        const std::string uid = MakeSeriesUID(study, source);
        series->SetSeriesUID(uid.c_str());
        series->SetModality(Native(modality).c_str());
        // A series without number is given one when it is written.
        const std::string number = Native(fInfo->GetSeriesNumber());
        if (!number.empty()) series->SetSeriesNumber(number.c_str());
        RecordTexts texts(FindSource(source));
        texts.Add(Tags::kSeriesDescription, Vr::kLO, fInfo->GetSeriesDescription());
        texts.PutInto(*series);
        fNewSeriesUID = ToHostText(uid);
    });
    if (!isMade) {
        FailGeneral(ErrorSeverity::InternalError, "Failed to create a new unmanaged series object");
        return nullptr;
    }
    const auto* const inserted =
        Require<TSeriesDoc>("Failed to insert series into study record; error = ", [&](int32_t& error) {
            return study.AddChild(series.get(), nullptr, true, error) ? series.get() : nullptr;
        });
    if (inserted == nullptr) return nullptr;
    return Require<TSeriesDoc>(
        "Failed to create a new unmanaged series object; error = ",
        [&](int32_t& error) { return FindDirectory()->FindOrCreateDoc(series.get(), error); });
}

// A series none of whose images could be saved, and what was made for it.
void SeriesSaveAs::RemoveEmptyPlace() {
    if (TSeriesDoc* const series = FindSeries()) RemoveEmptyDocs(*FindDirectory(), series, fHasMadeFolder);
}

// ---- The images ----

void SeriesSaveAs::SaveImages(const Images& images, const ImageControls& controls) {
    for (size_t i = 0; i < images.size(); ++i) {
        if (FindImage(images[i]) == nullptr) continue;
        AxDicomImage* const control = FindControl(controls, i);
        if (control != nullptr) SaveImage(*control, i, images.size());
    }
}

void SeriesSaveAs::SaveImage(AxDicomImage& control, size_t index, size_t count) {
    const auto number = static_cast<int32_t>(index) + 1;
    TSeriesDoc* const series = FindSeries();
    std::unique_ptr<TImageDoc> image;
    std::string uid;
    const bool isMade =
        series != nullptr && Succeeds([&] {
            image = std::make_unique<TImageDoc>(nullptr, nullptr, FindDirectory()->GetImageSetting());
            uid = MakeImageUID(*series);
            image->SetSOPInstanceUID(uid.c_str());
            image->SetImageNumber(number);
        });
    if (!isMade) {
        return FailGeneral(ErrorSeverity::InternalError, "Failed to create a new unmanaged image object");
    }
    const std::string path = MakeFileName(control);
    if (path.empty()) {
        return Fail(ErrorSeverity::Fatal, ErrorNumber::FileNamesAllUsed, "Image file name generation failed");
    }
    if (!MayBeWritten(FindDirectory(), path)) return;
    control.SetSCPathName(ToHostText(path));
    control.SetInstanceUID(ToHostText(uid));
    Prepare(control);
    control.SetImageNumber(number);
    NewFile file(path);
    try {
        if (WriteAndEnter(*image, control, index, count, path)) file.Keep();
    } catch (...) {
        // What is being written would have no record: it is removed once it is there.
        if (IsUnderWay()) WaitQuietly(control);
        throw;
    }
}

bool SeriesSaveAs::WriteAndEnter(TImageDoc& image, AxDicomImage& control, size_t index, size_t count,
                                 const std::string& path) {
    return Write(control, index, count) && Enter(image, control, path);
}

// Empty when there is none. The control is asked first: it may do away with the directory.
std::string SeriesSaveAs::MakeFileName(const AxDicomImage& control) {
    char path[TFileSpec::kPathSize] = {};
    int32_t length = 0;
    Succeeds([&] {
        const std::string source = FromHostText(control.GetPathName());
        const std::string name(PathStyle::OfPlatform().LastPart(source));
        const std::string classUID = FromHostText(control.GetClassUID());
        TDicomDirectory* const directory = FindDirectory();
        if (directory == nullptr) return;
        directory->MakeImageFileName(path, length, FindSubFolder(*directory).c_str(), classUID.c_str(),
                                     name.c_str());
    });
    return length > 0 ? std::string(path) : std::string();
}

// False when the folder in which those of the studies are is a link elsewhere.
bool SeriesSaveAs::MayHaveFolders(TDicomDirectory& directory) {
    char path[TFileSpec::kPathSize] = {};
    int32_t length = 0;
    directory.MakeImageFileName(path, length, "", "", "");
    return directory.GetFilePlaces()->MayBeWritten(TFileSpec(path));
}

// In an exam layout each study has a folder.
std::string SeriesSaveAs::FindSubFolder(TDicomDirectory& directory) {
    constexpr char kSeparator = '\\';
    if (directory.GetDirectoryType() != TRecordDirectory::kExamLayout) return {};
    const TSeriesDoc* const series = FindSeries();
    TStudyDoc* const study = series == nullptr ? nullptr : series->GetStudy();
    if (study == nullptr) return {};
    char name[TDicomDoc::kFolderNameSize] = {};
    study->GetFolderName(name);
    if (name[0] == '\0') {
        constexpr int32_t kReserved = 0;
        if (!MayHaveFolders(directory)) return {};
        directory.CreateExamFolders(name, sizeof(name), kReserved, study);
        fHasMadeFolder = true;
    }
    return std::string(name) + kSeparator;
}

// De-identification leaves alone what is set, before and after it.
void SeriesSaveAs::Prepare(AxDicomImage& control) const {
    if (!fPatientName.empty()) control.SetPatientName(fPatientName);
    if (!fInfo->GetPatientNumber().empty()) control.SetPatientID(fInfo->GetPatientNumber());
    if (fInfo->GetMakeAnonymousFlag()) {
        control.DeIdentifyImage(fInfo->GetErasePhysicianNamesFlag() ? kPhysiciansLevel : kPatientLevel);
    }
    control.SetSeriesNumber(fInfo->GetSeriesNumber());
    control.SetSeriesName(fInfo->GetSeriesDescription());
    control.SetStudyName(fInfo->GetStudyDescription());
    control.SetAccessionNumber(fInfo->GetAccessionNumber());
    control.SetSeriesUID(fNewSeriesUID);
    control.SetStudyUID(ToHostText(fStudyUID));
    control.SetStudyID(fInfo->GetStudyID().value_or(HostString()));
}

// False when the image could not be entered, which is noted. The control is asked first here as well.
bool SeriesSaveAs::Enter(TImageDoc& image, const AxDicomImage& control, const std::string& path) {
    const std::string instanceUID = FromHostText(control.GetInstanceUID());
    const std::string classUID = FromHostText(control.GetClassUID());
    TDicomDirectory* const directory = FindDirectory();
    TSeriesDoc* const series = FindSeries();
    const bool isAttached =
        series != nullptr && Succeeds([&] {
            const auto makeFile = [&] {
                auto file = std::make_unique<TImageFile>(0, TFileSpec(path), directory->GetImageSetting());
                file->SetSOPInstanceUID(instanceUID.c_str());
                file->SetSOPClassUID(classUID.c_str());
                return file;
            };
            image.SetSOPInstanceUID(instanceUID.c_str());
            image.SetSOPClassUID(classUID.c_str());
            image.SetDicomFile(makeFile());
            // The record in the directory is a copy of this one, and takes the file from there.
            directory->RegisterDicomFile(makeFile());
        });
    if (!isAttached) {
        FailGeneral(ErrorSeverity::Fatal, "Failed to create a new unmanaged file object");
        return false;
    }
    const auto* const inserted = Require<TImageDoc>(
        "Failed to insert image into series record; error = ",
        [&](int32_t& error) { return series->AddChild(&image, nullptr, true, error) ? &image : nullptr; });
    if (inserted == nullptr) return false;
    const auto* const entered =
        Require<TImageDoc>("Failed to find/create image in the directory; error = ",
                           [&](int32_t& error) { return directory->FindOrCreateDoc(&image, error); });
    return entered != nullptr;
}

}  // namespace VantorWrappers
