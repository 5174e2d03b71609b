#include "base/bulk_allocator.h"

#include <cstdint>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace tramline {

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;
// Below this a block stays on the heap: mapping it would waste most of a
// huge page, and the heap reuses small blocks better.
constexpr std::size_t kMappedFrom = std::size_t{8} << 20;

std::size_t mappedSize(std::size_t bytes) {
    return (bytes + kHugePage - 1) / kHugePage * kHugePage;
}

} // namespace

void *bulkAllocate(std::size_t bytes) {
#if defined(__linux__)
    if (bytes >= kMappedFrom) {
        const std::size_t size = mappedSize(bytes);
        // Map one huge page more than needed and trim both ends, so the
        // block starts on a huge-page boundary.
        void *raw = mmap(nullptr, size + kHugePage, PROT_READ | PROT_WRITE,
                         MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (raw == MAP_FAILED)
            throw std::bad_alloc();
        const auto start = reinterpret_cast<std::uintptr_t>(raw);
        const std::uintptr_t aligned = (start + kHugePage - 1) / kHugePage * kHugePage;
        if (aligned > start)
            munmap(raw, aligned - start);
        const std::size_t tail = start + size + kHugePage - (aligned + size);
        if (tail > 0)
            munmap(reinterpret_cast<void *>(aligned + size), tail);
        void *block = reinterpret_cast<void *>(aligned);
        madvise(block, size, MADV_HUGEPAGE); // advice only: without it the block still works
        return block;
    }
#endif
    return ::operator new(bytes);
}

void bulkFree(void *block, std::size_t bytes) noexcept {
    if (block == nullptr)
        return;
#if defined(__linux__)
    if (bytes >= kMappedFrom) {
        munmap(block, mappedSize(bytes));
        return;
    }
#endif
    ::operator delete(block);
}

} // namespace tramline
