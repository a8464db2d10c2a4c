#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/posix/Descriptor.h"

namespace Vantor::Platform {

// The path of a program, from the folders in PATH; empty when there is none of that name.
std::string FindProgram(const std::string& name);

// A program of the system that works for this one. It is ended when this object goes before it.
class ChildProcess {
  public:
    // Starts the program at a path, with nothing to read. Throws FileException.
    ChildProcess(const std::string& path, const std::vector<std::string>& arguments);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // The next line of what it prints, on whichever output; lines may end with a carriage return alone, as
    // those do that a terminal shows in place of each other. None when it has closed its outputs.
    std::optional<std::string> ReadLine();

    // Waits for its end. True when it ended by itself, with status 0; false also when that cannot be told,
    // because the host lets the system forget its children.
    bool EndsWell();

  private:
    bool ReadMore();

    static constexpr pid_t kNone = -1;

    Descriptor fOutput;
    std::string fRead;  // and not handed out
    pid_t fProcess = kNone;
};

}  // namespace Vantor::Platform
