#pragma once

#include <cstddef>

namespace VantorTest {

// While it is alive, no piece of memory larger than this is to be had, in the whole test program.
class ScarceMemory {
  public:
    explicit ScarceMemory(size_t mostBytes);
    ~ScarceMemory();
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;
};

}  // namespace VantorTest
