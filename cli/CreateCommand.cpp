#include "cli/CreateCommand.h"

#include <algorithm>
#include <cstdint>

#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Directories.h"
#include "cli/EnteredFiles.h"
#include "cli/FileSetName.h"
#include "cli/Paths.h"
#include "cli/Table.h"
#include "platform/CodePage.h"

namespace VantorCli {

namespace {

constexpr size_t kShownSkipped = 20;

// The files that the DICOMDIR is to name, itself left out.
FolderContent ContentOf(const std::filesystem::path& folder) {
    FolderContent content = ListBelow(folder);
    std::erase(content.fFiles, FindDicomdir(folder));
    return content;
}

void PrintSkipped(const EnteredFiles& files, const HostString& folder, Console& console) {
    const auto& skipped = files.GetSkipped();
    Table table(0, {Table::Align::kLeft, Table::Align::kLeft, Table::Align::kLeft});
    for (size_t i = 0; i < std::min(skipped.size(), kShownSkipped); ++i) {
        table.AddRow("skipped", ToPrintable(RelativeTo(folder, skipped[i].fPath)), skipped[i].fReason);
    }
    table.Print(console);
    if (skipped.size() > kShownSkipped) {
        console.Print("and " + Grouped(skipped.size() - kShownSkipped) + " more");
    }
}

bool IsLowerCase(wchar_t character) { return character >= L'a' && character <= L'z'; }

// A DICOMDIR names its files in upper case.
void ReportLowerCase(const EnteredFiles& files, const HostString& folder, Console& console) {
    const auto& entered = files.GetEntered();
    const auto count = std::count_if(entered.begin(), entered.end(), [&](const HostString& path) {
        const HostString name = RelativeTo(folder, path);
        return std::any_of(name.begin(), name.end(), IsLowerCase);
    });
    if (count == 0) return;
    console.Report("note: " + Counted(static_cast<uint64_t>(count), "file has", "files have") +
                   " lower-case letters in the name; readers that tell case apart will not find " +
                   (count == 1 ? "it" : "them"));
}

}  // namespace

CommandLine CreateCommand::AddTo(const CommandLine& program) {
    const CommandLine line =
        program.AddCommand("create", "Write a DICOMDIR over the DICOM files of a folder");
    line.AddArgument("FOLDER", fFolder, "The folder that is to hold the DICOMDIR");
    line.AddOption("--name", "NAME", fName,
                   "Its File-set ID: up to 16 of A-Z, 0-9, blank and _;\nwithout, the folder's name")
        .Check(ProblemOfFileSetName);
    line.AddFlag("--force", fIsForced, "Replace a DICOMDIR that is there");
    line.AddFlag("--json", fIsJson, "One JSON object");
    line.SetFooter(
        "Every DICOM file in the folder and the folders below it is entered. Files that cannot be are left "
        "out\n"
        "and listed with the reason; the exit status is 0 all the same. The files themselves stay as they "
        "are.\n"
        "\n"
        "Example:\n"
        "  vantor create EXAM --name \"EXAM 12\"\n"
        "  vantor create EXAM --force --json");
    return line;
}

ExitStatus CreateCommand::Run(Console& console) {
    const std::filesystem::path folder = ToAbsolutePath(fFolder);
    if (!IsFolder(folder))
        throw CommandError(ToPrintable(Vantor::Platform::ToHostText(fFolder)) + ": no such folder");
    if (!fIsForced) RequireNoDicomdir(folder, "--force replaces it");
    const FolderContent content = ContentOf(folder);
    const HostString name = fName.empty() ? FileSetNameOf(folder) : Vantor::Platform::ToHostText(fName);

    Directories directories;
    EnteredFiles files(*directories.Prepare(folder, name), content.fFiles, console);
    for (const std::filesystem::path& unreadable : content.fUnreadable) {
        files.AddSkipped(ToHostText(unreadable), "this folder cannot be read");
    }
    Show(files, folder, console);
    return ExitStatus::kDone;
}

void CreateCommand::Show(const EnteredFiles& files, const std::filesystem::path& folder,
                         Console& console) const {
    const HostString folderText = ToHostText(folder);
    if (fIsJson) {
        console.Print(ToLine(files.ToJson()));
    } else {
        console.Print(files.ToText());
        PrintSkipped(files, folderText, console);
    }
    ReportLowerCase(files, folderText, console);
}

}  // namespace VantorCli
