#include "geodesy/coordinate_system.h"

#include "base/text.h"

namespace tramline::geodesy {

double invertScalePpm(double scalePpm) {
    return (1.0 / (scalePpm / 1e6 + 1.0) - 1.0) * 1e6;
}

double ProjectionParameters::value(ProjectionParameter parameter) const {
    switch (parameter) {
    case ProjectionParameter::LatitudeOfOrigin:
        return latitudeOfOrigin;
    case ProjectionParameter::CentralMeridian:
        return centralMeridian;
    case ProjectionParameter::ScaleFactor:
        return scaleFactor;
    case ProjectionParameter::FalseEasting:
        return falseEasting;
    case ProjectionParameter::FalseNorthing:
        return falseNorthing;
    case ProjectionParameter::StandardParallel1:
        return standardParallel1;
    case ProjectionParameter::StandardParallel2:
        return standardParallel2;
    case ProjectionParameter::LatitudeOfCenter:
        return latitudeOfCenter;
    case ProjectionParameter::LongitudeOfCenter:
        return longitudeOfCenter;
    case ProjectionParameter::Azimuth:
        return azimuth;
    case ProjectionParameter::RectifiedGridAngle:
        return rectifiedGridAngle;
    case ProjectionParameter::PseudoStandardParallel:
        return pseudoStandardParallel;
    case ProjectionParameter::DenmarkArea:
        return denmarkArea;
    case ProjectionParameter::ZoneWidth:
        return zoneWidth;
    }
    return 0.0;
}

void ProjectionParameters::setValue(ProjectionParameter parameter, double v) {
    switch (parameter) {
    case ProjectionParameter::LatitudeOfOrigin:
        latitudeOfOrigin = v;
        break;
    case ProjectionParameter::CentralMeridian:
        centralMeridian = v;
        break;
    case ProjectionParameter::ScaleFactor:
        scaleFactor = v;
        break;
    case ProjectionParameter::FalseEasting:
        falseEasting = v;
        break;
    case ProjectionParameter::FalseNorthing:
        falseNorthing = v;
        break;
    case ProjectionParameter::StandardParallel1:
        standardParallel1 = v;
        break;
    case ProjectionParameter::StandardParallel2:
        standardParallel2 = v;
        break;
    case ProjectionParameter::LatitudeOfCenter:
        latitudeOfCenter = v;
        break;
    case ProjectionParameter::LongitudeOfCenter:
        longitudeOfCenter = v;
        break;
    case ProjectionParameter::Azimuth:
        azimuth = v;
        break;
    case ProjectionParameter::RectifiedGridAngle:
        rectifiedGridAngle = v;
        break;
    case ProjectionParameter::PseudoStandardParallel:
        pseudoStandardParallel = v;
        break;
    case ProjectionParameter::DenmarkArea:
        denmarkArea = static_cast<int>(v);
        break;
    case ProjectionParameter::ZoneWidth:
        zoneWidth = v;
        break;
    }
}

Ellipsoid CoordinateSystem::ellipsoid() const {
    const double f = userInverseFlattening == 0.0 ? 0.0 : 1.0 / userInverseFlattening;
    return ellipsoidAt(ellipsoidIndex, userSemiMajorAxis, f);
}

bool CoordinateSystem::setCoefficient(std::string_view coefficient, double value) {
    // The numbered types take as many coefficients as a description holds;
    // no published zone needs more than this.
    constexpr std::size_t kMostCoefficients = 64;
    const auto names = coefficientNames(type, kMostCoefficients);
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (!equalsIgnoreCase(names[index], coefficient))
            continue;
        if (parameters.coefficients.size() <= index)
            parameters.coefficients.resize(index + 1, 0.0);
        parameters.coefficients[index] = value;
        return true;
    }
    return false;
}

} // namespace tramline::geodesy
