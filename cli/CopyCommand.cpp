#include "cli/CopyCommand.h"

#include <filesystem>
#include <system_error>

#include "cli/CommandError.h"
#include "cli/Directories.h"
#include "cli/FileSetName.h"
#include "cli/Paths.h"
#include "platform/CodePage.h"

namespace VantorCli {

CommandLine CopyCommand::AddTo(const CommandLine& program) {
    const CommandLine line = program.AddCommand("copy", "Copy series into another DICOMDIR");
    line.AddArgument("SOURCE", fSource, "A DICOMDIR, a folder, or a DICOM file");
    line.AddArgument("DESTINATION", fDestination, "A DICOMDIR, or the folder that holds it");
    fCopying.AddOptions(line);
    line.AddOption("--create", "NAME", fNewName,
                   "Make the DICOMDIR first, with this File-set ID: up to\n16 of A-Z, 0-9, blank and _")
        .Check(ProblemOfFileSetName);
    line.SetFooter(
        "A series that is in the destination is not copied again. vantor tree tells the UIDs of series.\n"
        "\n"
        "Example:\n"
        "  vantor copy EXAM /media/usb --all --create \"EXAM 12\"\n"
        "  vantor copy EXAM /media/usb --series 1.2.3.4 1.2.3.5");
    return line;
}

ExitStatus CopyCommand::Run(Console& console) {
    Directories directories;
    const auto source = directories.Open(fSource);
    const auto series = fCopying.Choose(*source, console);
    if (!series) return ExitStatus::kFailed;
    return fCopying.CopyInto(*MakeDestination(directories), *series, console);
}

std::shared_ptr<DicomDirectory> CopyCommand::MakeDestination(Directories& directories) const {
    if (fNewName.empty()) return directories.OpenDicomdir(fDestination, "--create makes one");
    const std::filesystem::path folder = ToAbsolutePath(fDestination);
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!IsFolder(folder)) {
        throw CommandError(ToPrintable(ToHostText(folder)) + ": the folder cannot be made");
    }
    RequireNoDicomdir(folder, "leave out --create to copy into it");
    return directories.Create(folder, Vantor::Platform::ToHostText(fNewName));
}

}  // namespace VantorCli
