#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace VantorCli {

class Console;

// Tells a person at a terminal how far long work has come: a bar on standard error, once the work has taken
// half a second. Nothing when standard error is no terminal. Gone when this object goes.
class Progress {
  public:
    // `total` things are to be done, such as "files"; without a word for them their number is not shown. The
    // console must outlive this object.
    Progress(Console& console, uint64_t total, std::string things);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Other things are to be done from here on.
    void GoOnWith(uint64_t total, std::string things);

    // So many are done.
    void SetDone(uint64_t done);

  private:
    std::string BarAt(uint64_t done) const;

    Console& fConsole;
    uint64_t fTotal;
    std::string fThings;
    bool fIsShown;  // there is a terminal to show it on
    std::chrono::steady_clock::time_point fNextShow;
};

}  // namespace VantorCli
