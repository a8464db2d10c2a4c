#include "cli/DrivesCommand.h"

#include "cli/Console.h"
#include "cli/Json.h"
#include "cli/Table.h"
#include "cli/Text.h"
#include "wrappers/DriveInfo.h"

namespace VantorCli {

namespace {

using VantorWrappers::DriveInfo;
using VantorWrappers::DriveType;

const char* NameOf(DriveType type) {
    switch (type) {
        case DriveType::kNoRoot:
            return "no root";
        case DriveType::kRemovable:
            return "removable";
        case DriveType::kFixed:
            return "fixed";
        case DriveType::kNetwork:
            return "network";
        case DriveType::kCdRom:
            return "cdrom";
        case DriveType::kRamDisk:
            return "ramdisk";
        case DriveType::kUnknown:
            break;
    }
    return "unknown";
}

Json ToJson(const DriveInfo& drive) {
    Json object;
    object["name"] = ToUtf8(drive.GetName());
    object["type"] = NameOf(drive.GetType());
    object["format"] = ToUtf8(drive.GetDriveFormat());
    object["label"] = ToUtf8(drive.GetVolumeLabel());
    object["ready"] = drive.IsReady();
    return object;
}

void AddRow(Table& table, const DriveInfo& drive) {
    table.AddRow(ToPrintable(drive.GetName()), NameOf(drive.GetType()),
                 drive.IsReady() ? ToPrintable(drive.GetDriveFormat()) : "not ready",
                 ToPrintable(drive.GetVolumeLabel()));
}

}  // namespace

CommandLine DrivesCommand::AddTo(const CommandLine& program) {
    const CommandLine line = program.AddCommand("drives", "List the drives of this computer");
    line.AddFlag("--json", fIsJson, "One JSON object a line for each drive");
    line.SetFooter(
        "Name, type, file system and label of each drive. One without a medium is not ready. Where drives "
        "are\n"
        "folders, the environment variable VANTOR_DRIVES may name others, with colons between them, each as\n"
        "FOLDER or FOLDER=TYPE,FORMAT,LABEL.\n"
        "\n"
        "Example:\n"
        "  vantor drives");
    return line;
}

ExitStatus DrivesCommand::Run(Console& console) {
    constexpr auto kLeft = Table::Align::kLeft;
    Table table(0, {kLeft, kLeft, kLeft, kLeft});
    const std::vector<DriveInfo> drives = DriveInfo::GetDrives();
    for (const DriveInfo& drive : drives) {
        if (fIsJson) {
            console.Print(ToLine(ToJson(drive)));
        } else {
            AddRow(table, drive);
        }
    }
    if (drives.empty() && !fIsJson) console.Print("no drives");
    table.Print(console);
    return ExitStatus::kDone;
}

}  // namespace VantorCli
