// SPDX-License-Identifier: MIT
#include "bench/core/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> count = 0;

} // namespace

std::size_t kelvora::allocationCount() {
    return count.load(std::memory_order_relaxed);
}

// In a file of their own, so that the compiler cannot inline one of a pair and miss the other.
void* operator new(std::size_t size) {
    count.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    std::abort();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
