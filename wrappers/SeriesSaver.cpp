#include "wrappers/SeriesSaver.h"

#include "platform/Registry.h"
#include "wrappers/SeriesInPlaceSave.h"
#include "wrappers/SeriesSaveAs.h"

namespace VantorWrappers {

bool TrimTrailingCarets() {
    constexpr char kKey[] = R"(Software\Norvik\Lumina\Deidentify)";
    constexpr char kValue[] = "RemoveTrailingCaretsFromPatientName";
    static const bool trims = [&] {
        const auto key = Vantor::Platform::RegistryKey::Open(kKey);
        return key && key->ReadInteger(kValue).value_or(0) > 0;
    }();
    return trims;
}

LuminaError SeriesSaver::SaveSeries(const SaveInfo* saveInfo, std::vector<ImageDirRec>* images,
                                    const ImageControls* controls, const SeriesDirRec* series) {
    SeriesInPlaceSave(*this, fError).Run(saveInfo, images, controls, series);
    return fError;
}

LuminaError SeriesSaver::SaveAsSeries(const SaveAsInfo* saveAsInfo, std::vector<ImageDirRec>* images,
                                      const ImageControls* controls, const SeriesDirRec* series,
                                      HostString& newSeriesUID) {
    fError = LuminaError();
    SeriesSaveAs(*this, fError, newSeriesUID).Run(saveAsInfo, images, controls, series);
    return fError;
}

}  // namespace VantorWrappers
