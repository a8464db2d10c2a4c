#pragma once

#include <unistd.h>

#include <utility>

namespace Vantor::Platform {

// An open file descriptor and its owner; closed when the owner goes, and with it the locks on it.
class Descriptor {
  public:
    Descriptor() = default;

    // Takes what open() gave; a negative number is no descriptor.
    explicit Descriptor(int number) : fNumber(number) {}
    Descriptor(Descriptor&& other) noexcept : fNumber(std::exchange(other.fNumber, kNone)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fNumber, other.fNumber);
        return *this;
    }
    ~Descriptor() { Close(); }

    int Get() const { return fNumber; }
    bool IsOpen() const { return fNumber >= 0; }

    // False, with errno, when the system could not keep what was written. Closed in any case: after a failed
    // close() the number may already be another file's.
    bool Close() {
        const int number = std::exchange(fNumber, kNone);
        return number < 0 || close(number) == 0;
    }

  private:
    static constexpr int kNone = -1;

    int fNumber = kNone;
};

}  // namespace Vantor::Platform
