#include "cli/DiscCommand.h"

#include "cli/DiscBurnCommand.h"
#include "cli/DiscClearCommand.h"
#include "cli/DiscStageCommand.h"
#include "cli/DiscStatusCommand.h"
#include "cli/DiscViewerCommand.h"

namespace VantorCli {

CommandLine DiscCommand::AddTo(const CommandLine& program) {
    const CommandLine line = program.AddCommand("disc", "Stage series for a CD or DVD, and burn it");
    line.RequireCommand();
    line.SetFooter(
        "What is to be burned is put into a folder first, the staging area: with stage, and with copy,\n"
        "save-as and every other program. All that is in there comes on the disc.\n"
        "\n"
        "On Windows the staging area and the drive are those of the system. Elsewhere the program xorriso\n"
        "burns the disc, in the first drive that writes discs. Environment variables name others:\n"
        "  VANTOR_RECORDER   a drive, such as /dev/sr0, or the full path of an ISO image, which is written "
        "in\n"
        "                    place of a disc; one that is there is replaced\n"
        "  VANTOR_DISC_AREA  the full path of the staging area; without it, vantor/disc in the user's data\n"
        "                    folder\n"
        "\n"
        "Example:\n"
        "  vantor disc status\n"
        "  vantor disc stage EXAM --all\n"
        "  vantor disc burn\n"
        "  vantor disc clear");
    std::unique_ptr<Command> commands[] = {
        std::make_unique<DiscStatusCommand>(), std::make_unique<DiscStageCommand>(),
        std::make_unique<DiscViewerCommand>(), std::make_unique<DiscBurnCommand>(),
        std::make_unique<DiscClearCommand>()};
    for (auto& command : commands) {
        CommandLine own = command->AddTo(line);
        fCommands.emplace_back(own, std::move(command));
    }
    return line;
}

ExitStatus DiscCommand::Run(Console& console) {
    ExitStatus status = ExitStatus::kDone;
    for (const auto& [line, command] : fCommands) {
        if (line.IsGiven()) status = command->Run(console);
    }
    return status;
}

}  // namespace VantorCli
