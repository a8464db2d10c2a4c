#pragma once

namespace VantorCli {

// While it is alive, Ctrl-C and the wish of the system to end the program do not end it at once, so that what
// is half done can be taken away. One at a time.
class Interruption {
  public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    // True when the program is to end.
    static bool HasCome();

    // Ends the program as it would have ended without this object. Returns when it is not to end.
    static void Pass();
};

}  // namespace VantorCli
