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
    static constexpr int32_t kDeflated = -4;      // a file that is compressed as a whole
    static constexpr int32_t kCharacterSet = -5;  // a text was set that the file has no characters for

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

    // A file that cannot be read has no UIDs, and one frame; BeginWriting tells why.
    HostString GetClassUID() const;

    // The UID that was set, else the file's.
    HostString GetInstanceUID() const;

    // At least 1.
    int32_t GetNumberOfFrames() const;

    // What the new file has. An empty text leaves the attribute without a value; texts that are too long are
    // cut.
    //
    // A text as hosts see that of the file, in a record or in the file itself, leaves the bytes that are
    // there, whatever character set they are in. So does that text without carets at its end, but for them.
    // Other texts are written in the file's character set, if that is Latin-1 or UTF-8, or they are ASCII; in
    // one of these if the file names none, and its texts can be that; and in another one than the file's if
    // nothing that stays needs it. Else the file is not written: kCharacterSet.
    void Set(Attribute attribute, const HostString& text);

    // Takes out of the new file who the patient is (1), and also the names of physicians and operators (2);
    // see docs/deidentification.md. What was set stays, or is set later.
    void DeIdentify(int32_t level);

    // Starts to write: finds room for the whole file and writes what stands before the pixel data. 0, or the
    // number of an error.
    int32_t BeginWriting(const HostString& path);

    // Writes the next frame, or of a large one the next part, which takes a few milliseconds. 0, or the
    // number of an error, which ends the writing. When no frames are left, the file is in its place.
    int32_t WriteNext();

    // How many frames have to be written; 0 before the beginning. From any thread.
    int32_t GetFramesLeft() const;

  private:
    class State;
    std::unique_ptr<State> fState;
};

}  // namespace VantorWrappers
