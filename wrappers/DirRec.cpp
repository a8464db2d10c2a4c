#include "wrappers/DirRec.h"

#include "wrappers/DicomDirectory.h"

namespace VantorWrappers {

DirRec::DirRec(DicomDirectory& directory) : fDicomDirectory(directory.GetLink()) {}

DicomDirectory* DirRec::GetValidDirectory() const {
    DicomDirectory* const directory = GetDicomDirectory();
    return directory != nullptr && directory->IsValid() ? directory : nullptr;
}

}  // namespace VantorWrappers
