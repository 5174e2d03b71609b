#include "base/compact_string.h"

#include <cstdlib>
#include <new>

namespace tramline {

void CompactString::set(std::string_view text) {
    m_word = 0;
    if (text.empty())
        return;
    if (text.size() <= kInlineCapacity) {
        unsigned char bytes[sizeof m_word] = {};
        bytes[0] = static_cast<unsigned char>((text.size() << 1) | 1u);
        std::memcpy(bytes + 1, text.data(), text.size());
        std::memcpy(&m_word, bytes, sizeof m_word);
        return;
    }
    const size_t n = text.size();
    void *block = std::malloc(sizeof(size_t) + n);
    if (block == nullptr)
        throw std::bad_alloc();
    std::memcpy(block, &n, sizeof n);
    std::memcpy(static_cast<char *>(block) + sizeof(size_t), text.data(), n);
    m_word = reinterpret_cast<std::uintptr_t>(block);
}

void CompactString::release() noexcept {
    if (m_word != 0 && !isInline())
        std::free(reinterpret_cast<void *>(m_word));
}

} // namespace tramline
