// The folder of a hostile medium, or one of its files, is browsed without its DICOMDIR or with it, which is
// made anew, and looked through again.

#include "directory/TFolderDirectory.h"
#include "fuzz/HostileMedium.h"
#include "platform/FileSystem.h"

namespace {

using namespace Vantor;
using VantorFuzz::HostileMedium;
using VantorFuzz::Run;

constexpr uint8_t kWithoutDICOMDIR = 1, kOneFile = 2, kCreates = 4, kTakesOut = 8;

void Browse(const HostileMedium& medium, uint8_t choice) {
    const bool isFile = (choice & kOneFile) != 0;
    TFolderDirectory directory(isFile ? medium.GetPathsToEnter().front() : medium.GetFolder(), "",
                               isFile ? TFolderDirectory::kSingleFile : TFolderDirectory::kFolder);
    Run([&] { directory.LookAgain(); });
    Run([&] { directory.ReloadIfChanged(); });
    if ((choice & kTakesOut) != 0) directory.RemoveAllDocs();
    Run([&] { directory.ScanFiles(); });
    directory.GetFileSpaceUsed();
    if ((choice & kCreates) != 0) Run([&] { directory.CreateDICOMDIR(); });
    if (!directory.GetHasDICOMDIRflag()) return;
    directory.WriteDICOMDIR();
    if (!isFile && directory.HasWritten()) VantorFuzz::RequireSameWhenReadAgain(directory);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    VantorFuzz::Choices input(data, size);
    const uint8_t choice = input.Byte();
    const HostileMedium medium(input);
    if ((choice & kWithoutDICOMDIR) != 0) Platform::RemoveFile(medium.GetDirectorySpec().fPath);
    Run([&] { Browse(medium, choice); });
    medium.RequireUntouchedSurroundings();
    return 0;
}
