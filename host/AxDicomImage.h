#pragma once

#include <cstdint>
#include <string>

namespace VantorHost {

// The host's image display control: the pixels and attributes of one image as the user sees it. A host hands
// controls to the library, which tells them under which identity to write their image, and where.
//
// Called from one thread. Writing may go on in the background after SaveAs; GetImagesToWrite tells how far it
// is.
class AxDicomImage {
  public:
    AxDicomImage() = default;
    AxDicomImage(const AxDicomImage&) = delete;
    AxDicomImage& operator=(const AxDicomImage&) = delete;
    virtual ~AxDicomImage() = default;

    // The full path of the file that the image comes from.
    virtual std::wstring GetPathName() const = 0;

    // The full path that SaveAs writes to; it may be the one that the image comes from.
    virtual void SetSCPathName(const std::wstring& path) = 0;

    // UIDs: the image's own, until another one is set.
    virtual std::wstring GetInstanceUID() const = 0;
    virtual void SetInstanceUID(const std::wstring& uid) = 0;
    virtual std::wstring GetClassUID() const = 0;
    virtual void SetSeriesUID(const std::wstring& uid) = 0;
    virtual void SetStudyUID(const std::wstring& uid) = 0;

    // Attributes of the file to be written. What is not set stays as it is; an empty text leaves the
    // attribute without a value. Names in DICOM form.
    virtual void SetPatientName(const std::wstring& name) = 0;
    virtual void SetPatientID(const std::wstring& number) = 0;
    virtual void SetStudyID(const std::wstring& studyID) = 0;
    virtual void SetStudyName(const std::wstring& description) = 0;
    virtual void SetAccessionNumber(const std::wstring& number) = 0;
    virtual void SetSeriesNumber(const std::wstring& number) = 0;
    virtual void SetSeriesName(const std::wstring& description) = 0;
    virtual void SetImageNumber(int32_t number) = 0;

    // Takes from the file to be written what tells who the patient is (1), and the names of physicians and
    // operators as well (2). What is set here stays, whether it is set before or after.
    virtual void DeIdentifyImage(int32_t level) = 0;

    // How many frames the image has; at least 1.
    virtual int32_t GetNumberOfFrames() const = 0;

    // Starts to write the image to the path that was set. 0, or the number of an error; nothing is at the
    // path then, or what was there before.
    virtual int32_t SaveAs() = 0;

    // How many frames are still queued for writing; 0 when the file is complete, or has failed.
    virtual int32_t GetImagesToWrite() const = 0;

    // Addition for controls that write in the background: how that ended, 0 or the number of an error. To be
    // asked when no frames are queued any more.
    virtual int32_t GetSaveResult() const { return 0; }

    // ---- The picture, as a movie shows it; a control that only saves has none ----

    // In pixels; 0 without a picture.
    virtual int32_t GetImageWidth() const { return 0; }
    virtual int32_t GetImageHeight() const { return 0; }

    // How long all frames of a loop take, in milliseconds; 0 for a still.
    virtual int32_t GetCycleLength() const { return 0; }

    // Shows a frame, 1 to GetNumberOfFrames.
    virtual void SetCurrentFrame(int32_t /*frame*/) {}

    // Puts what is shown on the clipboard as a device-independent bitmap (see wrappers/BitmapClipboard.h).
    // False when that fails.
    virtual bool BitmapToClipboard() { return false; }
};

}  // namespace VantorHost
