#pragma once

#include <memory>
#include <string_view>

#include "dicom/TDicomFile.h"
#include "records/TDicomDoc.h"
#include "records/TPatientDoc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"

namespace Vantor {

// A file that may be entered into a directory, read as far as its records need it.
class FileToEnter {
  public:
    // The instance record that the file gets.
    enum class Kind { kImage, kReport, kRawData, kPrivate };

    // Reads the file and closes it. Null when it cannot be read as DICOM, and for a DICOMDIR.
    static std::unique_ptr<FileToEnter> Read(const TFileSpec& fileSpec);

    Kind GetKind() const { return fKind; }
    TDicomFile& GetFile() const { return *fFile; }
    const TDicomDataSet& GetDataSet() const { return *fFile->GetDataSet(); }

  private:
    FileToEnter(Kind kind, std::unique_ptr<TDicomFile> file) : fKind(kind), fFile(std::move(file)) {}

    Kind fKind;
    std::unique_ptr<TDicomFile> fFile;
};

// The records of one file, as four documents without a directory, each below the one before: patient, study,
// series and instance. A directory makes its own from them.
class FileRecords {
  public:
    // `fileID` is the file's place below the directory's folder. Throws TException 102, as CompleteRecord
    // does, when the file lacks what a record must have.
    FileRecords(const FileToEnter& file, std::string_view fileID);

    TDicomDoc& GetInstance() { return *fInstance; }

    // Takes the number that the series was given because its file has none away again: for directories that
    // number series by their place.
    void LeaveSeriesUnnumbered();

  private:
    TPatientDoc fPatient;
    TStudyDoc fStudy;
    TSeriesDoc fSeries;
    std::unique_ptr<TDicomDoc> fInstance;
    bool fHasSeriesNumber;
};

}  // namespace Vantor
