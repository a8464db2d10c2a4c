// Saves a copy of a series that does not tell who the patient is into another DICOMDIR, which is made if
// there is none: save_anonymous SOURCE SERIES_UID FOLDER

#include <filesystem>
#include <iostream>
#include <memory>
#include <vector>

#include "EditedImage.h"
#include "platform/CodePage.h"
#include "wrappers/DirectoriesMgr.h"
#include "wrappers/ImageDirRec.h"
#include "wrappers/SeriesSaver.h"

using namespace VantorWrappers;
using Vantor::Platform::FromHostText;
using Vantor::Platform::ToHostText;

namespace {

HostString FullPath(const std::filesystem::path& path) {
    return ToHostText(std::filesystem::absolute(path).string());
}

const SeriesDirRec* FindSeries(const DicomDirectory& directory, const HostString& uid) {
    for (const SeriesDirRec& series : directory.GetSeriesList()) {
        if (series.GetSeriesUID() == uid) return &series;
    }
    return nullptr;
}

bool Save(const SeriesDirRec& series, const std::shared_ptr<DicomDirectory>& destination) {
    SaveAsInfo info;
    info.SetDestinationDirectory(destination);
    info.SetPatientName(VantorHost::PatientName(L"Anonymous"));
    info.SetPatientNumber(L"ANONYMOUS");
    info.SetNewStudyFlag(true);
    info.SetMakeAnonymousFlag(true);
    info.SetErasePhysicianNamesFlag(true);

    std::vector<ImageDirRec> images;
    series.GetImages(images);
    const auto savedImages = std::make_shared<SavedImages>();
    std::vector<std::unique_ptr<EditedImage>> controls;
    std::vector<VantorHost::AxDicomImage*> views;
    for (const ImageDirRec& image : images) {
        controls.push_back(std::make_unique<EditedImage>(image.GetImagePath(), savedImages));
        views.push_back(controls.back().get());
    }
    HostString newSeriesUID;
    const LuminaError result = SeriesSaver().SaveAsSeries(&info, &images, &views, &series, newSeriesUID);
    if (savedImages->Finish() != 0 || !result.IsSuccess()) return false;
    std::cout << FromHostText(newSeriesUID) << "\n";
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        std::cerr << "usage: save_anonymous SOURCE SERIES_UID FOLDER\n";
        return 2;
    }
    DirectoriesMgr manager(true, true, L"");
    const std::filesystem::path file = std::filesystem::path(arguments[3]) / "DICOMDIR";
    const auto source = manager.OpenDirectory(FullPath(arguments[1]));
    const auto destination = std::filesystem::exists(file)
                                 ? manager.OpenDirectory(FullPath(file))
                                 : manager.CreateOrReplaceDirectory(FullPath(file), L"ANONYMOUS", true);
    if (source == nullptr || destination == nullptr || !destination->IsValid()) {
        std::cerr << "a directory cannot be opened\n";
        return 1;
    }
    const SeriesDirRec* const series = FindSeries(*source, ToHostText(arguments[2]));
    if (series == nullptr || !Save(*series, destination)) {
        std::cerr << "the series is not there, or could not be saved\n";
        return 1;
    }
    return 0;
}
