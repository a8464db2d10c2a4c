#pragma once

#include "wrappers/InstanceDirRec.h"

namespace Vantor {
class TImageDoc;
struct TImageOutline;
}  // namespace Vantor

namespace VantorWrappers {

// An image of a directory, which may have many frames.
class ImageDirRec : public InstanceDirRec {
  public:
    ImageDirRec() = default;

    // `image` may be null: nothing is known then, and a trace warning is written.
    ImageDirRec(Vantor::TImageDoc* image, DicomDirectory& directory);

    // For lists: an image of a series whose ancestors are known.
    ImageDirRec(Vantor::TImageDoc& image, DicomDirectory& directory, const Ancestors& ancestors);

    // 0 without one.
    int32_t GetImageNumber() const { return fImageNumber; }

    // The file's full path.
    const HostString& GetImagePath() const { return fImagePath; }

    // In units of 1,024 bytes. Looks at the file.
    int32_t GetDiskSpaceInKBytes() const;

    void SetInstanceUID(const HostString& uid);
    void SetClassUID(const HostString& uid);
    void SetImageNumber(int32_t number);

    // Takes everything from the record anew; as at construction.
    void UpdateFields(Vantor::TImageDoc* image);

  private:
    Vantor::TImageDoc* FindDoc() const;
    void TakeFields(const Vantor::TImageOutline& image, const Ancestors& ancestors);

    int32_t fImageNumber = 0;
    HostString fImagePath;
};

}  // namespace VantorWrappers
