// A point of the coordinate store, as callers pass it to the store and get
// it back. Coordinates are in the units of the file (the store does not
// know or convert them).
#pragma once

#include <string>
#include <string_view>

namespace tramline::crd {

struct CrdPoint {
    double easting = 0.0;    ///< second double of a record
    double northing = 0.0;   ///< first double of a record
    double elevation = 0.0;  ///< third double; unset (98765432.1) means none
    std::string name;        ///< the point name ("point number"), up to 255 characters
    std::string description; ///< up to 255 characters; the file keeps 31
    std::string code;        ///< point code; not kept in coordinate files
    int locked = 0;          ///< set by callers that protect points

    /// Sets every field in one call, in the order callers think of a point
    /// (easting first). Texts are cut to 255 characters; a missing
    /// elevation (the unset value) becomes 0.0.
    void set(double easting, double northing, double elevation, std::string_view name = {},
             std::string_view description = {}, std::string_view code = {}, int locked = 0);

    void clear() { *this = CrdPoint(); }

    bool operator==(const CrdPoint &) const = default;
};

/// The longest name, description and code a point holds.
inline constexpr std::size_t kMaxPointText = 255;

} // namespace tramline::crd
