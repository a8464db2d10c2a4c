#pragma once

#include <cstdint>

namespace Vantor {

// Counts the holders of an object. It never destroys the object: who owns it asks for the count and decides.
// Not locked; one thread at a time.
class TRefCount {
  public:
    TRefCount() = default;
    TRefCount(const TRefCount&) = delete;
    TRefCount& operator=(const TRefCount&) = delete;

    void Register() { ++fCount; }

    // A count of 0 stays 0.
    void Release() {
        if (fCount > 0) --fCount;
    }

    uint32_t GetRefCount() const { return fCount; }

  protected:
    ~TRefCount() = default;

  private:
    uint32_t fCount = 0;
};

}  // namespace Vantor
