#pragma once

#include <memory>
#include <string>
#include <utility>

#include "host/AxDicomImage.h"
#include "wrappers/ImageFileEditor.h"

// The least that an image control is: it saves its image with other attributes, at once, and shows no
// picture.
class EditedImage final : public VantorHost::AxDicomImage {
  public:
    // `savedImages`: shared by all images that are saved together.
    EditedImage(std::wstring path, std::shared_ptr<VantorWrappers::SavedImages> savedImages)
        : fPath(std::move(path)), fPathToWrite(fPath), fEditor(fPath, std::move(savedImages)) {}

    std::wstring GetPathName() const override { return fPath; }
    void SetSCPathName(const std::wstring& path) override { fPathToWrite = path; }

    std::wstring GetInstanceUID() const override { return fEditor.GetInstanceUID(); }
    std::wstring GetClassUID() const override { return fEditor.GetClassUID(); }
    int32_t GetNumberOfFrames() const override { return fEditor.GetNumberOfFrames(); }

    void SetInstanceUID(const std::wstring& uid) override { fEditor.Set(Attribute::kInstanceUID, uid); }
    void SetSeriesUID(const std::wstring& uid) override { fEditor.Set(Attribute::kSeriesUID, uid); }
    void SetStudyUID(const std::wstring& uid) override { fEditor.Set(Attribute::kStudyUID, uid); }
    void SetPatientName(const std::wstring& name) override { fEditor.Set(Attribute::kPatientName, name); }
    void SetPatientID(const std::wstring& number) override { fEditor.Set(Attribute::kPatientID, number); }
    void SetStudyID(const std::wstring& id) override { fEditor.Set(Attribute::kStudyID, id); }
    void SetStudyName(const std::wstring& text) override { fEditor.Set(Attribute::kStudyDescription, text); }
    void SetAccessionNumber(const std::wstring& text) override {
        fEditor.Set(Attribute::kAccessionNumber, text);
    }
    void SetSeriesNumber(const std::wstring& text) override { fEditor.Set(Attribute::kSeriesNumber, text); }
    void SetSeriesName(const std::wstring& text) override {
        fEditor.Set(Attribute::kSeriesDescription, text);
    }
    void SetImageNumber(int32_t number) override {
        fEditor.Set(Attribute::kImageNumber, std::to_wstring(number));
    }
    void DeIdentifyImage(int32_t level) override { fEditor.DeIdentify(level); }

    int32_t SaveAs() override {
        int32_t error = fEditor.BeginWriting(fPathToWrite);
        while (error == 0 && fEditor.GetFramesLeft() > 0) error = fEditor.WriteNext();
        return error;
    }
    int32_t GetImagesToWrite() const override { return 0; }

  private:
    using Attribute = VantorWrappers::ImageFileEditor::Attribute;

    std::wstring fPath;
    std::wstring fPathToWrite;
    VantorWrappers::ImageFileEditor fEditor;
};
