#pragma once

#include <string>
#include <string_view>

#include "platform/PathStyle.h"

namespace Vantor {

// Where the files of a directory are: turns the file IDs of its records into full paths and back, and knows
// where its image folder belongs. A plain calculation over texts; nothing is looked up on disk.
class MediaPaths {
  public:
    // `directoryPath` names a DICOMDIR, or a folder that has none (isFolder). `style` must outlive this
    // object.
    MediaPaths(const Platform::PathStyle& style, std::string_view directoryPath, bool isFolder);

    // The full path of a file ID. A file ID that is a full path already stands for itself. Blanks at its end
    // are padding.
    std::string MakeFullPath(std::string_view fileID) const;

    // The same for a file ID that is no full path, whatever it looks like.
    std::string MakePathBelow(std::string_view fileID) const;

    // The file ID of a full path: what follows the directory's folder, told without regard to case and
    // to which of the style's separators is used. Empty for a path elsewhere.
    std::string MakeFileID(std::string_view path) const;

    // True for a path below the directory's folder, each name of which is a plain one: it does not climb out
    // again, and there is no other that means the same.
    bool IsInside(std::string_view path) const;

    // A full path as records keep it, with backslashes and one in front: behind the drive, or, without one,
    // from the directory's folder on.
    std::string MakePathOnVolume(std::string_view path) const;

    // The full path of the image folder, whose name starts with a backslash. Empty without a name, and when
    // the directory's path is a name alone.
    std::string MakeImageFolderPath(std::string_view imageFolderName) const;

  private:
    const Platform::PathStyle& fStyle;
    std::string fFolder;  // ends with a separator, or is empty
    bool fIsKnown;        // a DICOMDIR or a folder
};

}  // namespace Vantor
