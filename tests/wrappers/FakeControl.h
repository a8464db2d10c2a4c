#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/AxDicomImage.h"
#include "platform/CodePage.h"
#include "tests/support/TestFolder.h"
#include "wrappers/HostString.h"

namespace VantorTest {

using VantorWrappers::HostString;

// Notes what it is told, and writes what it was told into the file.
class FakeControl final : public VantorHost::AxDicomImage {
  public:
    explicit FakeControl(HostString path) : fPath(std::move(path)) {}

    HostString GetPathName() const override { return Asked(fPath); }
    void SetSCPathName(const HostString& path) override { fTarget = path; }
    HostString GetInstanceUID() const override { return Asked(fInstanceUID); }
    void SetInstanceUID(const HostString& uid) override { Note("instance", fInstanceUID = uid); }
    HostString GetClassUID() const override { return Asked(fClassUID); }
    void SetSeriesUID(const HostString& uid) override { Note("series", uid); }
    void SetStudyUID(const HostString& uid) override { Note("study", uid); }
    void SetPatientName(const HostString& name) override { Note("name", name); }
    void SetPatientID(const HostString& number) override { Note("ID", number); }
    void SetStudyID(const HostString& studyID) override { Note("study ID", studyID); }
    void SetStudyName(const HostString& description) override { Note("study name", description); }
    void SetAccessionNumber(const HostString& number) override { Note("accession", number); }
    void SetSeriesNumber(const HostString& number) override { Note("series number", number); }
    void SetSeriesName(const HostString& description) override { Note("series name", description); }
    void SetImageNumber(int32_t number) override { Note("image", std::to_wstring(number)); }
    void DeIdentifyImage(int32_t level) override { Note("level", std::to_wstring(level)); }
    int32_t GetNumberOfFrames() const override { return fFrames; }
    int32_t SaveAs() override {
        if (fAtSave) fAtSave();
        if (fResult != 0) return fResult;
        WriteWholeFile(Vantor::Platform::FromHostText(fTarget), fNotes);
        return 0;
    }
    int32_t GetImagesToWrite() const override { return fPending[std::min(fPolls++, fPending.size() - 1)]; }
    int32_t GetSaveResult() const override { return fLateResult; }

    HostString fPath;
    HostString fTarget;
    HostString fInstanceUID;
    HostString fClassUID = L"1.2.840.10008.5.1.4.1.1.3.1";
    std::string fNotes;
    int32_t fFrames = 1;
    std::vector<int32_t> fPending = {0};
    int32_t fResult = 0;
    int32_t fLateResult = 0;
    std::function<void()> fAtSave;
    std::function<void()> fAtQuestion;
    mutable size_t fPolls = 0;

  private:
    const HostString& Asked(const HostString& answer) const {
        if (fAtQuestion) fAtQuestion();
        return answer;
    }
    void Note(const char* what, const HostString& text) {
        fNotes += std::string(what) + "=" + Vantor::Platform::FromHostText(text) + ";";
    }
};

}  // namespace VantorTest
