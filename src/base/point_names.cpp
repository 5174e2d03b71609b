#include "base/point_names.h"

#include <cctype>

namespace tramline {

namespace {
bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view trim(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front())))
        s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back())))
        s.remove_suffix(1);
    return s;
}
} // namespace

int comparePointNames(std::string_view a, std::string_view b) {
    size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            // Compare digit runs by value: skip leading zeros, then the
            // longer run is larger, else the first differing digit decides.
            while (i < a.size() && a[i] == '0')
                ++i;
            while (j < b.size() && b[j] == '0')
                ++j;
            size_t ei = i, ej = j;
            while (ei < a.size() && isDigit(a[ei]))
                ++ei;
            while (ej < b.size() && isDigit(b[ej]))
                ++ej;
            if (ei - i != ej - j)
                return ei - i < ej - j ? -1 : 1;
            for (; i < ei; ++i, ++j)
                if (a[i] != b[j])
                    return a[i] < b[j] ? -1 : 1;
            continue;
        }
        const int ca = std::toupper(static_cast<unsigned char>(a[i]));
        const int cb = std::toupper(static_cast<unsigned char>(b[j]));
        if (ca != cb)
            return ca < cb ? -1 : 1;
        ++i;
        ++j;
    }
    if (i < a.size())
        return 1;
    if (j < b.size())
        return -1;
    return 0;
}

bool PointList::parse(std::string_view text) {
    m_items.clear();
    while (true) {
        const size_t comma = text.find(',');
        const std::string_view item = trim(text.substr(0, comma));
        if (item.empty())
            return false;
        // A dash inside the item (not at its start) splits a range.
        const size_t dash = item.find('-', 1);
        if (dash == std::string_view::npos) {
            m_items.push_back({std::string(item), {}});
        } else {
            const std::string_view first = trim(item.substr(0, dash));
            const std::string_view last = trim(item.substr(dash + 1));
            if (first.empty() || last.empty())
                return false;
            if (comparePointNames(first, last) <= 0)
                m_items.push_back({std::string(first), std::string(last)});
            else
                m_items.push_back({std::string(last), std::string(first)});
        }
        if (comma == std::string_view::npos)
            break;
        text.remove_prefix(comma + 1);
    }
    return true;
}

bool PointList::contains(std::string_view name) const {
    for (const auto &item : m_items) {
        if (item.last.empty()) {
            if (comparePointNames(name, item.first) == 0)
                return true;
        } else if (comparePointNames(item.first, name) <= 0 && comparePointNames(name, item.last) <= 0) {
            return true;
        }
    }
    return false;
}

} // namespace tramline
