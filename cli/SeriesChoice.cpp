#include "cli/SeriesChoice.h"

#include <algorithm>

#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Text.h"
#include "platform/CodePage.h"

namespace VantorCli {

using VantorWrappers::SeriesDirRec;

namespace {

std::optional<SeriesDirRec> Find(const VantorWrappers::DicomDirectory& directory, const HostString& uid) {
    const std::vector<SeriesDirRec>& all = directory.GetSeriesList();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const SeriesDirRec& series) { return series.GetSeriesUID() == uid; });
    if (found == all.end()) return std::nullopt;
    return *found;
}

std::string AbsenceOf(const HostString& uid, const VantorWrappers::DicomDirectory& directory) {
    return "series " + ToPrintable(uid) + " is not in " + ToPrintable(directory.GetFullPath());
}

}  // namespace

std::optional<std::vector<SeriesDirRec>> ChooseSeries(const VantorWrappers::DicomDirectory& directory,
                                                      const std::vector<std::string>& uids,
                                                      Console& console) {
    std::vector<SeriesDirRec> chosen;
    for (const std::string& text : uids) {
        const HostString uid = Vantor::Platform::ToHostText(text);
        const auto found = Find(directory, uid);
        if (found) {
            chosen.push_back(*found);
        } else {
            console.Report(AbsenceOf(uid, directory));
        }
    }
    if (chosen.size() != uids.size()) return std::nullopt;
    return chosen;
}

SeriesDirRec ChooseOneSeries(const VantorWrappers::DicomDirectory& directory, const std::string& uid) {
    const HostString text = Vantor::Platform::ToHostText(uid);
    const auto found = Find(directory, text);
    if (!found) throw CommandError(AbsenceOf(text, directory));
    return *found;
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
