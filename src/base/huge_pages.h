// Fresh memory in huge pages for the large buffers of a large job.
//
// A large import or processing run fills hundreds of megabytes of fresh
// memory (source text, RW5 lines, raw records, points). In small pages the kernel takes a
// fault for every 4 KB, and on a virtual machine that work is a good part
// of the import's time; in huge pages it takes one per 2 MB. The kernel
// gives huge pages to memory that asks for them (its usual setting), so
// the large buffers ask. Elsewhere this does nothing.
#pragma once

#include <cstddef>

namespace tramline {

/// The size of a huge page where the system has them.
inline constexpr std::size_t kHugePageBytes = std::size_t(2) << 20;

/// Asks for huge pages for the whole huge pages inside [data, data +
/// bytes); nothing for a buffer of less than two of them. Call it before
/// the buffer is first written: pages already touched stay small.
void adviseHugePages(const void *data, std::size_t bytes);

} // namespace tramline
