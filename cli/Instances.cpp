#include "cli/Instances.h"

namespace VantorCli {

namespace {

using namespace VantorWrappers;

template <typename Record>
Instance MakeInstance(const char* kind, const Record& record, const HostString& path) {
    return {kind, record.GetInstanceUID(), record.GetClassUID(), path, std::nullopt};
}

Instance ToInstance(const ImageDirRec& record) {
    Instance image = MakeInstance("image", record, record.GetImagePath());
    image.fNumber = record.GetImageNumber();
    return image;
}
Instance ToInstance(const StructReportDirRec& record) {
    return MakeInstance("sr", record, record.GetSRPath());
}
Instance ToInstance(const RawDataDirRec& record) {
    return MakeInstance("raw", record, record.GetRawDataPath());
}
Instance ToInstance(const PrivateDirRec& record) {
    return MakeInstance("private", record, record.GetDicomFile());
}

template <typename Record>
void Visit(const std::vector<Record>& records, const std::function<void(const Instance&)>& visit) {
    for (const Record& record : records) {
        visit(ToInstance(record));
    }
}

}  // namespace

void Instances::ForEach(const SeriesDirRec& series, const std::function<void(const Instance&)>& visit) {
    series.GetImages(fImages);
    Visit(fImages, visit);
    series.GetSRs(fReports);
    Visit(fReports, visit);
    series.GetRawDataObjects(fRawData);
    Visit(fRawData, visit);
    series.GetPrivateDicom(fPrivate);
    Visit(fPrivate, visit);
}

}  // namespace VantorCli
