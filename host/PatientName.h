#pragma once

#include <functional>
#include <string>
#include <utility>

namespace VantorHost {

// A person's name, of a patient or of a physician.
class PatientName {
  public:
    PatientName() = default;

    // The name as DICOM has it: family^given^middle^prefix^suffix, and up to three such groups with `=`
    // between them: in letters, in characters such as Kanji, and by sound.
    explicit PatientName(std::wstring dicomName) : fDicomName(std::move(dicomName)) {}

    // The text that it was made of, unchanged.
    const std::wstring& GetDicomPatientName() const { return fDicomName; }

    // The name for people to read. By default, from the first group that is not empty:
    //     Adams^John Robert Quincy^^Rev.^B.A. M.Div.   Adams, Rev. John Robert Quincy, B.A. M.Div.
    std::wstring GetDisplayablePatientName() const;

    // How the host makes the displayable form of a name in DICOM form; empty for the default.
    using Formatter = std::function<std::wstring(const std::wstring& dicomName)>;
    static void SetFormatter(Formatter formatter);

  private:
    std::wstring fDicomName;
};

}  // namespace VantorHost
