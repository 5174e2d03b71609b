// A fixed set of point names, each with a few flag bits, looked up once for
// every shot of a run. Open addressing in one array: a name that is not in
// the set (most sideshots) costs one hash and usually one probe, where a
// node-based hash set costs a division and two cache misses.
#pragma once

#include "base/bulk_allocator.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tramline::reduce {

class NameFlags {
public:
    /// Adds `flags` to the name's flags (kept until build()).
    void add(std::string_view name, std::uint8_t flags) { m_pending.emplace_back(name, flags); }

    /// Makes the names added so far searchable.
    void build() {
        size_t capacity = 16;
        while (capacity < m_pending.size() * 2)
            capacity *= 2;
        m_slots.assign(capacity, Slot{});
        m_mask = capacity - 1;
        for (auto &[name, flags] : m_pending) {
            const std::uint64_t h = hash(name);
            Slot &slot = m_slots[slotOf(name, h)];
            if (slot.name == kEmpty) {
                slot.hash = h;
                slot.name = static_cast<std::uint32_t>(m_names.size());
                m_names.push_back(std::move(name));
            }
            slot.flags |= flags;
        }
        std::vector<std::pair<std::string, std::uint8_t>>().swap(m_pending);
    }

    /// The flags of `name`; 0 when it is not in the set.
    std::uint8_t find(std::string_view name) const {
        if (m_slots.empty())
            return 0;
        const Slot &slot = m_slots[slotOf(name, hash(name))];
        return slot.name == kEmpty ? 0 : slot.flags;
    }

private:
    static constexpr std::uint32_t kEmpty = 0xffffffffu;
    struct Slot {
        std::uint64_t hash = 0;
        std::uint32_t name = kEmpty; ///< index into m_names
        std::uint8_t flags = 0;
    };

    // FNV-1a, then the high bits folded down: point names differ mostly in
    // their last characters.
    static std::uint64_t hash(std::string_view s) {
        std::uint64_t h = 14695981039346656037ull;
        for (const char c : s) {
            h ^= static_cast<unsigned char>(c);
            h *= 1099511628211ull;
        }
        return h ^ (h >> 32);
    }

    // The slot holding `name`, or the empty slot where it would go (the
    // table is never more than half full).
    size_t slotOf(std::string_view name, std::uint64_t h) const {
        for (size_t i = h & m_mask;; i = (i + 1) & m_mask) {
            const Slot &slot = m_slots[i];
            if (slot.name == kEmpty || (slot.hash == h && m_names[slot.name] == name))
                return i;
        }
    }

    std::vector<std::pair<std::string, std::uint8_t>> m_pending;
    // Looked up at random once a shot: huge pages spare the TLB misses.
    std::vector<Slot, BulkAllocator<Slot>> m_slots;
    std::vector<std::string> m_names;
    size_t m_mask = 0;
};

} // namespace tramline::reduce
