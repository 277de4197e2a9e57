// Counts what the benchmarks allocate, and how much.
#include "Measures.h"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {
thread_local std::int64_t allocations = 0;
thread_local std::int64_t octets = 0;
thread_local std::int64_t mostOctets = 0;
}  // namespace

std::int64_t measures::Allocations() { return allocations; }
std::int64_t measures::Octets() { return octets; }
std::int64_t measures::MostOctets() { return mostOctets; }
void measures::ForgetMostOctets() { mostOctets = octets; }

void* operator new(std::size_t size) {
    ++allocations;
    void* const memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    octets += static_cast<std::int64_t>(malloc_usable_size(memory));
    mostOctets = std::max(mostOctets, octets);
    return memory;
}
void operator delete(void* memory) noexcept {
    octets -= static_cast<std::int64_t>(malloc_usable_size(memory));
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
