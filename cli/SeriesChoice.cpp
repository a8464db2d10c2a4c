#include "cli/SeriesChoice.h"

#include <algorithm>

#include "cli/Console.h"
#include "cli/Text.h"
#include "platform/CodePage.h"

namespace VantorCli {

using VantorWrappers::SeriesDirRec;

std::optional<std::vector<SeriesDirRec>> ChooseSeries(const VantorWrappers::DicomDirectory& directory,
                                                      const std::vector<std::string>& uids,
                                                      Console& console) {
    const std::vector<SeriesDirRec>& all = directory.GetSeriesList();
    std::vector<SeriesDirRec> chosen;
    for (const std::string& text : uids) {
        const HostString uid = Vantor::Platform::ToHostText(text);
        const auto found = std::find_if(
            all.begin(), all.end(), [&](const SeriesDirRec& series) { return series.GetSeriesUID() == uid; });
        if (found == all.end()) {
            console.Report("series " + ToPrintable(uid) + " is not in " +
                           ToPrintable(directory.GetFullPath()));
        } else {
            chosen.push_back(*found);
        }
    }
    if (chosen.size() != uids.size()) return std::nullopt;
    return chosen;
}

std::string PlaceOf(size_t index, size_t count) { return Grouped(index + 1) + " of " + Grouped(count); }

size_t WidthOfUIDs(const std::vector<SeriesDirRec>& series) {
    size_t width = 0;
    for (const SeriesDirRec& each : series) {
        width = std::max(width, each.GetSeriesUID().size());
    }
    return width;
}

}  // namespace VantorCli
