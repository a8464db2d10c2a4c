#include "cli/Console.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace VantorCli {

namespace {

constexpr size_t kWorthWriting = 65536;

}  // namespace

void Console::Print(std::string_view line) {
    fHeldBack += line;
    fHeldBack += '\n';
    if (fHeldBack.size() >= kWorthWriting) Write();
}

void Console::Flush() { Write(); }

void Console::Report(std::string_view line) {
    Write();
    std::string text = "vantor: ";
    text += line;
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

void Console::Write() {
    if (fHeldBack.empty()) return;
    errno = 0;
    const size_t written = std::fwrite(fHeldBack.data(), 1, fHeldBack.size(), stdout);
    const bool isComplete = written == fHeldBack.size() && std::fflush(stdout) == 0;
    fHeldBack.clear();
    if (isComplete) return;
    const int error = errno;
    throw OutputError("standard output: " + std::generic_category().message(error), error == EPIPE);
}

}  // namespace VantorCli
