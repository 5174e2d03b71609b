#include "base/huge_pages.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace tramline {

void adviseHugePages(const void *data, std::size_t bytes) {
#if defined(MADV_HUGEPAGE)
    if (bytes < 2 * kHugePageBytes)
        return;
    const auto start = reinterpret_cast<std::uintptr_t>(data);
    const std::uintptr_t first = (start + kHugePageBytes - 1) / kHugePageBytes * kHugePageBytes;
    const std::uintptr_t last = (start + bytes) / kHugePageBytes * kHugePageBytes;
    if (last > first)
        ::madvise(reinterpret_cast<void *>(first), last - first, MADV_HUGEPAGE);
#else
    (void)data;
    (void)bytes;
#endif
}

} // namespace tramline
