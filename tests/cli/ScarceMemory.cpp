#include "tests/cli/ScarceMemory.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

size_t gMostBytes = SIZE_MAX;  // that are to be had at once

}  // namespace

// All forms of them, as memory that the system's own form of one had taken could not be given back by these.
void* operator new(size_t size) {
    void* memory = operator new(size, std::nothrow);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return size > gMostBytes ? nullptr : std::malloc(size > 0 ? size : 1);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }

namespace VantorTest {

ScarceMemory::ScarceMemory(size_t mostBytes) { gMostBytes = mostBytes; }

ScarceMemory::~ScarceMemory() { gMostBytes = SIZE_MAX; }

}  // namespace VantorTest
