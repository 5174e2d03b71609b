#include "base/bulk_allocator.h"

#include "base/huge_pages.h"

#include <new>

namespace tramline {

namespace {

// Below this a block stays on the ordinary heap: huge pages would waste
// most of their size, and the heap reuses small blocks better.
constexpr std::size_t kHugeFrom = 4 * kHugePageBytes;

} // namespace

void *bulkAllocate(std::size_t bytes) {
    if (bytes < kHugeFrom)
        return ::operator new(bytes);
    // Aligned to a huge page, so that all of it can be one.
    void *block = ::operator new(bytes, std::align_val_t(kHugePageBytes));
    adviseHugePages(block, bytes);
    return block;
}

void bulkFree(void *block, std::size_t bytes) noexcept {
    if (bytes < kHugeFrom)
        ::operator delete(block);
    else
        ::operator delete(block, std::align_val_t(kHugePageBytes));
}

} // namespace tramline
