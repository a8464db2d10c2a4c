#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/WindowHandle.h"

namespace Vantor::Platform {

// What a burn is to do.
struct DiscJob {
    WindowHandle fWindow = nullptr;                  // to which the system's dialogs belong
    std::string fVolumeName;                         // for systems that do not ask the user; may be empty
    std::function<void(int percent)> fTellProgress;  // may be empty; called on the thread that burns
    std::function<void(const std::string& line)> fTellProblem;  // likewise, with what the system says
};

// A connection to the system's service that burns discs.
class DiscBurner {
  public:
    virtual ~DiscBurner() = default;

    // True when there is a drive that can write discs.
    virtual bool HasRecorder() = 0;

    // How the system calls that drive: "E:\", "/dev/sr0", or the path of the image that is written in place
    // of a disc. Empty without one.
    virtual std::string GetRecorderName() = 0;

    // Writes all that is in the staging folder to the disc in that drive and returns when that is done, or
    // has been handed to the system. False on failure, and when the user has given it up.
    virtual bool Burn(const DiscJob& job) = 0;
};

// The system's way to burn discs. What is to be burned is put into a folder of the user's first.
class DiscService {
  public:
    virtual ~DiscService() = default;

    // Null when the system has no such service.
    virtual std::unique_ptr<DiscBurner> Connect() = 0;

    // The full path of that folder, which is made when it is missing; without separators at its end. Empty
    // when it cannot be had.
    virtual std::string GetStagingFolder() = 0;

    // The system's own, which the port gives. Ask the current one instead.
    static DiscService& OfSystem();

    // The one in use: the system's, unless a ReplacedDiscService is alive.
    static DiscService& Current();
};

// Puts another service in place until destroyed; nested replacements end in reverse order.
class ReplacedDiscService {
  public:
    // `service` is not owned and must outlive this object.
    explicit ReplacedDiscService(DiscService& service);
    ~ReplacedDiscService();
    ReplacedDiscService(const ReplacedDiscService&) = delete;
    ReplacedDiscService& operator=(const ReplacedDiscService&) = delete;

  private:
    DiscService* fPrevious;
};

}  // namespace Vantor::Platform
