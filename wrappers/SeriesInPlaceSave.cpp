#include "wrappers/SeriesInPlaceSave.h"

#include <string>

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
        if (control != nullptr) SaveImage(saveInfo, images[i], *control, i, images.size());
    }
}

// The record says what the file says, also when that could not be written.
void SeriesInPlaceSave::SaveImage(const SaveInfo& saveInfo, ImageDirRec& image, AxDicomImage& control,
                                  size_t index, size_t count) {
    const HostString oldUID = image.GetInstanceUID();
    const int32_t oldNumber = image.GetImageNumber();
    const auto number = static_cast<int32_t>(index) + 1;
    control.SetSCPathName(control.GetPathName());
    if (saveInfo.GetAssignNewUIDsFlag() && !AssignNewUID(image, control)) return;
    control.SetImageNumber(number);
    image.SetImageNumber(number);
    if (Write(control, index, count)) return;
    image.SetImageNumber(oldNumber);
    if (saveInfo.GetAssignNewUIDsFlag()) image.SetInstanceUID(oldUID);
}

bool SeriesInPlaceSave::AssignNewUID(ImageDirRec& image, AxDicomImage& control) {
    Vantor::TImageDoc* const doc = image.GetDicomDirectory()->GetUmImage(image.GetInstanceUID());
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
