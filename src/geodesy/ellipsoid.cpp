#include "geodesy/ellipsoid.h"

#include "base/text.h"
#include <cmath>

namespace tramline::geodesy {

namespace {

struct Entry {
    const char *name;
    double a;
    double f;
};

// Stored flattenings, not 1/(rounded 1/f): several entries deliberately
// share a value (the two Airy entries, Everest 12 to 14, Hough and
// International).
constexpr Entry kTable[kEllipsoidCount] = {
    {"Airy 1830", 6377563.396, 0.00334085064038},
    {"Modified Airy", 6377340.189, 0.00334085064038},
    {"ATS77", 6378135.0, 0.0033528131778969},
    {"Australian", 6378160.0, 0.00335289186924},
    {"Bessel 1841", 6377397.155, 0.00334277318217},
    {"Bessel Modified", 6377492.018, 0.0033427731821748},
    {"Clarke 1866", 6378206.4, 0.00339007530409},
    {"Clarke 1880", 6378249.145, 0.0034075613787},
    {"Clarke 1880 (Arc)", 6378249.145, 0.0034075461944417},
    {"Clarke 1880 (IGN)", 6378249.2, 0.0034075495200156},
    {"Clarke 1880 (Israel)", 6378300.789, 0.0034075496511504},
    {"Clarke 1880 (Tunis)", 6378300.789, 0.0034075494191431},
    {"Everest(EA - India 1830)", 6377276.345, 0.00332444929666},
    {"Everest(EB - Brunei & E.Malaysia)", 6377298.556, 0.00332444929666},
    {"Everest(ED - W.Malaysia & Singapore)", 6377304.063, 0.00332444929666},
    {"Everest 1830/1975", 6377299.151, 0.0033244490148378},
    {"Everest 1956", 6377301.243, 0.0033244492966627},
    {"GRS 1967", 6378160.0, 0.0033529237133},
    {"GRS 1967 (SAD69)", 6378160.0, 0.0033528918692372},
    {"GRS 1980", 6378137.0, 0.00335281068118},
    {"Helmert 1906", 6378200.0, 0.00335232986926},
    {"Hough 1960", 6378270.0, 0.003367003367},
    {"International 1924/Hayford", 6378388.0, 0.003367003367},
    {"Krasovsky 1940", 6378245.0, 0.00335232981644},
    {"S America 69", 6378160.0, 0.00335289186924},
    {"War Office", 6378300.0, 0.00337837837838},
    {"WGS 72", 6378135.0, 0.00335277945417},
    {"WGS 84", 6378137.0, 0.00335281066475},
};

struct Spelling {
    const char *shown;
    const char *written;
};

constexpr Spelling kWktSpellings[] = {
    {"WGS 84", "WGS_1984"},
    {"War Office", "War_Office"},
    {"Clarke 1880", "Clarke_1880_RGS"},
    {"Clarke 1880 (Tunis)", "Clarke 1880 Tunis"},
    {"GRS 1967", "GRS67"},
    {"GRS 1967 (SAD69)", "GRS_1967_SAD69"},
    {"GRS 1980", "GRS_1980"},
    {"Helmert 1906", "Helmert_1906"},
    {"Australian", "Australian National Spheroid"},
    {"Everest(EA - India 1830)", "Everest_1830_1937_Adjustment"},
    {"Everest 1830/1975", "Everest_1830_1975_Definition"},
    {"Everest(ED - W.Malaysia & Singapore)", "Everest (ED)"},
    {"International 1924", "International_1924"},
    {"International 1924/Hayford", "International_1924"},
};

// Names compared as people type them: case, blanks and underscores aside.
std::string simplified(std::string_view name) {
    std::string out;
    for (char c : name)
        if (c != ' ' && c != '_')
            out += toLowerAscii(c);
    return out;
}

} // namespace

Ellipsoid Ellipsoid::fromFlattening(std::string name, double a, double f) {
    Ellipsoid e;
    e.name = std::move(name);
    e.a = a;
    e.f = f;
    e.b = a - a * f;
    e.e = std::sqrt(2.0 * f - f * f);
    e.inverseFlattening = f == 0.0 ? 0.0 : 1.0 / f;
    return e;
}

Ellipsoid Ellipsoid::fromInverseFlattening(std::string name, double a, double inverseFlattening) {
    return fromFlattening(std::move(name), a,
                          inverseFlattening == 0.0 ? 0.0 : 1.0 / inverseFlattening);
}

double Ellipsoid::primeVerticalRadius(double latitudeRadians) const {
    const double s = std::sin(latitudeRadians);
    return a / std::sqrt(1.0 - eccentricitySquared() * s * s);
}

double Ellipsoid::meridianRadius(double latitudeRadians) const {
    const double s = std::sin(latitudeRadians);
    const double w = 1.0 - eccentricitySquared() * s * s;
    return a * (1.0 - eccentricitySquared()) / (w * std::sqrt(w));
}

Ellipsoid ellipsoidAt(int index, double userA, double userF) {
    if (index >= 0 && index < kEllipsoidCount)
        return Ellipsoid::fromFlattening(kTable[index].name, kTable[index].a, kTable[index].f);
    return Ellipsoid::fromFlattening("User Defined", userA, userF);
}

std::string_view wktEllipsoidName(std::string_view shownName) {
    for (const auto &s : kWktSpellings)
        if (shownName == s.shown)
            return s.written;
    return shownName;
}

int findEllipsoidByName(std::string_view name) {
    const std::string wanted = simplified(name);
    if (wanted.empty())
        return -1;
    for (int i = 0; i < kEllipsoidCount; ++i)
        if (simplified(kTable[i].name) == wanted ||
            simplified(wktEllipsoidName(kTable[i].name)) == wanted)
            return i;
    // Written names that stand for a table entry under another shown name.
    for (const auto &s : kWktSpellings)
        if (simplified(s.written) == wanted || simplified(s.shown) == wanted)
            for (int i = 0; i < kEllipsoidCount; ++i)
                if (simplified(wktEllipsoidName(kTable[i].name)) == simplified(s.written))
                    return i;
    return -1;
}

int findEllipsoidByParameters(double a, double f) {
    for (int i = 0; i < kEllipsoidCount; ++i)
        if (std::fabs(kTable[i].a - a) < 1e-3 && std::fabs(kTable[i].f - f) < 1e-11)
            return i;
    return -1;
}

std::vector<std::string> ellipsoidChoices() {
    std::vector<std::string> names;
    for (const auto &entry : kTable)
        names.emplace_back(entry.name);
    names.emplace_back("User-Defined");
    return names;
}

} // namespace tramline::geodesy
