// A hostile medium as a host sees it: it is opened, all of its records are asked for their texts and for each
// other, and one series is deleted.

#include <memory>

#include "fuzz/HostileMedium.h"
#include "host/DamagedDirectory.h"
#include "platform/CodePage.h"
#include "platform/Registry.h"
#include "tests/support/FakeVolumes.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/DirectoriesMgr.h"
#include "wrappers/ImageDirRec.h"
#include "wrappers/PrivateDirRec.h"
#include "wrappers/RawDataDirRec.h"
#include "wrappers/StructReportDirRec.h"

namespace {

using namespace VantorWrappers;
using VantorFuzz::Require;

// A workstation that has nothing of the user's own.
class Surroundings {
  public:
    Surroundings() {
        const std::string drive = fFolder.MakeFolder("C") + "/";
        fVolumes.fDrives.push_back({drive, drive});
        // The host's message would end the process.
        VantorHost::DamagedDirectory::SetHandler([](const HostString&) {});
    }

  private:
    VantorTest::TestFolder fFolder;
    VantorTest::FakeVolumes fVolumes;
    Vantor::Platform::ReplacedRegistry fRegistry{fFolder.MakeFolder("SETTINGS")};
};

void AskInstances(const SeriesDirRec& series) {
    std::vector<ImageDirRec> images;
    series.GetImages(images);
    for (const ImageDirRec& image : images) {
        Require(image.GetSeriesUID() == series.GetSeriesUID() && image.IsSamePatient(image));
    }
    std::vector<StructReportDirRec> reports;
    series.GetSRs(reports);
    for (const StructReportDirRec& report : reports) report.IsQuantixReport();
    std::vector<RawDataDirRec> rawData;
    series.GetRawDataObjects(rawData);
    std::vector<PrivateDirRec> others;
    series.GetPrivateDicom(others);
}

void AskSeries(SeriesDirRec series) {
    AskInstances(series);
    series.HasQuantixReport();
    PatientDirRec patient;
    StudyDirRec study;
    series.GetStudyDirRec(study);
    series.GetPatientDirRec(patient);
    series.GetPatientName();
}

void AskAll(const DicomDirectory& directory) {
    for (const PatientDirRec& patient : directory.GetPatientList()) {
        Require(patient.GetPatientName().find(L'^') == HostString::npos);
        std::vector<StudyDirRec> studies;
        patient.GetStudies(studies);
        for (const StudyDirRec& study : studies)
            Require(study.GetPatientNumber() == patient.GetPatientNumber());
    }
    for (const StudyDirRec& study : directory.GetStudyList()) {
        PatientDirRec patient;
        study.GetPatientDirRec(patient);
        std::vector<SeriesDirRec> series;
        study.GetSeries(series);
        for (const SeriesDirRec& each : series) Require(each.GetStudyDate() == study.GetStudyDate());
    }
    for (const SeriesDirRec& series : directory.GetSeriesList()) AskSeries(series);
    directory.GetDisplayName();
    directory.GetDirectoryUID();
    directory.GetFileSpaceUsed();
}

void Browse(const HostString& path, size_t choice) {
    DirectoriesMgr manager(true, true, L"", false);
    const std::shared_ptr<DicomDirectory> directory = manager.OpenDirectory(path);
    if (directory == nullptr || !directory->IsValid()) return;
    AskAll(*directory);
    const std::vector<SeriesDirRec>& all = directory->GetSeriesList();
    if (all.empty()) return;
    const SeriesDirRec series = all[choice % all.size()];
    directory->DeleteSeries(series);
    AskAll(*directory);
    AskSeries(series);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Surroundings surroundings;
    VantorFuzz::Choices input(data, size);
    const uint8_t choice = input.Byte();
    const VantorFuzz::HostileMedium medium(input);
    // Nothing of it may be thrown at a host.
    Browse(Vantor::Platform::ToHostText(medium.GetDirectorySpec().fPath), choice);
    medium.RequireUntouchedSurroundings();
    return 0;
}
