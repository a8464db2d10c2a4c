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
    // What an image is called before it is saved.
    struct Identity {
        HostString fInstanceUID;
        int32_t fNumber;
        HostString fInstanceUIDOfControl;
    };

    void SaveImages(const SaveInfo& saveInfo, Images& images, const ImageControls& controls);
    void SaveImage(const SaveInfo& saveInfo, Images& images, VantorHost::AxDicomImage& control, size_t index);
    bool TellWhere(const ImageDirRec& image, VantorHost::AxDicomImage& control);
    void Restore(const Identity& old, bool hadNewUID, ImageDirRec& image, VantorHost::AxDicomImage& control);
    void RestoreQuietly(const Identity& old, bool hadNewUID, ImageDirRec& image,
                        VantorHost::AxDicomImage& control);
    bool AssignNewUID(ImageDirRec& image, VantorHost::AxDicomImage& control);
};

}  // namespace VantorWrappers
