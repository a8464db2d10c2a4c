// Lists the series of a DICOMDIR, or of a folder of DICOM files: list_directory PATH

#include <filesystem>
#include <iostream>

#include "platform/CodePage.h"
#include "wrappers/DirectoriesMgr.h"
#include "wrappers/SeriesDirRec.h"

using namespace VantorWrappers;
using Vantor::Platform::FromHostText;
using Vantor::Platform::ToHostText;

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: list_directory PATH\n";
        return 2;
    }
    // The manager finds the drives and remembers folders; whoever it hands a directory to may keep it.
    DirectoriesMgr manager(true, true, L"");
    const HostString path = ToHostText(std::filesystem::absolute(arguments[1]).string());
    const auto directory = manager.OpenDirectory(path);
    if (directory == nullptr || !directory->IsValid()) {
        std::cerr << arguments[1] << ": cannot be opened\n";
        return 1;
    }
    std::cout << FromHostText(directory->GetDisplayName()) << "\n";
    for (const SeriesDirRec& series : directory->GetSeriesList()) {
        std::cout << FromHostText(series.GetPatientName()) << "  " << FromHostText(series.GetModality())
                  << "  " << series.GetNumberDicomObjects() << " objects  "
                  << FromHostText(series.GetSeriesUID()) << "\n";
    }
    return 0;
}
