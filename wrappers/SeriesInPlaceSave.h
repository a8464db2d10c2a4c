#pragma once

#include <memory>

#include "wrappers/SeriesSave.h"

namespace VantorWrappers {

// The saving of a series in place, as SeriesSaver::SaveSeries has it.
class SeriesInPlaceSave : private SeriesSave {
  public:
    SeriesInPlaceSave(const SeriesSaver& saver, LuminaError& result);

    void Run(const SaveInfo* saveInfo, std::vector<ImageDirRec>* images, const ImageControls* controls,
             const SeriesDirRec* series);

  private:
    void SaveImages(const SaveInfo& saveInfo, Images& images, const ImageControls& controls);
    void SaveImage(const SaveInfo& saveInfo, ImageDirRec& image, VantorHost::AxDicomImage& control,
                   size_t index, size_t count);
    bool AssignNewUID(ImageDirRec& image, VantorHost::AxDicomImage& control);
};

}  // namespace VantorWrappers
