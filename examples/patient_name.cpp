// Prints the patient's name of a DICOM file: a whole host in thirty lines, built against the installed
// library.

#include <iostream>
#include <memory>

#include "dicom/TException.h"
#include "platform/CodePage.h"
#include "platform/FileException.h"
#include "wrappers/DicomFileInfo.h"

using Vantor::TException;
using namespace Vantor::Platform;

int main(int count, char** arguments) {
    if (count != 2) return 2;
    try {
        VantorWrappers::DicomFileInfo info(ToHostText(arguments[1]));
        info.Read();
        std::cout << FromHostText(info.GetPatientName()) << "\n";
        return 0;
    } catch (TException* thrown) {
        std::unique_ptr<TException> error(thrown);
        std::cerr << arguments[1] << ": " << error->GetErrorText() << "\n";
    } catch (const FileException& error) {
        std::cerr << error.what() << "\n";
    }
    return 1;
}
