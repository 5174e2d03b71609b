// A text value in eight bytes, for records held by the million: point
// names, record types and descriptions. Up to seven characters live in the
// object itself; longer text goes to one heap block. A std::string takes 32
// bytes even when empty, which made a raw record four times the size of
// the numbers it carries.
//
// Layout (one 64-bit word, little-endian): when the lowest bit of the
// first byte is set the text is inline, its length in bits 1 to 3 of that
// byte and its characters in bytes 1 to 7. Otherwise the word is a pointer
// (malloc aligns it, so its lowest bit is clear) to a block holding the
// length and the characters; a null pointer is the empty text.
#pragma once

#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>

namespace tramline {

class CompactString {
public:
    static constexpr size_t kInlineCapacity = 7;

    CompactString() noexcept = default;
    CompactString(std::string_view text) { set(text); } // NOLINT: converts like std::string
    CompactString(const char *text) : CompactString(std::string_view(text)) {}
    CompactString(const std::string &text) : CompactString(std::string_view(text)) {}
    CompactString(const CompactString &other) { set(other.view()); }
    CompactString(CompactString &&other) noexcept : m_word(other.m_word) { other.m_word = 0; }
    CompactString &operator=(const CompactString &other) {
        if (this != &other)
            assign(other.view());
        return *this;
    }
    CompactString &operator=(CompactString &&other) noexcept {
        if (this != &other) {
            release();
            m_word = other.m_word;
            other.m_word = 0;
        }
        return *this;
    }
    CompactString &operator=(std::string_view text) {
        assign(text);
        return *this;
    }
    CompactString &operator=(const char *text) { return *this = std::string_view(text); }
    CompactString &operator=(const std::string &text) { return *this = std::string_view(text); }
    ~CompactString() { release(); }

    void assign(std::string_view text) {
        // The text may point into this object's own block.
        CompactString copy(text);
        *this = std::move(copy);
    }
    void clear() noexcept {
        release();
        m_word = 0;
    }

    bool empty() const noexcept { return m_word == 0 || size() == 0; }
    size_t size() const noexcept {
        if (isInline())
            return (m_word & 0xFF) >> 1;
        return m_word == 0 ? 0 : heapSize();
    }
    const char *data() const noexcept {
        if (isInline())
            return reinterpret_cast<const char *>(&m_word) + 1;
        return m_word == 0 ? "" : heapData();
    }
    std::string_view view() const noexcept { return {data(), size()}; }
    operator std::string_view() const noexcept { return view(); } // NOLINT: reads like a string
    std::string str() const { return std::string(view()); }

    char operator[](size_t i) const noexcept { return data()[i]; }
    char front() const noexcept { return data()[0]; }
    char back() const noexcept { return data()[size() - 1]; }
    bool starts_with(std::string_view prefix) const noexcept { return view().starts_with(prefix); }
    bool ends_with(std::string_view suffix) const noexcept { return view().ends_with(suffix); }

    friend bool operator==(const CompactString &a, const CompactString &b) noexcept {
        return a.m_word == b.m_word || a.view() == b.view();
    }
    friend bool operator==(const CompactString &a, std::string_view b) noexcept {
        return a.view() == b;
    }
    friend bool operator==(const CompactString &a, const char *b) noexcept {
        return a.view() == std::string_view(b);
    }
    friend bool operator==(const CompactString &a, const std::string &b) noexcept {
        return a.view() == std::string_view(b);
    }
    friend std::strong_ordering operator<=>(const CompactString &a,
                                            const CompactString &b) noexcept {
        return a.view() <=> b.view();
    }
    friend std::strong_ordering operator<=>(const CompactString &a, std::string_view b) noexcept {
        return a.view() <=> b;
    }

private:
    static_assert(std::endian::native == std::endian::little,
                  "the inline form keeps its tag in the lowest byte");

    bool isInline() const noexcept { return (m_word & 1u) != 0; }
    size_t heapSize() const noexcept {
        size_t n;
        std::memcpy(&n, reinterpret_cast<const void *>(m_word), sizeof n);
        return n;
    }
    const char *heapData() const noexcept {
        return reinterpret_cast<const char *>(m_word) + sizeof(size_t);
    }
    void set(std::string_view text);
    void release() noexcept;

    std::uintptr_t m_word = 0;
};

static_assert(sizeof(CompactString) == 8);

inline std::string operator+(const std::string &a, const CompactString &b) {
    std::string out = a;
    out.append(b.view());
    return out;
}
inline std::string operator+(const CompactString &a, const std::string &b) {
    std::string out = a.str();
    out.append(b);
    return out;
}
inline std::string operator+(const char *a, const CompactString &b) {
    std::string out = a;
    out.append(b.view());
    return out;
}
inline std::string operator+(const CompactString &a, const char *b) {
    std::string out = a.str();
    out.append(b);
    return out;
}

} // namespace tramline

template <> struct std::hash<tramline::CompactString> {
    size_t operator()(const tramline::CompactString &s) const noexcept {
        return std::hash<std::string_view>{}(s.view());
    }
};
