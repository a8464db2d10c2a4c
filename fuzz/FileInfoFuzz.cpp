// Arbitrary bytes as a file that a host asks for its attributes, and for a dump of all elements.

#include <string>

#include "fuzz/FuzzInput.h"
#include "platform/CodePage.h"
#include "tests/support/TestFolder.h"
#include "wrappers/DicomFileInfo.h"
#include "wrappers/HostDateTime.h"

namespace {

using VantorFuzz::Require;
using VantorFuzz::Run;
using VantorWrappers::DicomFileInfo;

constexpr char kDictionary[] = "(0010,0010)\tVR=\"PN\"\tName=\"Patient's Name\"\n";

template <typename Getter>
void Ask(const DicomFileInfo& info, Getter getter) {
    Run([&] {
        try {
            (info.*getter)();
        } catch (const VantorWrappers::FormatError&) {
        }
    });
}

void AskAll(const DicomFileInfo& info) {
    for (const auto getter :
         {&DicomFileInfo::GetUID, &DicomFileInfo::GetSeriesUID, &DicomFileInfo::GetSeriesDescription,
          &DicomFileInfo::GetStudyID, &DicomFileInfo::GetStudyUID, &DicomFileInfo::GetStudyDescription,
          &DicomFileInfo::GetAccessionNumber, &DicomFileInfo::GetReferringPhysician,
          &DicomFileInfo::GetModality, &DicomFileInfo::GetPatientName, &DicomFileInfo::GetPatientId}) {
        Ask(info, getter);
    }
    for (const auto getter :
         {&DicomFileInfo::GetSeriesNumber, &DicomFileInfo::GetImageNumber, &DicomFileInfo::GetNumberOfFrames})
        Ask(info, getter);
    for (const auto getter :
         {&DicomFileInfo::GetStudyDate, &DicomFileInfo::GetPatientBirthDate, &DicomFileInfo::GetContentDate,
          &DicomFileInfo::GetStudyTime, &DicomFileInfo::GetContentTime})
        Ask(info, getter);
    for (const auto getter :
         {&DicomFileInfo::GetSourceImageClassUIDs, &DicomFileInfo::GetSourceImageInstanceUIDs})
        Ask(info, getter);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const VantorTest::TestFolder folder;
    const std::string path = folder.WriteFile("file", VantorTest::Bytes(data, data + size));
    DicomFileInfo info(Vantor::Platform::ToHostText(path));
    bool isRead = false;
    Run([&] {
        info.Read();
        isRead = true;
    });
    AskAll(info);
    if (!isRead) Require(info.GetUID().empty() && !info.IsSR() && !info.IsImage());
    std::string damage;
    Run([&] {
        const std::string text = info.DumpElements(kDictionary, damage);
        Require(!text.empty() || !damage.empty());
    });
    info.Dispose();
    Require(info.GetUID().empty());
    return 0;
}
