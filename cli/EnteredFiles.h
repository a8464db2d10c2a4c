#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/Json.h"
#include "cli/Text.h"
#include "wrappers/DicomDirectory.h"

namespace VantorCli {

class Console;

// Files that were entered into a DICOMDIR, and those that were not.
class EnteredFiles {
  public:
    struct Skipped {
        HostString fPath;
        std::string fReason;  // UTF-8 that is fit to be printed
    };

    // Enters files in one update; their paths are full ones. Nothing is written when none can be entered,
    // unless the DICOMDIR is a new one. Throws CommandError when the DICOMDIR cannot be opened or written.
    EnteredFiles(VantorWrappers::DicomDirectory& directory, const std::vector<std::filesystem::path>& files,
                 Console& console);

    void AddSkipped(const HostString& path, const std::string& reason) { fSkipped.push_back({path, reason}); }

    const std::vector<HostString>& GetEntered() const { return fEntered; }
    const std::vector<Skipped>& GetSkipped() const { return fSkipped; }

    Json ToJson() const;

    // "/exam/DICOMDIR: 12 files entered, 3 skipped"
    std::string ToText() const;

  private:
    HostString fDicomdir;
    std::vector<HostString> fEntered;
    std::vector<Skipped> fSkipped;
};

}  // namespace VantorCli
