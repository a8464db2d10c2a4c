#include "cli/FileImage.h"

#include <chrono>
#include <system_error>
#include <utility>

#include "dicom/TException.h"

namespace VantorCli {

namespace {

// Enough for a still. A saver looks again only after a quarter of a second.
constexpr std::chrono::milliseconds kMoment(40);

}  // namespace

FileImage::FileImage(std::wstring path, std::shared_ptr<VantorWrappers::SavedImages> savedImages)
    : fPath(std::move(path)),
      fPathToWrite(fPath),
      fSavedImages(std::move(savedImages)),
      fEditor(std::make_unique<Editor>(fPath, fSavedImages)),
      fStart{fEditor->GetClassUID(), fEditor->GetInstanceUID(), fEditor->GetNumberOfFrames()} {}

FileImage::~FileImage() {
    if (fWriting != nullptr) fWriting->fIsGivenUp = true;
}

std::wstring FileImage::GetInstanceUID() const {
    const auto set = fTexts.find(Attribute::kInstanceUID);
    return set != fTexts.end() ? set->second : fStart.fInstanceUID;
}

int32_t FileImage::SaveAs() {
    if (WaitUntilSaved() && fWriting->fIsInPlace) fStart.fInstanceUID = fWriting->fInstanceUID;
    ForgetCopy();
    fWriting.reset();
    fPicture.reset();  // its frames may be elsewhere in the file then
    fHasNoPicture = false;
    fStartError = BeginWriting();
    if (fStartError == 0) {
        WriteInBackground();
    } else {
        fEditor.reset();  // with what was begun
    }
    fIsCopied = fPathToWrite != fPath;
    return fStartError;
}

void FileImage::ForgetCopy() {
    if (!fIsCopied) return;
    fIsCopied = false;
    fTexts.clear();
    fDeIdentification = 0;
    fPathToWrite = fPath;
}

int32_t FileImage::BeginWriting() {
    if (fEditor == nullptr) fEditor = std::make_unique<Editor>(fPath, fSavedImages);
    for (const auto& [attribute, text] : fTexts) {
        fEditor->Set(attribute, text);
    }
    if (fDeIdentification != 0) fEditor->DeIdentify(fDeIdentification);
    return fEditor->BeginWriting(fPathToWrite);
}

// Without a thread to be had, it is written here.
void FileImage::WriteInBackground() {
    fWriting = std::make_shared<Writing>();
    fWriting->fFramesLeft = fEditor->GetFramesLeft();
    fWriting->fIsInPlace = fPathToWrite == fPath;
    fWriting->fInstanceUID = GetInstanceUID();
    auto write = [editor = std::make_shared<std::unique_ptr<Editor>>(std::move(fEditor)),
                  writing = fWriting] { Write(std::move(*editor), *writing); };
    try {
        fThread = std::async(std::launch::async, write);
        fThread.wait_for(kMoment);
    } catch (const std::system_error&) {
        write();
    }
}

// The file is closed before anybody is told that it is complete.
void FileImage::Write(std::unique_ptr<Editor> editor, Writing& writing) {
    int32_t error = 0;
    for (int32_t left = editor->GetFramesLeft(); left > 0 && error == 0 && !writing.fIsGivenUp;
         left = editor->GetFramesLeft()) {
        writing.fFramesLeft = left;
        error = editor->WriteNext();
    }
    editor.reset();
    writing.fResult = error;
    writing.fFramesLeft = 0;
}

bool FileImage::WaitUntilSaved() {
    if (fThread.valid()) fThread.wait();
    return fWriting != nullptr && GetError() == 0;
}

// ---- The picture ----

int32_t FileImage::GetImageWidth() const {
    const FilePicture* picture = FindPicture();
    return picture == nullptr ? 0 : picture->GetDescription().fColumns;
}

int32_t FileImage::GetImageHeight() const {
    const FilePicture* picture = FindPicture();
    return picture == nullptr ? 0 : picture->GetDescription().fRows;
}

int32_t FileImage::GetCycleLength() const {
    const FilePicture* picture = FindPicture();
    return picture == nullptr ? 0 : picture->GetDescription().fCycleLength;
}

void FileImage::SetCurrentFrame(int32_t frame) {
    fCurrentFrame = frame;
    if (fFrameListener) fFrameListener();
}

bool FileImage::BitmapToClipboard() {
    FilePicture* picture = FindPicture();
    return picture != nullptr && picture->PutOnClipboard(fCurrentFrame);
}

// A file that is being replaced is waited for.
void FileImage::OpenPicture() const {
    if (fThread.valid()) fThread.wait();
    if (fPicture == nullptr) fPicture = std::make_unique<FilePicture>(fPath);
}

// Null when there is none, which is found out once.
FilePicture* FileImage::FindPicture() const {
    if (fHasNoPicture) return nullptr;
    try {
        OpenPicture();
        return fPicture.get();
    } catch (Vantor::TException* thrown) {
        const std::unique_ptr<Vantor::TException> error(thrown);
    } catch (const std::exception&) {
        // Who wants to know why there is none opens it.
    }
    fHasNoPicture = true;
    return nullptr;
}

}  // namespace VantorCli
