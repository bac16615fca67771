// Counts every allocation of the program.
#include <atomic>
#include <cstdlib>
#include <new>

#include "over_score.h"

namespace {

std::atomic<std::int64_t> count{0};

}  // namespace

// Not inlined, so that the compiler does not see new end in malloc and delete in free and take them for a
// mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
    count.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

std::int64_t rovescio::bench::allocations() {
    return count;
}
