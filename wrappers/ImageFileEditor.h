#pragma once

#include <cstdint>
#include <memory>

#include "wrappers/HostString.h"
#include "wrappers/SavedImages.h"

namespace VantorWrappers {

// Addition for hosts: the file of one image, to be written again with other attributes. What an image control
// over DICOM files needs to save.
//
// Pixel data are copied byte for byte, whatever they are, and so is every other element that is not changed.
// The new file is written beside the one that is to be replaced and put in its place when it is complete;
// until then, and when writing fails, the old one is there.
//
// Nothing is thrown. Failures have numbers: that of the operating system, or one of those below. One object
// is for one thread at a time, but for GetFramesLeft.
class ImageFileEditor {
  public:
    static constexpr int32_t kNoDicomFile = -1;  // a file that is no DICOM Part 10 file, or damaged
    static constexpr int32_t kNoMemory = -2;
    static constexpr int32_t kOtherFailure = -3;

    // The attributes that can be set.
    enum class Attribute {
        kPatientName,
        kPatientID,
        kAccessionNumber,
        kStudyUID,
        kStudyID,
        kStudyDescription,
        kSeriesUID,
        kSeriesNumber,
        kSeriesDescription,
        kInstanceUID,
        kImageNumber,
    };

    // Reads what stands before the pixel data. `savedImages`: shared by all images that are saved together.
    ImageFileEditor(const HostString& path, std::shared_ptr<SavedImages> savedImages);
    ~ImageFileEditor();
    ImageFileEditor(const ImageFileEditor&) = delete;
    ImageFileEditor& operator=(const ImageFileEditor&) = delete;

    // 0 when the file was read, else why not; it has no UIDs then, and one frame.
    int32_t GetError() const;

    const HostString& GetPath() const;
    HostString GetClassUID() const;

    // The UID that was set, else the file's.
    HostString GetInstanceUID() const;

    // At least 1.
    int32_t GetNumberOfFrames() const;

    // What the new file has. An empty text leaves the attribute without a value; texts that are too long are
    // cut. Text that the file's character set has no characters for changes the character set where that is
    // possible, else those characters become question marks.
    void Set(Attribute attribute, const HostString& text);

    // Takes out of the new file who the patient is (1), and also the names of physicians and operators (2);
    // see docs/deidentification.md. What was set stays, or is set later.
    void DeIdentify(int32_t level);

    // Starts to write: finds room for the whole file and writes what stands before the pixel data. 0, or the
    // number of an error.
    int32_t BeginWriting(const HostString& path);

    // Writes on, for a few milliseconds. 0, or the number of an error, which ends the writing. When no frames
    // are left, the file is in its place.
    int32_t WriteNext();

    // How many frames have to be written; 0 before the beginning. From any thread.
    int32_t GetFramesLeft() const;

  private:
    class State;
    std::unique_ptr<State> fState;
};

}  // namespace VantorWrappers
