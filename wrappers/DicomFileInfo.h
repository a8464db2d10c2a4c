#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dicom/TFileSpec.h"
#include "dicom/Tags.h"
#include "wrappers/HostDateTime.h"
#include "wrappers/HostString.h"

namespace Vantor {
class TDicomDataSet;
class TDicomFile;
class TImageFile;
class TSRFile;
}  // namespace Vantor

namespace VantorWrappers {

// The identifying attributes of one DICOM file, read without going through a directory.
//
//     DicomFileInfo info(path);
//     info.Read();
//     HostString name = info.GetPatientName();
//
// The file is closed after Read; the attributes stay available. One thread at a time.
class DicomFileInfo {
  public:
    // An object without a file: every text is empty, everything else absent.
    DicomFileInfo();

    // Keeps the path; nothing is read yet.
    explicit DicomFileInfo(const HostString& path);
    ~DicomFileInfo();
    DicomFileInfo(const DicomFileInfo&) = delete;
    DicomFileInfo& operator=(const DicomFileInfo&) = delete;

    // Reads the file: a structured report whole, an image without its pixel data, anything else whole.
    // Throws Vantor::TException* (owned by the catcher) when it is no DICOM file, holds no data set, or a
    // damaged one that names neither instance, patient nor study, and Vantor::Platform::FileException when it
    // cannot be opened or read; also for a path longer than the library can hold. After a failure everything
    // is absent.
    void Read();

    // How Read took the file. Neither is set for other DICOM objects.
    bool IsSR() const { return fIsSR; }
    bool IsImage() const { return fIsImage; }

    // Releases the file and what was read of it; everything is absent afterwards. May be called twice; the
    // destructor does it too.
    void Dispose();

    // ---- Attributes ----
    // Each is looked up when asked for. Where the file is damaged in it or in front of it, so that nobody can
    // tell what or whether it is, the getters throw Vantor::TException* (owned by the catcher), number 102;
    // what stands before the damage can be had.

    // Text attributes as stored, up to a NUL, nothing trimmed; "" when absent. A text longer than the
    // standard allows is cut there, never inside a character of UTF-8.
    HostString GetUID() const;  // SOP Instance UID
    HostString GetSeriesUID() const;
    HostString GetSeriesDescription() const;
    HostString GetStudyID() const;
    HostString GetStudyUID() const;
    HostString GetStudyDescription() const;
    HostString GetAccessionNumber() const;
    HostString GetReferringPhysician() const;
    HostString GetModality() const;
    HostString GetPatientName() const;  // in DICOM form: family^given^middle^prefix^suffix
    HostString GetPatientId() const;

    // Numbers; −1 when absent or no number that fits.
    int32_t GetSeriesNumber() const;
    int32_t GetImageNumber() const;
    int32_t GetNumberOfFrames() const;

    // Dates (time of day 00:00:00); none when absent or empty. Throw FormatError
    // for a text that is no date.
    std::optional<HostDateTime> GetStudyDate() const;
    std::optional<HostDateTime> GetPatientBirthDate() const;
    std::optional<HostDateTime> GetContentDate() const;  // the study's date when it has none of its own

    // Dates with the time of day, in whole seconds; none when the date or the time is absent or empty. Throw
    // FormatError for a text that is no date or time.
    std::optional<HostDateTime> GetStudyTime() const;
    std::optional<HostDateTime> GetContentTime() const;  // the study's when it has none of its own

    // The classes and instances that the image was made from; empty when not recorded. The two lists need
    // not have the same length: an item that lacks a UID is left out.
    std::vector<HostString> GetSourceImageClassUIDs() const;
    std::vector<HostString> GetSourceImageInstanceUIDs() const;

    // Addition for hosts: a text of every element of the file, one a line, the meta information first,
    // pixel data included. `dictionary` is a dictionary text (see Vantor::TDicomDictionary) that names the
    // elements, or empty. Looks at the file again, through a view of it, so that its size costs no memory;
    // throws as Read does, and Vantor::TException* 106 when the system has no room for the view. When
    // elements cannot be walked to the end, `damage` says why and the text ends where the damage begins;
    // otherwise it is empty. Of a file beyond 2 GiB the part below is shown, and `damage` says so.
    std::string DumpElements(const std::string& dictionary, std::string& damage) const;

  private:
    void Initialize();
    Vantor::TFileSpec MakeFileSpec() const;
    bool ProbeForReport(const Vantor::TFileSpec& fileSpec);
    void ReadAsReport(const Vantor::TFileSpec& fileSpec);
    bool ReadAsImage(const Vantor::TFileSpec& fileSpec);
    void ReadAsOther(const Vantor::TFileSpec& fileSpec);
    HostString GetString(Vantor::Tag tag, uint32_t maxLength) const;
    int32_t GetInt(Vantor::Tag tag) const;
    std::optional<HostDateTime> GetDate(Vantor::Tag tag) const;
    std::optional<HostDateTime> GetTime(Vantor::Tag dateTag, Vantor::Tag timeTag) const;
    std::vector<HostString> GetSourceImageUIDs(Vantor::Tag tag) const;

    HostString fFilePath;
    Vantor::TDicomDataSet* fDicomDataSet = nullptr;  // belongs to the file that Read opened last
    bool fIsSR = false;
    bool fIsImage = false;
    std::unique_ptr<Vantor::TDicomFile> fDicomFile;
    std::unique_ptr<Vantor::TImageFile> fImageFile;
    std::unique_ptr<Vantor::TSRFile> fSRFile;
};

}  // namespace VantorWrappers
