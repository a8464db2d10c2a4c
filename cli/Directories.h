#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "cli/Text.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/DirectoriesMgr.h"

namespace VantorCli {

using VantorWrappers::DicomDirectory;
using VantorWrappers::DirectoriesMgr;

// The directories that a command works with, wherever they are: a manager that looks at no drives, unless
// another is given. What cannot be had ends in a CommandError.
class Directories {
  public:
    // A viewer's manager looks at one drive only, here at none.
    Directories() : Directories(std::make_unique<DirectoriesMgr>(true, true, HostString())) {}

    explicit Directories(std::unique_ptr<DirectoriesMgr> manager) : fManager(std::move(manager)) {}

    DirectoriesMgr& GetManager() { return *fManager; }

    // A DICOMDIR, or the one in a folder; else the DICOM files below a folder, or a single file, of which
    // there must be one.
    std::shared_ptr<DicomDirectory> Open(const std::string& path);

    // A whole DICOMDIR, or the one in a folder. `advice` tells how to make one.
    std::shared_ptr<DicomDirectory> OpenDicomdir(const std::string& path, const char* advice);

    // A new, empty DICOMDIR in a folder that exists, in place of one that may be there.
    std::shared_ptr<DicomDirectory> Create(const std::filesystem::path& folder,
                                           const HostString& fileSetName);

    // The same, which is not written before it is saved; what is there stays until then.
    std::shared_ptr<DicomDirectory> Prepare(const std::filesystem::path& folder,
                                            const HostString& fileSetName);

  private:
    template <typename Maker>
    std::shared_ptr<DicomDirectory> Make(const std::filesystem::path& folder, Maker maker);
    std::shared_ptr<DicomDirectory> OpenAny(const std::string& path);

    std::unique_ptr<DirectoriesMgr> fManager;
};

// What to tell of a DICOMDIR that has lost records, as one that was cut short; empty for a whole one, and for
// a folder without.
std::string FindLoss(const DicomDirectory& directory);

// Ends the command, which would give up what is lost, or pass by it, when the DICOMDIR has lost records.
void RequireWhole(const DicomDirectory& directory);

// True when the records are those of a DICOMDIR, also for one that was found in a folder.
bool HasDicomdir(const DicomDirectory& directory);

// What scripts call that.
inline const char* KindOf(bool hasDicomdir) { return hasDicomdir ? "dicomdir" : "folder"; }

// Ends the command when there is a DICOMDIR in the folder. `advice` tells what to do then.
void RequireNoDicomdir(const std::filesystem::path& folder, const char* advice);

}  // namespace VantorCli
