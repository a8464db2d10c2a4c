#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace VantorCli {

// Standard output could not be written. `isClosed` when whoever read it has gone, as `| head` does: then
// there is nobody left to tell.
class OutputError : public std::runtime_error {
  public:
    OutputError(const std::string& what, bool isClosed) : std::runtime_error(what), fIsClosed(isClosed) {}
    bool IsClosed() const { return fIsClosed; }

  private:
    bool fIsClosed;
};

// Standard output and standard error, in UTF-8. What is printed is held back until there is enough of it to
// be worth a write, or until something is reported, so that both come in the order they were made.
class Console {
  public:
    Console() = default;
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    // Prints a line on standard output. Throws OutputError.
    void Print(std::string_view line);

    // Prints a part of a line, of which more or an empty line follows. Throws OutputError.
    void PrintPart(std::string_view part);

    // Writes what was held back. To be called at the end. Throws OutputError.
    void Flush();

    // Writes a line on standard error, after the program's name: "vantor: FILE: file not found". Never throws
    // OutputError: what was held back and cannot be written is told by the next Print or Flush.
    void Report(std::string_view line);

    // Shows a text on standard error that stays until anything else is written, in place of the one shown
    // before. For terminals only, and for less than a line of printable ASCII.
    void ShowStatus(std::string_view text);
    void ClearStatus();

  private:
    void Write();
    void WriteError(std::string_view text);

    size_t fStatusWidth = 0;  // 0 while no status is shown
    std::string fHeldBack;
    std::optional<OutputError> fFailure;  // of the first write that failed
};

}  // namespace VantorCli
