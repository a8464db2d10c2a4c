#pragma once

#include "wrappers/InstanceDirRec.h"

namespace Vantor {
class TImageDoc;
}

namespace VantorWrappers {

// An image of a directory, which may have many frames.
class ImageDirRec : public InstanceDirRec {
  public:
    ImageDirRec() = default;

    // `image` may be null: nothing is known then, and a trace warning is written.
    ImageDirRec(Vantor::TImageDoc* image, DicomDirectory& directory);

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

    int32_t fImageNumber = 0;
    HostString fImagePath;
};

}  // namespace VantorWrappers
