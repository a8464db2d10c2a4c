#include "cli/Program.h"

#include <CLI/CLI.hpp>
#include <new>
#include <string_view>

#include "cli/AddCommand.h"
#include "cli/CodecsCommand.h"
#include "cli/CommandError.h"
#include "cli/CopyCommand.h"
#include "cli/CreateCommand.h"
#include "cli/DamageFinding.h"
#include "cli/DeleteCommand.h"
#include "cli/DirsCommand.h"
#include "cli/DiscCommand.h"
#include "cli/DrivesCommand.h"
#include "cli/DumpCommand.h"
#include "cli/InfoCommand.h"
#include "cli/MotionJpeg.h"
#include "cli/MovieCommand.h"
#include "cli/SaveAsCommand.h"
#include "cli/SaveCommand.h"
#include "cli/SrCommand.h"
#include "cli/Text.h"
#include "cli/TreeCommand.h"
#include "dicom/TException.h"
#include "host/DamagedDirectory.h"
#include "host/Trace.h"

namespace VantorCli {

namespace {

using VantorHost::TraceArea;
using VantorHost::TraceLevel;

constexpr TraceLevel kTraceLevels[] = {TraceLevel::kError, TraceLevel::kWarning, TraceLevel::kInfo,
                                       TraceLevel::kVerbose};

// What the command line library calls the absence of something that is required.
constexpr char kRequiredError[] = "RequiredError";

std::vector<std::string> TraceLevelNames() {
    std::vector<std::string> names;
    for (const TraceLevel level : kTraceLevels) {
        names.emplace_back(NameOf(level));
    }
    return names;
}

// All commands of a command, also those that are not on the command line.
std::vector<CLI::App*> CommandsOf(CLI::App& app) {
    return app.get_subcommands([](CLI::App*) { return true; });
}

// What the help of each command has in common.
void CompleteHelp(CLI::App& app) {
    app.group("Commands");
    app.set_help_flag("-h,--help", "Show this help and exit");
    app.footer(app.get_footer() + "\n\nvantor --help tells of --trace and of the exit status.");
    for (CLI::App* command : CommandsOf(app)) CompleteHelp(*command);
}

}  // namespace

Program::Program()
    : fApp(std::make_unique<CLI::App>("Vantor: DICOM media for review workstations", "vantor")) {
    fApp->set_version_flag("--version", "vantor " VANTOR_VERSION, "Show the version and exit");
    fApp->set_help_flag("-h,--help", "Show this help and exit; each command has a help of its own");
    fApp->add_option("--trace", fTraceLevel, "Show the library's trace lines up to this level")
        ->type_name("LEVEL")
        ->check(CLI::IsMember(TraceLevelNames()));
    fApp->get_formatter()->label("SUBCOMMAND", "COMMAND");
    fApp->get_formatter()->label("Positionals", "Arguments");
    fApp->get_formatter()->label("REQUIRED", "");
    fApp->allow_windows_style_options(false);  // /exam/file.dcm is a path everywhere
    fApp->require_subcommand(1);
    fApp->fallthrough();
    fApp->footer(
        "The exit status is 0 when all is done, 1 when something failed, 2 for a wrong command line.\n"
        "\n"
        "Example:\n"
        "  vantor info EXAM/IMAGE0001.dcm\n"
        "  vantor info --help");
    Add(std::make_unique<InfoCommand>());
    Add(std::make_unique<DumpCommand>());
    Add(std::make_unique<TreeCommand>());
    Add(std::make_unique<CreateCommand>());
    Add(std::make_unique<AddCommand>());
    Add(std::make_unique<CopyCommand>());
    Add(std::make_unique<DeleteCommand>());
    Add(std::make_unique<SaveCommand>());
    Add(std::make_unique<SaveAsCommand>());
    Add(std::make_unique<SrCommand>());
    Add(std::make_unique<MovieCommand>());
    Add(std::make_unique<CodecsCommand>());
    Add(std::make_unique<DrivesCommand>());
    Add(std::make_unique<DirsCommand>());
    Add(std::make_unique<DiscCommand>());
}

Program::~Program() = default;

void Program::Add(std::unique_ptr<Command> command) {
    const CommandLine line = command->AddTo(CommandLine(*fApp));
    CompleteHelp(line.GetApp());
    fCommands.emplace_back(line, std::move(command));
}

// Whatever goes wrong is one line and a status, never a program that is ended by the system.
ExitStatus Program::Run(int argumentCount, char** arguments) {
    try {
        return ParseAndRun(argumentCount, arguments);
    } catch (const OutputError& error) {
        if (!error.IsClosed()) fConsole.Report(error.what());
    } catch (const CommandError& error) {
        fConsole.Report(error.what());
    } catch (Vantor::TException* thrown) {
        const std::unique_ptr<Vantor::TException> error(thrown);
        fConsole.Report(ToPrintable(error->GetErrorText()));
    } catch (const std::bad_alloc&) {
        fConsole.Report("not enough memory");
    } catch (const std::exception& error) {
        fConsole.Report(ToPrintable(error.what()));
    }
    return ExitStatus::kFailed;
}

ExitStatus Program::ParseAndRun(int argumentCount, char** arguments) {
    try {
        fApp->parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return ReportParseError(error);
    }
    return RunCommand();
}

// Help and version come as exceptions too; they are no errors.
ExitStatus Program::ReportParseError(const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        return fApp->exit(error) == 0 ? ExitStatus::kDone : ExitStatus::kFailed;
    }
    CLI::App* command = fApp.get();
    std::string name = fApp->get_name();
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
        name += " " + command->get_name();
    }
    const std::string problem = CommandsOf(*command).empty() ? error.what() : ProblemWithoutCommand(error);
    fConsole.Report(ToPrintable(problem) + " (" + name + " --help tells more)");
    return ExitStatus::kWrongUsage;
}

std::string Program::ProblemWithoutCommand(const CLI::ParseError& error) const {
    const std::vector<std::string> unknown = fApp->remaining();
    if (!unknown.empty()) return "no such command or option: " + unknown.front();
    return error.get_name() == kRequiredError ? "a command is required" : error.what();
}

void Program::StartTracing() {
    if (fTraceLevel.empty()) return;
    VantorHost::Trace::SetSink([this](TraceArea area, TraceLevel level, std::string_view text) {
        fConsole.Report(std::string(NameOf(area)) + ": " + NameOf(level) + ": " + ToPrintable(text));
    });
    for (const TraceLevel level : kTraceLevels) {
        if (fTraceLevel == NameOf(level)) VantorHost::Trace::SetLevelOfAllAreas(level);
    }
}

ExitStatus Program::RunCommand() {
    StartTracing();
    VantorHost::DamagedDirectory::SetHandler(ThrowFinding);
    MotionJpeg::Register();
    ExitStatus status = ExitStatus::kDone;
    for (const auto& [line, command] : fCommands) {
        if (line.IsGiven()) status = command->Run(fConsole);
    }
    fConsole.Flush();
    return status;
}

}  // namespace VantorCli
