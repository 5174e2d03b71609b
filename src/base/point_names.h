// The order of point names used wherever names are sorted or searched:
// runs of digits compare by their numeric value, other characters without
// regard to case, so "2" comes before "10" and "A2" before "A10".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tramline {

/// Negative, zero or positive as `a` sorts before, with or after `b`.
/// Names equal but for case or leading zeros compare equal ("a01" == "A1").
int comparePointNames(std::string_view a, std::string_view b);

/// A list of names and ranges as users type it: "1-5,7,A10,B1-B9".
/// A range holds every name that sorts between its ends (inclusive).
class PointList {
public:
    /// False when the text holds an empty item or a range without an end.
    bool parse(std::string_view text);
    bool contains(std::string_view name) const;
    bool empty() const { return m_items.empty(); }

private:
    struct Item {
        std::string first, last; // last empty: a single name
    };
    std::vector<Item> m_items;
};

} // namespace tramline
