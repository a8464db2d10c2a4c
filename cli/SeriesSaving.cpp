#include "cli/SeriesSaving.h"

#include <algorithm>
#include <cstdint>

#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Failure.h"
#include "cli/Json.h"
#include "cli/Progress.h"
#include "cli/SeriesChoice.h"
#include "wrappers/PrivateDirRec.h"
#include "wrappers/RawDataDirRec.h"
#include "wrappers/StructReportDirRec.h"

namespace VantorCli {

namespace {

using namespace VantorWrappers;

constexpr size_t kShownFailures = 20;

std::vector<ImageDirRec> ImagesOf(const SeriesDirRec& series) {
    std::vector<ImageDirRec> images;
    series.GetImages(images);
    if (images.empty()) {
        throw CommandError("series " + ToPrintable(series.GetSeriesUID()) + ": no images to be saved");
    }
    return images;
}

// Shows how far a saver is.
class SavingProgress {
  public:
    SavingProgress(SeriesSaver& saver, Console& console) : fSaver(saver), fProgress(console, 0, "") {
        fSubscription =
            saver.eSaveAsStatus.Subscribe([this](const SaveAsEventArgs& status) { Show(status); });
    }
    ~SavingProgress() { fSaver.eSaveAsStatus.Unsubscribe(fSubscription); }
    SavingProgress(const SavingProgress&) = delete;
    SavingProgress& operator=(const SavingProgress&) = delete;

  private:
    // The saver tells of frames only while it waits for those of a long image.
    void Show(const SaveAsEventArgs& status) {
        if (status.GetCurrentState() != SaveAsState::Running) return;
        if (status.GetTotalFrames() > 0) {
            ShowPart(status.GetTotalFrames(), status.GetCurrentFrame(),
                     "frames (image " +
                         PlaceOf(IndexOf(status.GetCurrentImage()), IndexOf(status.GetTotalImages()) + 1) +
                         ")");
        } else {
            ShowPart(status.GetTotalImages(), status.GetCurrentImage(), "images");
        }
    }

    // The one at hand is not done.
    void ShowPart(int32_t total, int32_t current, std::string things) {
        fProgress.GoOnWith(static_cast<uint64_t>(total), std::move(things));
        fProgress.SetDone(IndexOf(current));
    }

    static size_t IndexOf(int32_t number) { return static_cast<size_t>(std::max(number, 1) - 1); }

    SeriesSaver& fSaver;
    Progress fProgress;
    Event<SaveAsEventArgs>::Subscription fSubscription = 0;
};

template <typename Record>
size_t Count(const SeriesDirRec& series, void (SeriesDirRec::*getList)(std::vector<Record>&) const) {
    std::vector<Record> list;
    (series.*getList)(list);
    return list.size();
}

}  // namespace

SeriesSaving::SeriesSaving(const DicomDirectory& directory, const std::string& uid, Console& console)
    : fSeries(ChooseOneSeries(directory, uid)),
      fRecords(ImagesOf(fSeries)),
      fImages(fRecords),
      fConsole(console) {}

void SeriesSaving::Run(const Save& save) {
    SeriesSaver saver;
    const SavingProgress progress(saver, fConsole);
    fError = save(saver, fRecords, fImages.GetControls());
    // The saver does not wait forever, nor know of what comes after all images.
    const bool isFinished = fImages.Finish();
    if (fError.IsSuccess() && !isFinished) fError = {ErrorSeverity::Fatal, ErrorNumber::SaveGeneralFailure};
}

ExitStatus SeriesSaving::Show(const HostString& savedUID, bool isJson) const {
    if (isJson) {
        Json object;
        object["series"] = ToUtf8(savedUID);
        object["result"] = ResultName(fError);
        fConsole.Print(ToLine(object));
    } else {
        fConsole.Print(ToText(savedUID.empty() ? fSeries.GetSeriesUID() : savedUID));
    }
    if (fError.IsSuccess()) return ExitStatus::kDone;
    ReportFailures();
    return ExitStatus::kFailed;
}

std::string SeriesSaving::ToText(const HostString& uid) const {
    const std::string name = ToPrintable(uid);
    const std::string count = Counted(fRecords.size(), "image", "images");
    if (fError.IsSuccess()) return "saved   " + name + "  " + count;
    return "failed  " + name + "  " + Grouped(fImages.CountSaved()) + " of " + count + " written";
}

void SeriesSaving::ReportFailures() const {
    const auto& failures = fImages.GetFailures();
    const size_t shown = std::min(failures.size(), kShownFailures);
    for (size_t i = 0; i < shown; ++i) {
        fConsole.Report(failures[i]);
    }
    if (failures.size() > shown) fConsole.Report("and " + Grouped(failures.size() - shown) + " more");
    if (!failures.empty() && fError.GetErrorNumber() == ErrorNumber::SaveGeneralFailure) return;
    fConsole.Report("series " + ToPrintable(fSeries.GetSeriesUID()) + ": " + ReasonOf(fError));
}

void SeriesSaving::ReportOthers(const char* fate) const {
    const size_t count = Count(fSeries, &SeriesDirRec::GetSRs) +
                         Count(fSeries, &SeriesDirRec::GetRawDataObjects) +
                         Count(fSeries, &SeriesDirRec::GetPrivateDicom);
    if (count == 0) return;
    fConsole.Report("note: the series has " + Counted(count, "other object", "other objects") +
                    " beside the images, such as reports or raw data; " + fate);
}

}  // namespace VantorCli
