#include "wrappers/ImageDirRec.h"

#include "records/TImageDoc.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/NativeText.h"
#include "wrappers/RecordChange.h"

namespace VantorWrappers {

using Vantor::TImageDoc;
using Vantor::TImageOutline;

ImageDirRec::ImageDirRec(TImageDoc* image, DicomDirectory& directory) : InstanceDirRec(directory) {
    UpdateFields(image);
}

ImageDirRec::ImageDirRec(TImageDoc& image, DicomDirectory& directory, const Ancestors& ancestors)
    : InstanceDirRec(directory) {
    TakeFields(image.GetOutline(), ancestors);
}

void ImageDirRec::UpdateFields(TImageDoc* image) {
    if (image == nullptr) return TraceWarning(kNoNativeObject);
    TakeFields(image->GetOutline(), AncestorsOf(*image));
}

void ImageDirRec::TakeFields(const TImageOutline& image, const Ancestors& ancestors) {
    TakeTexts(ReadBytes(image.fSOPInstanceUID), ReadBytes(image.fSOPClassUID), ancestors);
    fImageNumber = image.fImageNumber;
    fImagePath = ReadBytes(image.fFilePath);
}

TImageDoc* ImageDirRec::FindDoc() const {
    DicomDirectory* const directory = GetDicomDirectory();
    return directory == nullptr ? nullptr : directory->GetUmImage(fInstanceUID);
}

int32_t ImageDirRec::GetDiskSpaceInKBytes() const {
    TImageDoc* const image = FindDoc();
    return image == nullptr ? 0 : image->GetDiskSpace();
}

void ImageDirRec::SetInstanceUID(const HostString& uid) {
    const char* const warning = "Failed to find unmanaged Image Object, new Image Instance UID not set.";
    const auto text = ChangeRecord(FindDoc(), warning, uid, &TImageDoc::SetSOPInstanceUID);
    if (text) fInstanceUID = *text;
}

void ImageDirRec::SetClassUID(const HostString& uid) {
    const char* const warning = "Failed to find unmanaged Image Object, new Image Class UID not set.";
    const auto text = ChangeRecord(FindDoc(), warning, uid, &TImageDoc::SetSOPClassUID);
    if (text) fClassUID = *text;
}

void ImageDirRec::SetImageNumber(int32_t number) {
    TImageDoc* const image = FindDoc();
    if (image == nullptr) {
        return TraceWarning("Failed to find unmanaged Image Object, new Image Number not set.");
    }
    if (const auto failure = FailureOf([&] { image->SetImageNumber(number); })) {
        return TraceError(*failure);
    }
    fImageNumber = number;
}

}  // namespace VantorWrappers
