// Writers of every RW5 record, in the exact forms other programs expect.
// Each returns one line with its "\n". Values given as text are written as
// they stand ("%s"); the numeric overloads use the field's usual format.
#pragma once

#include "base/units.h"
#include "raw/record.h"

#include <string>
#include <string_view>

namespace tramline::raw {

using sv = std::string_view;

std::string writeJob(sv name, sv date, sv time);
/// "MO,AD0,UN%d,SF1.00000000,EC0,EO0,AU0"
std::string writeMode(LinearUnit unit);
std::string writeOccupy(sv point, sv northing, sv easting, sv elevation, sv description);
std::string writeHeights(sv hi, sv hr);   ///< both heights
std::string writeInstrumentHeight(sv hi); ///< "LS,HI%s"
std::string writeRodHeight(sv hr);        ///< "LS,HR%s"
std::string writeBacksight(sv occupied, sv backsight, sv azimuth, sv circle);
/// "BK,OP%s,BP,BS%s": azimuth only, no backsight point.
std::string writeBacksightAzimuth(sv occupied, sv azimuth);

/// The angle field of an observation: its prefix, value and suffix
/// ("BRN" "45.3000" "E" for a north-east bearing, "AR" "90.0000" "" else).
struct AngleField {
    const char *prefix;
    const char *suffix;
};
AngleField angleField(HorizontalKind kind);
const char *verticalCode(VerticalKind kind); ///< "VA", "ZE", "CE"
const char *distanceCode(DistanceKind kind); ///< "SD", "HD"

/// "%s,OP%s,FP%s,%s%s%s,%s%s,%s%s,--%s"
std::string writeObservation(sv type, sv occupied, sv foresight, HorizontalKind hzKind,
                             sv horizontal, VerticalKind vKind, sv vertical, DistanceKind dKind,
                             sv distance, sv description);

std::string writeStorePoint(sv point, sv northing, sv easting, sv elevation, sv description);
/// Coordinates with four decimals.
std::string writeStorePoint(sv point, double northing, double easting, double elevation,
                            sv description);
std::string writeGps(sv point, sv latitude, sv longitude, sv height, sv description);
/// Latitude and longitude with nine decimals, height with four.
std::string writeGps(sv point, double latitude, double longitude, double height, sv description);
std::string writeBasePoint(sv point, sv latitude, sv longitude, sv height, sv description);
/// With the extra fields (AG, PA, AT and a note or SR) as one text.
std::string writeBasePointExtra(sv point, sv latitude, sv longitude, sv height, sv extra);
std::string writeTraverseName(sv name);
std::string writeElevation(sv point, sv elevation);
std::string writeElevation(sv point, double elevation); ///< "EL,PN%s,EL%.4f"
std::string writeReferenceAzimuth(sv occupied, sv foresight, sv azimuth);
std::string writeDataOnOff();
std::string writeCc(sv first, sv second);
std::string writeControlErrors(sv northing, sv easting, sv elevation, sv azimuthSeconds);
std::string writeSetupErrors(sv target, sv instrument, sv instrumentHeight, sv rodHeight);
std::string writeMeasurementErrors(sv hzPointing, sv hzReading, sv vPointing, sv vReading,
                                   sv distance, sv ppm);
std::string writeGpsVector(sv type, sv content); ///< "G0,%s" .. "G3,%s"
std::string writeNote(sv text);                  ///< "--%s"

} // namespace tramline::raw
