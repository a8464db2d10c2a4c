#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace VantorCli {

// An option or a flag of a command, to say more of it.
class CommandOption {
  public:
    explicit CommandOption(CLI::Option* option) : fOption(option) {}

    const CommandOption& Require() const;
    // Has texts refused for which `problemOf` has something to say.
    const CommandOption& Check(std::string (*problemOf)(const std::string& text)) const;
    const CommandOption& Need(const CommandOption& other) const;
    const CommandOption& Exclude(const CommandOption& other) const;

  private:
    CLI::Option* fOption;
};

// What a command may be told: its arguments, its options, its own commands, and the help about them. It
// refers to a part of the program's command line, and can be copied. What is given comes into the fields that
// are named here, which must outlive the program's command line. The library that parses is known to this
// class and to Program alone: it takes compilers a long time.
class CommandLine {
  public:
    explicit CommandLine(CLI::App& app) : fApp(&app) {}

    CommandLine AddCommand(const std::string& name, const std::string& help) const;
    void RequireCommand() const;

    // What has to be given, without a name before it; in a list at least one.
    void AddArgument(const std::string& name, std::string& text, const std::string& help) const;
    void AddArgument(const std::string& name, std::vector<std::string>& texts, const std::string& help) const;

    // "--name", and what the help calls its value.
    CommandOption AddOption(const std::string& name, const std::string& value, std::string& text,
                            const std::string& help) const;
    CommandOption AddOption(const std::string& name, const std::string& value,
                            std::vector<std::string>& texts, const std::string& help) const;
    CommandOption AddOption(const std::string& name, const std::string& value, int32_t& number,
                            const std::string& help) const;
    CommandOption AddOption(const std::string& name, const std::string& value,
                            const std::function<void(const std::string&)>& take,
                            const std::string& help) const;
    CommandOption AddFlag(const std::string& name, bool& isGiven, const std::string& help) const;

    // Has command lines refused for which, when all is parsed, `problem` has something to say.
    void Check(const std::function<std::string()>& problem) const;

    // What the help ends with.
    void SetFooter(const std::string& text) const;

    // True when the command line that was parsed has this command.
    bool IsGiven() const;

    CLI::App& GetApp() const { return *fApp; }

  private:
    CLI::App* fApp;
};

}  // namespace VantorCli
