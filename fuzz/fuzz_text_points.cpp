// Feeds arbitrary bytes to the text point reader in every common order,
// for numeric and alphanumeric names, and writes back what it read.
#include "convert/text_points_export.h"
#include "convert/text_points_import.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    using namespace tramline::convert;
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    // The first line doubles as a coordinate order, as a user may type anything.
    PointColumns typed;
    parseCoordinateOrder(bytes.substr(0, bytes.find('\n')), typed);
    std::vector<std::string> orders = commonPointFormats();
    orders.push_back("P,S,N,E,Z,D");
    for (const auto &order : orders) {
        PointColumns columns;
        parseCoordinateOrder(order, columns);
        for (PointNames names : {PointNames::Numeric, PointNames::Alphanumeric}) {
            std::istringstream in(bytes);
            TextPointsRead read;
            readTextPoints(in, columns, names, read);
            numberUnnamedPoints(read.points, "99");
            for (const auto &point : read.points)
                formatPointLine(point, {ExportColumns::PointEastNorth, ' ', 3});
        }
    }
    return 0;
}
