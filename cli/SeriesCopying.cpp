#include "cli/SeriesCopying.h"

#include <cstdint>

#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Directories.h"
#include "cli/Failure.h"
#include "cli/Json.h"
#include "cli/Progress.h"
#include "cli/SeriesChoice.h"
#include "cli/Text.h"

namespace VantorCli {

namespace {

using VantorWrappers::CopySeriesEventArgs;
using VantorWrappers::DicomDirectory;
using VantorWrappers::ErrorNumber;
using VantorWrappers::LuminaError;
using VantorWrappers::SeriesDirRec;

// What became of a series.
struct CopyResult {
    LuminaError fError;
    bool fWasThere = false;
    int32_t fKilobytes = 0;
};

// Copies series, and shows how far the one at hand is.
class SeriesCopy {
  public:
    SeriesCopy(DicomDirectory& destination, Console& console)
        : fDestination(destination), fProgress(console, 0, "") {
        fSubscription = destination.eCopySeriesProgress.Subscribe(
            [this](const CopySeriesEventArgs& progress) { Show(progress); });
    }
    ~SeriesCopy() { fDestination.eCopySeriesProgress.Unsubscribe(fSubscription); }
    SeriesCopy(const SeriesCopy&) = delete;
    SeriesCopy& operator=(const SeriesCopy&) = delete;

    CopyResult Copy(const std::vector<SeriesDirRec>& all, size_t index) {
        const SeriesDirRec& series = all[index];
        fPlace = PlaceOf(index, all.size());
        fKilobytes.reset();
        fProgress.GoOnWith(all.size(), "series");
        fProgress.SetDone(index);
        const bool wasThere = fDestination.IsSeriesInDirectory(series.GetSeriesUID());
        const LuminaError error = fDestination.CopySeries(series);
        if (wasThere || !error.IsSuccess()) return {error, wasThere, fKilobytes.value_or(0)};
        // A small series is copied before there is any progress to be told.
        return {error, wasThere, fKilobytes ? *fKilobytes : series.GetDiskSpace()};
    }

  private:
    void Show(const CopySeriesEventArgs& progress) {
        fKilobytes = progress.GetTotalBytesInSeries();
        fProgress.GoOnWith(static_cast<uint64_t>(*fKilobytes), "KB (series " + fPlace + ")");
        fProgress.SetDone(static_cast<uint64_t>(progress.GetBytesCopiedInSeries()));
    }

    DicomDirectory& fDestination;
    Progress fProgress;
    VantorWrappers::Event<CopySeriesEventArgs>::Subscription fSubscription = 0;
    std::string fPlace;
    std::optional<int32_t> fKilobytes;  // of the series at hand
};

Json ToJson(const SeriesDirRec& series, const CopyResult& result) {
    Json object;
    object["series"] = ToUtf8(series.GetSeriesUID());
    object["result"] = ResultName(result.fError);
    object["kilobytes"] = result.fKilobytes;
    return object;
}

std::string ToText(const std::string& uid, const CopyResult& result) {
    if (!result.fError.IsSuccess()) return "failed  " + uid;
    if (result.fWasThere) return "kept    " + uid + "  there already";
    constexpr size_t kSizeWidth = 10;
    return "copied  " + uid + "  " +
           PadLeft(ReadableKilobytes(static_cast<uint64_t>(result.fKilobytes)), kSizeWidth);
}

// True when the next series would meet the same.
bool IsEndOfAll(const LuminaError& error) {
    return error.GetErrorNumber() == ErrorNumber::CopySeriesVolumeFull ||
           error.GetErrorNumber() == ErrorNumber::CopySeriesDestMissing ||
           error.GetErrorNumber() == ErrorNumber::CopySeriesDirUpdateFailure;
}

}  // namespace

void SeriesCopying::AddOptions(const CommandLine& line) {
    const auto series = line.AddOption("--series", "UID", fSeries, "The series to be copied");
    line.AddFlag("--all", fIsAll, "Copy all series").Exclude(series);
    line.AddFlag("--json", fIsJson, "One JSON object a line for each series");
    line.Check([this] { return fSeries.empty() && !fIsAll ? "--series or --all is required" : ""; });
}

std::optional<std::vector<SeriesDirRec>> SeriesCopying::Choose(const DicomDirectory& source,
                                                               Console& console) const {
    if (fIsAll) RequireWhole(source);
    auto series = fIsAll ? source.GetSeriesList() : ChooseSeries(source, fSeries, console);
    if (series && series->empty()) {
        throw CommandError(ToPrintable(source.GetFullPath()) + ": no series to be copied");
    }
    return series;
}

ExitStatus SeriesCopying::CopyInto(DicomDirectory& destination, const std::vector<SeriesDirRec>& series,
                                   Console& console) const {
    ExitStatus status = ExitStatus::kDone;
    SeriesCopy copy(destination, console);
    const size_t width = WidthOfUIDs(series);
    for (size_t i = 0; i < series.size(); ++i) {
        const std::string place = PlaceOf(i, series.size());
        const CopyResult result = copy.Copy(series, i);
        const std::string uid = ToPrintable(series[i].GetSeriesUID());
        console.Print(fIsJson ? ToLine(ToJson(series[i], result))
                              : ToText(PadRight(uid, width), result) + "  (" + place + ")");
        console.Flush();  // the next one may take a while
        if (result.fError.IsSuccess()) continue;
        console.Report("series " + uid + ": " + ReasonOf(result.fError));
        status = ExitStatus::kFailed;
        if (IsEndOfAll(result.fError)) break;
    }
    return status;
}

}  // namespace VantorCli
