#include "wrappers/SeriesInPlaceSave.h"

#include <string>

#include "directory/TDicomDirectory.h"
#include "platform/CodePage.h"
#include "records/TImageDoc.h"
#include "records/TSeriesDoc.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/NativeText.h"

namespace VantorWrappers {

using VantorHost::AxDicomImage;

namespace {

// About five seconds without progress.
constexpr int32_t kStallLimit = 20;

}  // namespace

SeriesInPlaceSave::SeriesInPlaceSave(const SeriesSaver& saver, LuminaError& result)
    : SeriesSave(saver, result, VantorHost::TraceArea::kSave, kStallLimit) {}

void SeriesInPlaceSave::Run(const SaveInfo* saveInfo, std::vector<ImageDirRec>* images,
                            const ImageControls* controls, const SeriesDirRec* series) {
    if (saveInfo == nullptr || images == nullptr || controls == nullptr || series == nullptr) {
        Fail(ErrorSeverity::InternalError, ErrorNumber::SaveGeneralFailure,
             "Missing parameters in SaveSeries()");
    } else {
        SendStatus(static_cast<int32_t>(images->size()), 0, 0, 0, SaveAsState::Starting);
        DicomDirectory* const directory = series->GetDicomDirectory();
        if (directory == nullptr || !directory->OpenForUpdating()) {
            Fail(ErrorSeverity::Fatal, ErrorNumber::SaveOpenForUpdateFailure,
                 "Directory open for update failed");
        } else {
            const auto kept = directory->weak_from_this().lock();  // a subscriber may let go of it
            // What a control or a subscriber throws must not part the records from the files that are
            // written.
            try {
                SaveImages(*saveInfo, *images, *controls);
            } catch (...) {
                if (series->GetDicomDirectory() != nullptr) WriteDirectory(*directory, "Save");
                throw;
            }
            if (series->GetDicomDirectory() != nullptr) WriteDirectory(*directory, "Save");
        }
    }
    SendStatus(0, 0, 0, 0, SaveAsState::Stopping);
}

void SeriesInPlaceSave::SaveImages(const SaveInfo& saveInfo, Images& images, const ImageControls& controls) {
    for (size_t i = 0; i < images.size(); ++i) {
        if (FindImage(images[i]) == nullptr) continue;
        AxDicomImage* const control = FindControl(controls, i);
        if (control != nullptr) SaveImage(saveInfo, images, *control, i);
    }
}

// The record says what the file says, also when that could not be written; and so does the control, which
// would give another file the UID of this image otherwise. The list is the host's, who may have cleared it
// when a control or a subscriber comes back.
void SeriesInPlaceSave::SaveImage(const SaveInfo& saveInfo, Images& images, AxDicomImage& control,
                                  size_t index) {
    ImageDirRec image = images[index];
    const size_t count = images.size();
    const auto show = [&] {
        if (index < images.size()) images[index] = image;
    };
    const Identity old{image.GetInstanceUID(), image.GetImageNumber(), control.GetInstanceUID()};
    const bool hasNewUID = saveInfo.GetAssignNewUIDsFlag();
    const auto number = static_cast<int32_t>(index) + 1;
    try {
        if (!TellWhere(image, control)) return;
        if (hasNewUID && !AssignNewUID(image, control)) return;
        control.SetImageNumber(number);
        image.SetImageNumber(number);
        show();
        if (!Write(control, index, count)) Restore(old, hasNewUID, image, control);
        show();
    } catch (...) {
        // What is being written comes to its end without whoever has thrown.
        if (!IsUnderWay()) RestoreQuietly(old, hasNewUID, image, control);
        show();
        throw;
    }
}

// A record of a stranger's medium may name any file.
bool SeriesInPlaceSave::TellWhere(const ImageDirRec& image, AxDicomImage& control) {
    const HostString path = control.GetPathName();
    DicomDirectory* const directory = image.GetDicomDirectory();
    Vantor::TDicomDirectory* const native = directory == nullptr ? nullptr : directory->GetUmDirectory();
    if (!MayBeWritten(native, Vantor::Platform::FromHostText(path))) return false;
    control.SetSCPathName(path);
    return true;
}

void SeriesInPlaceSave::Restore(const Identity& old, bool hadNewUID, ImageDirRec& image,
                                AxDicomImage& control) {
    image.SetImageNumber(old.fNumber);
    if (hadNewUID) image.SetInstanceUID(old.fInstanceUID);
    if (hadNewUID) control.SetInstanceUID(old.fInstanceUIDOfControl);
    control.SetImageNumber(old.fNumber);
}

// The control may throw again: what it threw first counts.
void SeriesInPlaceSave::RestoreQuietly(const Identity& old, bool hadNewUID, ImageDirRec& image,
                                       AxDicomImage& control) {
    try {
        Restore(old, hadNewUID, image, control);
    } catch (...) {
        return;
    }
}

bool SeriesInPlaceSave::AssignNewUID(ImageDirRec& image, AxDicomImage& control) {
    DicomDirectory* const directory = image.GetDicomDirectory();
    Vantor::TImageDoc* const doc =
        directory == nullptr ? nullptr : directory->GetUmImage(image.GetInstanceUID());
    auto* const series = dynamic_cast<Vantor::TSeriesDoc*>(doc == nullptr ? nullptr : doc->GetParentObj());
    if (series == nullptr) {
        Fail(ErrorSeverity::Fatal, ErrorNumber::SaveGeneralFailure, "UID generation failed");
        return false;
    }
    const HostString uid = ReadBytes(MakeImageUID(*series));
    image.SetInstanceUID(uid);
    control.SetInstanceUID(uid);
    return true;
}

}  // namespace VantorWrappers
