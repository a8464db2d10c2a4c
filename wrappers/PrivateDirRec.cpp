#include "wrappers/PrivateDirRec.h"

#include "records/TPrivateDoc.h"
#include "wrappers/NativeText.h"
#include "wrappers/RecordChange.h"

namespace VantorWrappers {

PrivateDirRec::PrivateDirRec(Vantor::TPrivateDoc* object, DicomDirectory& directory)
    : InstanceDirRec(directory) {
    UpdateFields(object);
}

void PrivateDirRec::UpdateFields(Vantor::TPrivateDoc* object) {
    if (object == nullptr) return TraceWarning(kNoNativeObject);
    TakeFields(*object);
    fDicomFilePath = ReadFilePath(*object);
}

}  // namespace VantorWrappers
