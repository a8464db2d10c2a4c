#include "tests/cli/ScarceMemory.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

size_t gMostBytes = SIZE_MAX;  // that are to be had at once

}  // namespace

void* operator new(size_t size) {
    void* memory = size > gMostBytes ? nullptr : std::malloc(size > 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }

namespace VantorTest {

ScarceMemory::ScarceMemory(size_t mostBytes) { gMostBytes = mostBytes; }

ScarceMemory::~ScarceMemory() { gMostBytes = SIZE_MAX; }

}  // namespace VantorTest
