#include "raw/writer.h"

#include "base/format.h"

namespace tramline::raw {

namespace {
// Texts go through "%.*s" so that views need no terminating zero.
int n(sv s) {
    return static_cast<int>(s.size());
}
} // namespace

std::string writeJob(sv name, sv date, sv time) {
    return format("JB,NM%.*s,DT%.*s,TM%.*s\n", n(name), name.data(), n(date), date.data(), n(time),
                  time.data());
}

std::string writeMode(LinearUnit unit) {
    return format("MO,AD0,UN%d,SF1.00000000,EC0,EO0,AU0\n", static_cast<int>(unit));
}

std::string writeOccupy(sv point, sv northing, sv easting, sv elevation, sv description) {
    return format("OC,OP%.*s,N %.*s,E %.*s,EL%.*s,--%.*s\n", n(point), point.data(), n(northing),
                  northing.data(), n(easting), easting.data(), n(elevation), elevation.data(),
                  n(description), description.data());
}

std::string writeHeights(sv hi, sv hr) {
    return format("LS,HI%.*s,HR%.*s\n", n(hi), hi.data(), n(hr), hr.data());
}
std::string writeInstrumentHeight(sv hi) {
    return format("LS,HI%.*s\n", n(hi), hi.data());
}
std::string writeRodHeight(sv hr) {
    return format("LS,HR%.*s\n", n(hr), hr.data());
}

std::string writeBacksight(sv occupied, sv backsight, sv azimuth, sv circle) {
    return format("BK,OP%.*s,BP%.*s,BS%.*s,BC%.*s\n", n(occupied), occupied.data(), n(backsight),
                  backsight.data(), n(azimuth), azimuth.data(), n(circle), circle.data());
}

std::string writeBacksightAzimuth(sv occupied, sv azimuth) {
    return format("BK,OP%.*s,BP,BS%.*s\n", n(occupied), occupied.data(), n(azimuth),
                  azimuth.data());
}

AngleField angleField(HorizontalKind kind) {
    switch (kind) {
    case HorizontalKind::NE:
        return {"BRN", "E"};
    case HorizontalKind::SE:
        return {"BRS", "E"};
    case HorizontalKind::SW:
        return {"BRS", "W"};
    case HorizontalKind::NW:
        return {"BRN", "W"};
    case HorizontalKind::AZ:
        return {"AZ", ""};
    case HorizontalKind::AL:
        return {"AL", ""};
    case HorizontalKind::DL:
        return {"DL", ""};
    case HorizontalKind::DR:
        return {"DR", ""};
    case HorizontalKind::GN:
        return {"GN", ""};
    case HorizontalKind::AR:
    case HorizontalKind::None:
        break;
    }
    return {"AR", ""};
}

const char *verticalCode(VerticalKind kind) {
    switch (kind) {
    case VerticalKind::ZE:
        return "ZE";
    case VerticalKind::CE:
        return "CE";
    case VerticalKind::VA:
    case VerticalKind::None:
        break;
    }
    return "VA";
}

const char *distanceCode(DistanceKind kind) {
    return kind == DistanceKind::Horizontal ? "HD" : "SD";
}

std::string writeObservation(sv type, sv occupied, sv foresight, HorizontalKind hzKind,
                             sv horizontal, VerticalKind vKind, sv vertical, DistanceKind dKind,
                             sv distance, sv description) {
    const AngleField a = angleField(hzKind);
    return format("%.*s,OP%.*s,FP%.*s,%s%.*s%s,%s%.*s,%s%.*s,--%.*s\n", n(type), type.data(),
                  n(occupied), occupied.data(), n(foresight), foresight.data(), a.prefix,
                  n(horizontal), horizontal.data(), a.suffix, verticalCode(vKind), n(vertical),
                  vertical.data(), distanceCode(dKind), n(distance), distance.data(),
                  n(description), description.data());
}

std::string writeStorePoint(sv point, sv northing, sv easting, sv elevation, sv description) {
    return format("SP,PN%.*s,N %.*s,E %.*s,EL%.*s,--%.*s\n", n(point), point.data(), n(northing),
                  northing.data(), n(easting), easting.data(), n(elevation), elevation.data(),
                  n(description), description.data());
}

std::string writeStorePoint(sv point, double northing, double easting, double elevation,
                            sv description) {
    return writeStorePoint(point, format("%.4f", northing), format("%.4f", easting),
                           format("%.4f", elevation), description);
}

std::string writeGps(sv point, sv latitude, sv longitude, sv height, sv description) {
    return format("GPS,PN%.*s,LA%.*s,LN%.*s,EL%.*s,--%.*s\n", n(point), point.data(), n(latitude),
                  latitude.data(), n(longitude), longitude.data(), n(height), height.data(),
                  n(description), description.data());
}

std::string writeGps(sv point, double latitude, double longitude, double height, sv description) {
    return writeGps(point, format("%.9f", latitude), format("%.9f", longitude),
                    format("%.4f", height), description);
}

std::string writeBasePoint(sv point, sv latitude, sv longitude, sv height, sv description) {
    return format("BP,PN%.*s,LA%.*s,LN%.*s,EL%.*s,--%.*s\n", n(point), point.data(), n(latitude),
                  latitude.data(), n(longitude), longitude.data(), n(height), height.data(),
                  n(description), description.data());
}

std::string writeBasePointExtra(sv point, sv latitude, sv longitude, sv height, sv extra) {
    return format("BP,PN%.*s,LA%.*s,LN%.*s,EL%.*s,%.*s\n", n(point), point.data(), n(latitude),
                  latitude.data(), n(longitude), longitude.data(), n(height), height.data(),
                  n(extra), extra.data());
}

std::string writeTraverseName(sv name) {
    return format("NAME,%.*s\n", n(name), name.data());
}

std::string writeElevation(sv point, sv elevation) {
    return format("EL,PN%.*s,EL%.*s\n", n(point), point.data(), n(elevation), elevation.data());
}
std::string writeElevation(sv point, double elevation) {
    return format("EL,PN%.*s,EL%.4f\n", n(point), point.data(), elevation);
}

std::string writeReferenceAzimuth(sv occupied, sv foresight, sv azimuth) {
    return format("AZ,OP%.*s,FP%.*s,BS%.*s\n", n(occupied), occupied.data(), n(foresight),
                  foresight.data(), n(azimuth), azimuth.data());
}

std::string writeDataOnOff() {
    return "DO,Data On/Off\n";
}

std::string writeCc(sv first, sv second) {
    return format("CC,%.*s,%.*s\n", n(first), first.data(), n(second), second.data());
}

std::string writeControlErrors(sv northing, sv easting, sv elevation, sv azimuthSeconds) {
    return format("CSE,N %.*s,E %.*s,EL%.*s,AZ%.*s\n", n(northing), northing.data(), n(easting),
                  easting.data(), n(elevation), elevation.data(), n(azimuthSeconds),
                  azimuthSeconds.data());
}

std::string writeSetupErrors(sv target, sv instrument, sv instrumentHeight, sv rodHeight) {
    return format("SSE,TE%.*s,IE%.*s,HI%.*s,RD%.*s\n", n(target), target.data(), n(instrument),
                  instrument.data(), n(instrumentHeight), instrumentHeight.data(), n(rodHeight),
                  rodHeight.data());
}

std::string writeMeasurementErrors(sv hzPointing, sv hzReading, sv vPointing, sv vReading,
                                   sv distance, sv ppm) {
    return format("MSE,PE%.*s,RE%.*s,VP%.*s,VR%.*s,DT%.*s,PP%.*s\n", n(hzPointing),
                  hzPointing.data(), n(hzReading), hzReading.data(), n(vPointing), vPointing.data(),
                  n(vReading), vReading.data(), n(distance), distance.data(), n(ppm), ppm.data());
}

std::string writeGpsVector(sv type, sv content) {
    return format("%.*s,%.*s\n", n(type), type.data(), n(content), content.data());
}

std::string writeNote(sv text) {
    return format("--%.*s\n", n(text), text.data());
}

} // namespace tramline::raw
