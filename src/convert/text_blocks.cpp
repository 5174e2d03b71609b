#include "convert/text_blocks.h"

#include "base/huge_pages.h"

#include <algorithm>
#include <new>

namespace tramline::convert {

void TextBlocks::Free::operator()(char *block) const {
    if (aligned)
        ::operator delete[](block, std::align_val_t(kHugePageBytes));
    else
        delete[] block;
}

TextBlocks::Block TextBlocks::allocate(std::size_t size) {
    // Only large blocks ask for huge pages (aligned so that all of the
    // block can have them): a small file's lines stay in small pages.
    if (size < 2 * kHugePageBytes)
        return Block(new char[size], Free{false});
    char *block = static_cast<char *>(::operator new[](size, std::align_val_t(kHugePageBytes)));
    adviseHugePages(block, size);
    return Block(block, Free{true});
}

char *TextBlocks::block(std::size_t bytes) {
    // Put before the block being filled, which keeps its room.
    const auto at = m_blocks.empty() ? m_blocks.end() : m_blocks.end() - 1;
    return m_blocks.insert(at, allocate(std::max<std::size_t>(bytes, 1)))->get();
}

std::string_view TextBlocks::store(std::string_view text) {
    if (text.empty())
        return {};
    if (text.size() > m_room) {
        const std::size_t size = std::max(m_next, text.size());
        m_blocks.push_back(allocate(size));
        m_next = std::min(2 * m_next, kLargestBlock);
        m_used = 0;
        m_room = size;
    }
    char *at = m_blocks.back().get() + m_used;
    std::copy(text.begin(), text.end(), at);
    m_used += text.size();
    m_room -= text.size();
    return {at, text.size()};
}

} // namespace tramline::convert
