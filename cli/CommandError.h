#pragma once

#include <exception>
#include <string>
#include <utility>

namespace VantorCli {

// Ends a command that cannot go on, with the line that tells the user why: UTF-8 that is fit to be printed.
class CommandError : public std::exception {
  public:
    explicit CommandError(std::string line) : fLine(std::move(line)) {}
    const char* what() const noexcept override { return fLine.c_str(); }

  private:
    std::string fLine;
};

}  // namespace VantorCli
