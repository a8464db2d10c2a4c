#include "cli/TreeJson.h"

#include <vector>

#include "cli/Directories.h"
#include "cli/Instances.h"
#include "cli/JsonWriter.h"

namespace VantorCli {

namespace {

using namespace VantorWrappers;

// Writes what is below a directory.
class TreeWriter {
  public:
    explicit TreeWriter(JsonWriter& json) : fJson(json) {}

    void Write(const PatientDirRec& patient) {
        fJson.BeginObject();
        fJson.Add("name", patient.GetDicomPatientName());
        fJson.Add("id", patient.GetPatientNumber());
        fJson.BeginList("studies");
        std::vector<StudyDirRec> list;
        patient.GetStudies(list);
        for (const StudyDirRec& study : list) {
            Write(study);
        }
        fJson.EndList();
        fJson.EndObject();
    }

  private:
    void Write(const StudyDirRec& study) {
        fJson.BeginObject();
        fJson.Add("uid", study.GetStudyUID());
        fJson.Add("id", study.GetStudyID());
        fJson.Add("date", study.GetStoredStudyDate());
        fJson.Add("time", study.GetStudyTime());
        fJson.Add("description", study.GetStudyDescription());
        fJson.Add("accession", study.GetAccessionNumber());
        fJson.Add("modalities", study.GetModalities());
        fJson.Add("referringPhysician", study.GetReferringPhysician());
        fJson.BeginList("series");
        std::vector<SeriesDirRec> list;
        study.GetSeries(list);
        for (const SeriesDirRec& series : list) {
            Write(series);
        }
        fJson.EndList();
        fJson.EndObject();
    }

    void Write(const SeriesDirRec& series) {
        fJson.BeginObject();
        fJson.Add("uid", series.GetSeriesUID());
        fJson.Add("number", series.GetSeriesNumber());
        fJson.Add("modality", series.GetModality());
        fJson.Add("description", series.GetSeriesDescription());
        fJson.BeginList("instances");
        fInstances.ForEach(series, [this](const Instance& instance) { Write(instance); });
        fJson.EndList();
        fJson.EndObject();
    }

    void Write(const Instance& instance) {
        fJson.BeginObject();
        fJson.Add("kind", instance.fKind);
        fJson.Add("uid", instance.fUID);
        fJson.Add("classUID", instance.fClassUID);
        if (instance.fNumber) fJson.Add("number", *instance.fNumber);
        fJson.Add("path", instance.fPath);
        fJson.EndObject();
    }

    JsonWriter& fJson;
    Instances fInstances;
};

}  // namespace

void PrintTreeAsJson(const DicomDirectory& directory, Console& console) {
    JsonWriter json(console);
    json.BeginObject();
    json.Add("path", directory.GetFullPath());
    json.Add("displayName", Trimmed(directory.GetDisplayName()));
    json.Add("dirName", Trimmed(directory.GetDirName().value_or(HostString())));
    json.Add("kind", KindOf(HasDicomdir(directory)));
    json.BeginList("patients");
    TreeWriter writer(json);
    for (const PatientDirRec& patient : directory.GetPatientList()) {
        writer.Write(patient);
    }
    json.EndList();
    json.EndObject();
    json.EndLine();
}

}  // namespace VantorCli
