// Line text kept in large blocks instead of a string each: a million-line
// file costs a few dozen allocations instead of a million, and less
// memory. The source and output line lists of the importers share it.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace tramline::convert {

class TextBlocks {
public:
    /// The first block's size; each further block is twice the one before,
    /// up to kLargestBlock. A text longer than a block gets its own.
    static constexpr std::size_t kFirstBlock = std::size_t(64) << 10;
    static constexpr std::size_t kLargestBlock = std::size_t(16) << 20;

    /// Copies `text` into the blocks. The view returned stays valid until
    /// clear(), also when the store is moved.
    std::string_view store(std::string_view text);
    /// A block of its own of `bytes` bytes (at least one), kept until
    /// clear(), for the caller to fill.
    char *block(std::size_t bytes);
    /// Gives back every block.
    void clear() { *this = TextBlocks(); }

private:
    struct Free {
        bool aligned = false; ///< allocated at a huge-page boundary
        void operator()(char *block) const;
    };
    using Block = std::unique_ptr<char[], Free>;
    static Block allocate(std::size_t size);

    std::vector<Block> m_blocks;
    std::size_t m_used = 0, m_room = 0; // of the last block
    std::size_t m_next = kFirstBlock;   // size of the next block
};

} // namespace tramline::convert
