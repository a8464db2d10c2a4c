#include "cli/SeriesImages.h"

#include <system_error>

namespace VantorCli {

namespace {

using VantorWrappers::ImageFileEditor;

std::string ReasonOf(int32_t error) {
    switch (error) {
        case ImageFileEditor::kNoDicomFile:
            return "no DICOM file, or a damaged one";
        case ImageFileEditor::kDeflated:
            return "deflated, which cannot be saved";
        case ImageFileEditor::kCharacterSet:
            return "a text that is given cannot be written in the character set of the file's other texts";
        case ImageFileEditor::kNoMemory:
            return "not enough memory";
        case ImageFileEditor::kOtherFailure:
            return "it cannot be written again";
        default:
            return ToPrintable(std::system_category().message(error));
    }
}

}  // namespace

SeriesImages::SeriesImages(const std::vector<VantorWrappers::ImageDirRec>& images)
    : fSavedImages(std::make_shared<VantorWrappers::SavedImages>()) {
    for (const VantorWrappers::ImageDirRec& image : images) {
        fImages.push_back(std::make_unique<FileImage>(image.GetImagePath(), fSavedImages));
        fControls.push_back(fImages.back().get());
    }
}

bool SeriesImages::Finish() {
    fSavedCount = 0;
    fFailures.clear();
    for (const auto& image : fImages) {
        if (image->WaitUntilSaved()) ++fSavedCount;
        const int32_t error = image->GetError();
        if (error != 0) fFailures.push_back(ToPrintable(image->GetPathName()) + ": " + ReasonOf(error));
    }
    const int32_t error = fSavedImages->Finish();
    if (error != 0) fFailures.push_back("references between the images: " + ReasonOf(error));
    return fFailures.empty();
}

}  // namespace VantorCli
