#include "dicom/TFileSpec.h"

#include <algorithm>

namespace Vantor {

TFileSpec::TFileSpec(std::string_view path, Platform::StructuredStorage* storage) : fStorage(storage) {
    path = path.substr(0, kPathSize - 1);
    std::copy(path.begin(), path.end(), fPath);
}

}  // namespace Vantor
