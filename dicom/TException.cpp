#include "dicom/TException.h"

#include "dicom/TTextUtil.h"

namespace Vantor {

TException::TException(int32_t errorNumber, const char* text) : fErrorNumber(errorNumber), fErrorText() {
    TTextUtil().CopyCString(text, fErrorText, sizeof(fErrorText));
}

}  // namespace Vantor
