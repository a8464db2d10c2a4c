#include "cli/CommandLine.h"

#include <CLI/CLI.hpp>

namespace VantorCli {

namespace {

template <typename Field>
void AddArgumentTo(CLI::App& app, const std::string& name, Field& field, const std::string& help) {
    app.add_option(name, field, help)->required()->type_name("");
}

template <typename Field>
CommandOption AddOptionTo(CLI::App& app, const std::string& name, const std::string& value, Field& field,
                          const std::string& help) {
    return CommandOption(app.add_option(name, field, help)->type_name(value));
}

}  // namespace

const CommandOption& CommandOption::Require() const {
    fOption->required();
    return *this;
}

const CommandOption& CommandOption::Check(std::string (*problemOf)(const std::string& text)) const {
    fOption->check(problemOf, "");
    return *this;
}

const CommandOption& CommandOption::Need(const CommandOption& other) const {
    fOption->needs(other.fOption);
    return *this;
}

const CommandOption& CommandOption::Exclude(const CommandOption& other) const {
    fOption->excludes(other.fOption);
    return *this;
}

CommandLine CommandLine::AddCommand(const std::string& name, const std::string& help) const {
    return CommandLine(*fApp->add_subcommand(name, help));
}

void CommandLine::RequireCommand() const { fApp->require_subcommand(1); }

void CommandLine::AddArgument(const std::string& name, std::string& text, const std::string& help) const {
    AddArgumentTo(*fApp, name, text, help);
}

void CommandLine::AddArgument(const std::string& name, std::vector<std::string>& texts,
                              const std::string& help) const {
    AddArgumentTo(*fApp, name, texts, help);
}

CommandOption CommandLine::AddOption(const std::string& name, const std::string& value, std::string& text,
                                     const std::string& help) const {
    return AddOptionTo(*fApp, name, value, text, help);
}

CommandOption CommandLine::AddOption(const std::string& name, const std::string& value,
                                     std::vector<std::string>& texts, const std::string& help) const {
    return AddOptionTo(*fApp, name, value, texts, help);
}

CommandOption CommandLine::AddOption(const std::string& name, const std::string& value, int32_t& number,
                                     const std::string& help) const {
    return AddOptionTo(*fApp, name, value, number, help);
}

CommandOption CommandLine::AddOption(const std::string& name, const std::string& value,
                                     const std::function<void(const std::string&)>& take,
                                     const std::string& help) const {
    return CommandOption(fApp->add_option_function<std::string>(name, take, help)->type_name(value));
}

CommandOption CommandLine::AddFlag(const std::string& name, bool& isGiven, const std::string& help) const {
    return CommandOption(fApp->add_flag(name, isGiven, help));
}

void CommandLine::Check(const std::function<std::string()>& problem) const {
    fApp->final_callback([problem] {
        const std::string text = problem();
        if (!text.empty()) throw CLI::ValidationError(text);
    });
}

void CommandLine::SetFooter(const std::string& text) const { fApp->footer(text); }

bool CommandLine::IsGiven() const { return fApp->parsed(); }

}  // namespace VantorCli
