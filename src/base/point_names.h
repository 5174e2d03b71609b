// The order of point names used wherever names are sorted or searched:
// runs of digits compare by their numeric value, other characters without
// regard to case, so "2" comes before "10" and "A2" before "A10". This is
// the order of the records in alphanumeric coordinate files, so it must not
// change: files written by other programs are searched with it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tramline {

/// Negative, zero or positive as `a` sorts before, with or after `b`.
/// Walking both names one position at a time: where both hold a digit, the
/// numbers starting there decide (as decimals when either name holds a '.'
/// further on, so 1.5 comes after 1.10); where they differ in another
/// character, the rest of the names decide case-blind; otherwise the whole
/// names do. Only case-blind equal names compare equal ("a1" == "A1", but
/// "A01" comes before "A1").
int comparePointNames(std::string_view a, std::string_view b);

/// The value of a name of digits only, without a leading zero and at most
/// 18 digits long; -1 for any other name. Two such names compare by their
/// values alone, which is how numbered points sort quickly.
std::int64_t plainPointNumber(std::string_view name);

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
