#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "cli/FilePicture.h"
#include "host/AxDicomImage.h"
#include "wrappers/ImageFileEditor.h"
#include "wrappers/SavedImages.h"

namespace VantorCli {

// The image control over a DICOM file: the image is as the file has it, and saving writes the file again with
// other attributes, in the background.
//
// A series has thousands of them: each holds a few texts, its file is read at construction and when it is
// saved, and is closed in between. It can be saved again, with what was set till then; but once a copy was
// saved to another path, or could not be, the image is as its file has it again. Only its UIDs are still
// asked for those of the copy, until something is set. Going away, it gives up what it is still writing: no
// part of that is left, and what was there before stays.
//
// Its picture is read when it is asked for, a frame at a time; images that are only saved have none.
class FileImage final : public VantorHost::AxDicomImage {
  public:
    // `savedImages`: shared by all images that are saved together, which have to be there before the first
    // of them is saved. A file that cannot be read is a failure of SaveAs.
    FileImage(std::wstring path, std::shared_ptr<VantorWrappers::SavedImages> savedImages);
    ~FileImage() override;

    std::wstring GetPathName() const override { return fPath; }
    void SetSCPathName(const std::wstring& path) override {
        ForgetCopy();
        fPathToWrite = path;
    }

    std::wstring GetInstanceUID() const override;
    void SetInstanceUID(const std::wstring& uid) override { Set(Attribute::kInstanceUID, uid); }
    std::wstring GetClassUID() const override { return fStart.fClassUID; }
    void SetSeriesUID(const std::wstring& uid) override { Set(Attribute::kSeriesUID, uid); }
    void SetStudyUID(const std::wstring& uid) override { Set(Attribute::kStudyUID, uid); }

    void SetPatientName(const std::wstring& name) override { Set(Attribute::kPatientName, name); }
    void SetPatientID(const std::wstring& number) override { Set(Attribute::kPatientID, number); }
    void SetStudyID(const std::wstring& studyID) override { Set(Attribute::kStudyID, studyID); }
    void SetStudyName(const std::wstring& text) override { Set(Attribute::kStudyDescription, text); }
    void SetAccessionNumber(const std::wstring& number) override { Set(Attribute::kAccessionNumber, number); }
    void SetSeriesNumber(const std::wstring& number) override { Set(Attribute::kSeriesNumber, number); }
    void SetSeriesName(const std::wstring& text) override { Set(Attribute::kSeriesDescription, text); }
    void SetImageNumber(int32_t number) override { Set(Attribute::kImageNumber, std::to_wstring(number)); }
    void DeIdentifyImage(int32_t level) override {
        ForgetCopy();
        fDeIdentification = level;
    }

    int32_t GetNumberOfFrames() const override { return fStart.fFrames; }

    // Waits a moment for the writing: most images are complete then, and who has thousands saved need not
    // come back for each to look.
    int32_t SaveAs() override;
    int32_t GetImagesToWrite() const override {
        return fWriting == nullptr ? 0 : fWriting->fFramesLeft.load();
    }
    int32_t GetSaveResult() const override { return fWriting == nullptr ? 0 : fWriting->fResult.load(); }

    // Waits until nothing is being written. True when the image was saved, and the last time it went well.
    bool WaitUntilSaved();

    // Why the last saving failed, whether SaveAs did or what came after; 0 when it did not.
    int32_t GetError() const { return fStartError != 0 ? fStartError : GetSaveResult(); }

    // 0 for a file without a picture.
    int32_t GetImageWidth() const override;
    int32_t GetImageHeight() const override;
    int32_t GetCycleLength() const override;
    void SetCurrentFrame(int32_t frame) override;
    bool BitmapToClipboard() override;

    // Reads what the picture is, unless that has happened. Throws what FilePicture throws; the operations
    // above do without a picture then.
    void OpenPicture() const;

    // Why a frame could not be shown, the first one that could not, for a person; "" when all could.
    std::string GetPictureProblem() const { return fPicture == nullptr ? "" : fPicture->GetProblem(); }

    // Is called whenever a frame is to be shown.
    void SetFrameListener(std::function<void()> listener) { fFrameListener = std::move(listener); }

  private:
    using Editor = VantorWrappers::ImageFileEditor;
    using Attribute = Editor::Attribute;

    // What the file tells of the image.
    struct Start {
        std::wstring fClassUID;
        std::wstring fInstanceUID;
        int32_t fFrames = 1;
    };

    // What this object and the thread that writes both know.
    struct Writing {
        std::atomic<bool> fIsGivenUp = false;
        std::atomic<int32_t> fFramesLeft = 0;  // 0 when it has ended, with its result
        std::atomic<int32_t> fResult = 0;
        bool fIsInPlace = false;
        std::wstring fInstanceUID;  // that is being written
    };

    void Set(Attribute attribute, const std::wstring& text) {
        ForgetCopy();
        fTexts[attribute] = text;
    }
    void ForgetCopy();
    int32_t BeginWriting();
    void WriteInBackground();
    static void Write(std::unique_ptr<Editor> editor, Writing& writing);
    FilePicture* FindPicture() const;

    std::wstring fPath;
    std::wstring fPathToWrite;
    std::shared_ptr<VantorWrappers::SavedImages> fSavedImages;
    std::map<Attribute, std::wstring> fTexts;  // what was set
    int32_t fDeIdentification = 0;
    bool fIsCopied = false;             // these were for a copy
    std::unique_ptr<Editor> fEditor;    // null when SaveAs has had it
    Start fStart;                       // but for an instance UID that was saved in place
    int32_t fStartError = 0;            // of the last SaveAs
    std::shared_ptr<Writing> fWriting;  // null until something has been written
    std::future<void> fThread;          // waits for it when this object goes

    mutable std::unique_ptr<FilePicture> fPicture;  // null until it is asked for
    mutable bool fHasNoPicture = false;             // it could not be read
    int32_t fCurrentFrame = 1;
    std::function<void()> fFrameListener;
};

}  // namespace VantorCli
