#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "wrappers/SeriesSave.h"

namespace Vantor {
class TDicomDirectory;
class TDicomDoc;
class TImageDoc;
class TPatientDoc;
class TSeriesDoc;
class TStudyDoc;
}  // namespace Vantor

namespace VantorWrappers {

// The saving of a copy of a series, as SeriesSaver::SaveAsSeries has it.
class SeriesSaveAs : private SeriesSave {
  public:
    SeriesSaveAs(const SeriesSaver& saver, LuminaError& result, HostString& newSeriesUID);

    void Run(const SaveAsInfo* saveAsInfo, Images* images, const ImageControls* controls,
             const SeriesDirRec* series);

  private:
    void SaveInto(DicomDirectory& destination, const Images& images, const ImageControls& controls,
                  const SeriesDirRec* series);

    // The records above the images. Null, or false, when one cannot be had, which is noted.
    bool MakePlace(const SeriesDirRec* series);
    Vantor::TPatientDoc* MakePatient(const Vantor::TSeriesDoc* source);
    Vantor::TStudyDoc* MakeNewStudy(Vantor::TPatientDoc& patient, const Vantor::TSeriesDoc* source);
    Vantor::TStudyDoc* JoinStudy(Vantor::TPatientDoc& patient, const Vantor::TSeriesDoc* source);
    Vantor::TSeriesDoc* MakeSeries(Vantor::TStudyDoc& study, const SeriesDirRec* source);
    std::string MakeSeriesUID(Vantor::TStudyDoc& study, const SeriesDirRec* source) const;
    void FillStudy(Vantor::TStudyDoc& study, const Vantor::TSeriesDoc* source) const;
    std::string MakeStudyUID() const;
    void RemoveEmptyPlace();

    // The images.
    void SaveImages(const Images& images, const ImageControls& controls);
    void SaveImage(VantorHost::AxDicomImage& control, size_t index, size_t count);
    std::string MakeFileName(const VantorHost::AxDicomImage& control);
    std::string FindSubFolder(Vantor::TDicomDirectory& directory);
    static bool MayHaveFolders(Vantor::TDicomDirectory& directory);
    void Prepare(VantorHost::AxDicomImage& control) const;
    bool WriteAndEnter(Vantor::TImageDoc& image, VantorHost::AxDicomImage& control, size_t index,
                       size_t count, const std::string& path);
    bool Enter(Vantor::TImageDoc& image, const VantorHost::AxDicomImage& control, const std::string& path);

    // The destination and the new series, looked for anew: the host has been called meanwhile. Null when they
    // are not there any more.
    Vantor::TDicomDirectory* FindDirectory() const;
    Vantor::TSeriesDoc* FindSeries() const;

    // Likewise the series that is copied; null without one.
    static Vantor::TSeriesDoc* FindSource(const SeriesDirRec* series);

    void FailGeneral(ErrorSeverity severity, const std::string& line);

    // What `find` gives. Null when it gives nothing or fails, which is noted with the number of the error.
    using Finder = std::function<Vantor::TDicomDoc*(int32_t& error)>;
    template <typename Doc>
    Doc* Require(const char* complaint, const Finder& find);

    HostString& fNewSeriesUID;
    const SaveAsInfo* fInfo = nullptr;
    HostString fPatientName;  // in DICOM form, as it is saved
    DicomDirectory* fDestination = nullptr;
    std::string fStudyUID;
    bool fHasMadeFolder = false;  // for the study, in an exam layout
};

}  // namespace VantorWrappers
