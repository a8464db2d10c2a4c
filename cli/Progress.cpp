#include "cli/Progress.h"

#include <algorithm>
#include <utility>

#include "cli/Console.h"
#include "platform/Console.h"

namespace VantorCli {

namespace {

constexpr std::chrono::milliseconds kShortWork(500);
constexpr std::chrono::milliseconds kBetweenShows(100);
constexpr size_t kBarWidth = 30;
constexpr double kPercent = 100;

}  // namespace

Progress::Progress(Console& console, uint64_t total, std::string things)
    : fConsole(console),
      fTotal(total),
      fThings(std::move(things)),
      fIsShown(Vantor::Platform::IsErrorTerminal()),
      fNextShow(std::chrono::steady_clock::now() + kShortWork) {}

Progress::~Progress() { fConsole.ClearStatus(); }

void Progress::GoOnWith(uint64_t total, std::string things) {
    fTotal = total;
    fThings = std::move(things);
}

void Progress::SetDone(uint64_t done) {
    if (!fIsShown || done >= fTotal) return;
    const auto now = std::chrono::steady_clock::now();
    if (now < fNextShow) return;
    fConsole.ShowStatus(BarAt(done));
    fNextShow = now + kBetweenShows;
}

// [##########....................]  33%  1 of 3 files
std::string Progress::BarAt(uint64_t done) const {
    const double part = static_cast<double>(done) / static_cast<double>(fTotal);
    std::string bar(static_cast<size_t>(part * kBarWidth), '#');
    bar.resize(kBarWidth, '.');
    const std::string percent = std::to_string(static_cast<int>(part * kPercent)) + "%";
    constexpr size_t kPercentWidth = 5;
    bar = "[" + bar + "]" + std::string(kPercentWidth - percent.size(), ' ') + percent;
    if (fThings.empty()) return bar;
    return bar + "  " + std::to_string(done) + " of " + std::to_string(fTotal) + " " + fThings;
}

}  // namespace VantorCli
