#include "wrappers/SeriesSave.h"

#include <algorithm>
#include <chrono>
#include <memory>

#include "dicom/TException.h"
#include "directory/TDicomDirectory.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "records/TDicomUtils.h"
#include "records/TSeriesDoc.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/DirectoryUpdate.h"

namespace VantorWrappers {

using Vantor::TException;
using VantorHost::AxDicomImage;
using VantorHost::TraceLevel;

namespace {

// How long a control is left alone before it is asked again.
constexpr std::chrono::milliseconds kRest(250);

}  // namespace

SeriesSave::SeriesSave(const SeriesSaver& saver, LuminaError& result, VantorHost::TraceArea area,
                       int32_t stallLimit)
    : fSaver(saver), fResult(result), fArea(area), fStallLimit(stallLimit) {}

void SeriesSave::Trace(TraceLevel level, std::string_view line) const {
    VantorHost::Trace::Write(fArea, level, line);
}

void SeriesSave::Fail(ErrorSeverity severity, ErrorNumber number, const std::string& line) {
    fResult = LuminaError(severity, number);
    Trace(TraceLevel::kError, line);
}

void SeriesSave::SendStatus(int32_t images, int32_t image, int32_t frames, int32_t frame,
                            SaveAsState state) const {
    fSaver.SendSaveAsStatus(SaveAsEventArgs(images, image, frames, frame, state));
}

Vantor::TImageDoc* SeriesSave::FindImage(const ImageDirRec& image) {
    const HostString& uid = image.GetInstanceUID();
    Trace(TraceLevel::kVerbose, "Saving image for instace UID = " + Vantor::Platform::FromHostText(uid));
    DicomDirectory* const directory = image.GetDicomDirectory();
    Vantor::TImageDoc* const doc = directory == nullptr ? nullptr : directory->GetUmImage(uid);
    if (doc == nullptr) {
        Fail(ErrorSeverity::Fatal, ErrorNumber::SaveGeneralFailure,
             "Failed to find the unmanaged image object");
    }
    return doc;
}

AxDicomImage* SeriesSave::FindControl(const ImageControls& controls, size_t index) {
    AxDicomImage* const control = index < controls.size() ? controls[index] : nullptr;
    if (control == nullptr) {
        Fail(ErrorSeverity::InternalError, ErrorNumber::SaveGeneralFailure, "Missing image control");
    }
    return control;
}

// A long series is not gone through again for each of its images, unless somebody else adds to it as well.
std::string SeriesSave::MakeImageUID(Vantor::TSeriesDoc& series) {
    const Vantor::TDicomUtils utils;
    const int32_t count = series.GetImageDocs()->GetCount();
    const bool isKnown = &series == fNumbered && (count == fImageCount || count == fImageCount + 1);
    if (!isKnown) fLastComponent = utils.GetLastImageComponent(series);
    std::string uid = utils.CreateImageUIDAfter(fLastComponent, series);
    fNumbered = &series;
    fImageCount = count;
    fLastComponent = std::max(fLastComponent, utils.GetLastComponent(uid));
    return uid;
}

// ---- Writing an image ----

bool SeriesSave::Write(AxDicomImage& control, size_t index, size_t count) {
    const int32_t frames = control.GetNumberOfFrames();
    int32_t error = control.SaveAs();
    fIsUnderWay = error == 0;
    const bool isComplete =
        error == 0 && Wait(control, frames, static_cast<int32_t>(index) + 1, static_cast<int32_t>(count));
    if (isComplete) error = control.GetSaveResult();
    fIsUnderWay = false;
    if (error == 0) return true;
    Fail(ErrorSeverity::Fatal, ErrorNumber::SaveGeneralFailure,
         "Call to DicomImage::SaveAs failed; error = " + std::to_string(error));
    return false;
}

// Hosts rely on it that a control which stalls ends the wait and nothing else: it may come to its end later.
bool SeriesSave::Wait(const AxDicomImage& control, int32_t frames, int32_t image, int32_t images) const {
    int32_t pending = control.GetImagesToWrite();
    int32_t last = pending;
    int32_t stalls = 0;
    SendStatus(images, image, 0, 0, SaveAsState::Running);
    while (pending != 0 && stalls <= fStallLimit) {
        pending = control.GetImagesToWrite();
        if (pending == 0) break;
        stalls = pending == last ? stalls + 1 : 0;
        last = pending;
        SendStatus(images, image, frames, frames - pending + 1, SaveAsState::Running);
        Vantor::Platform::Clock::Current().Sleep(kRest);
    }
    return pending == 0;
}

// What the control throws ends the wait as well: somebody else has thrown already.
void SeriesSave::WaitQuietly(const AxDicomImage& control) const {
    try {
        int32_t last = control.GetImagesToWrite();
        for (int32_t stalls = 0; last != 0 && stalls <= fStallLimit;) {
            Vantor::Platform::Clock::Current().Sleep(kRest);
            const int32_t pending = control.GetImagesToWrite();
            stalls = pending == last ? stalls + 1 : 0;
            last = pending;
        }
    } catch (...) {
        return;
    }
}

bool SeriesSave::MayBeWritten(Vantor::TDicomDirectory* directory, const std::string& path) {
    const auto places = directory == nullptr ? nullptr : directory->GetFilePlaces();
    const bool isTold = places != nullptr && Vantor::TFileSpec::FitsPath(path);
    if (isTold && places->MayBeWritten(Vantor::TFileSpec(path))) return true;
    Fail(ErrorSeverity::Fatal, ErrorNumber::SaveGeneralFailure,
         "Image file is not in the folder of its directory");
    return false;
}

// ---- The DICOMDIR ----

void SeriesSave::WriteDirectory(DicomDirectory& directory, const char* operation) {
    const auto fail = [&](const std::string& line) {
        Fail(ErrorSeverity::Fatal, ErrorNumber::DirectoryWriteError, line);
    };
    const std::string when = std::string("thrown on Write or Update directory after ") + operation;
    try {
        Vantor::TDicomDirectory* const native = directory.GetUmDirectory();
        if (native == nullptr) return fail("Unknown exception " + when);
        WriteDICOMDIR(*native);
        directory.ForceRefresh();
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        fail("Exception " + when + ", error = " + std::to_string(error->GetErrorNumber()));
    } catch (...) {
        fail("Unknown exception " + when);
    }
}

}  // namespace VantorWrappers
