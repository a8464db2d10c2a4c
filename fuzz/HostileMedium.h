#pragma once

#include <string>
#include <vector>

#include "dicom/TFileSpec.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/DirectoryBuilder.h"
#include "tests/support/TestFolder.h"

namespace Vantor {
class TDicomDirectory;
}  // namespace Vantor

namespace VantorFuzz {

// A medium on disk, made of a fuzzer's input: a DICOMDIR with anything in it, and beside it files that it may
// or may not name. The first bytes choose between a DICOMDIR that is all input and one composed of records
// with any links, of which the bytes that remain change some.
//
// It lies deep in a folder in which nothing else may change, however its records climb.
class HostileMedium {
  public:
    // Takes what it needs off the input.
    explicit HostileMedium(Choices& input);

    Vantor::TFileSpec GetDirectorySpec() const;

    // The full paths of the files beside the DICOMDIR that can be entered.
    std::vector<std::string> GetPathsToEnter() const;

    // The folder that the DICOMDIR is in, without a separator at the end.
    std::string GetFolder() const;

    // An empty medium elsewhere in the folder, to copy to.
    Vantor::TFileSpec MakeTarget() const;

    // A finding when anything outside the medium and the target has changed, or when a file has come up that
    // an update leaves behind.
    void RequireUntouchedSurroundings() const;

  private:
    void Clear() const;
    VantorTest::Bytes Compose(Choices& input) const;
    void WriteFiles(Choices& input) const;
};

// A finding when other records come back from the DICOMDIR that was just written, or when reading and writing
// it once more changes it.
void RequireSameWhenReadAgain(Vantor::TDicomDirectory& directory);

}  // namespace VantorFuzz
