// An allocator for the arrays a large job holds by the million (raw
// records, computed points). Blocks of 8 MB and more are aligned to a huge
// page and ask for huge pages (base/huge_pages.h): a 200 MB array then
// costs a hundred page faults instead of fifty thousand, and far fewer TLB
// misses while it is walked. Smaller blocks come from the ordinary heap.
#pragma once

#include <cstddef>

namespace tramline {

void *bulkAllocate(std::size_t bytes);
void bulkFree(void *block, std::size_t bytes) noexcept;

template <class T> struct BulkAllocator {
    using value_type = T;

    BulkAllocator() noexcept = default;
    template <class U> BulkAllocator(const BulkAllocator<U> &) noexcept {}

    T *allocate(std::size_t n) { return static_cast<T *>(bulkAllocate(n * sizeof(T))); }
    void deallocate(T *p, std::size_t n) noexcept { bulkFree(p, n * sizeof(T)); }

    template <class U> bool operator==(const BulkAllocator<U> &) const noexcept { return true; }
};

} // namespace tramline
