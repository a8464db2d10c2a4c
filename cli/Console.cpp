#include "cli/Console.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace VantorCli {

namespace {

constexpr size_t kWorthWriting = 65536;

}  // namespace

void Console::Print(std::string_view line) {
    PrintPart(line);
    PrintPart("\n");
}

void Console::PrintPart(std::string_view part) {
    fHeldBack += part;
    if (fHeldBack.size() >= kWorthWriting) Flush();
}

void Console::Flush() {
    Write();
    if (fFailure) throw *fFailure;
}

void Console::Report(std::string_view line) {
    Write();
    ClearStatus();
    std::string text = "vantor: ";
    text += line;
    text += '\n';
    WriteError(text);
}

// What is left of a longer status is covered with blanks, which every terminal knows.
void Console::ShowStatus(std::string_view text) {
    std::string line = "\r";
    line += text;
    if (text.size() < fStatusWidth) line.append(fStatusWidth - text.size(), ' ');
    WriteError(line);
    fStatusWidth = text.size();
}

void Console::ClearStatus() {
    if (fStatusWidth == 0) return;
    ShowStatus("");
    WriteError("\r");
}

void Console::WriteError(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

void Console::Write() {
    if (fHeldBack.empty() || fFailure) return;
    ClearStatus();  // both may be the same terminal
    errno = 0;
    const size_t written = std::fwrite(fHeldBack.data(), 1, fHeldBack.size(), stdout);
    const bool isComplete = written == fHeldBack.size() && std::fflush(stdout) == 0;
    fHeldBack.clear();
    if (isComplete) return;
    const int error = errno;
    fFailure.emplace("standard output: " + std::generic_category().message(error), error == EPIPE);
}

}  // namespace VantorCli
