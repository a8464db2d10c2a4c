#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "wrappers/HostString.h"

namespace VantorWrappers {

// Addition for hosts: what the images that are saved together have in common, see ImageFileEditor. Where one
// of them refers to another, the files that are written do so as well, whichever is written first; and UIDs
// that de-identification replaces are replaced by the same ones in all of them.
//
// May be used from several threads.
class SavedImages {
  public:
    SavedImages();
    ~SavedImages();
    SavedImages(const SavedImages&) = delete;
    SavedImages& operator=(const SavedImages&) = delete;

    // To be called when all are written, or have failed, and before they are saved again: files that were
    // written before an image that they refer to, and do not name it by its new UID yet, are written once
    // more. What images and UIDs became is forgotten then: the next files that are written have nothing to do
    // with these. 0, or the number of an error, the last one.
    int32_t Finish();

  private:
    friend class ImageFileEditor;
    class State;
    std::unique_ptr<State> fState;
};

}  // namespace VantorWrappers
