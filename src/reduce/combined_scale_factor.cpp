#include "reduce/combined_scale_factor.h"

#include "base/format.h"
#include "base/translation.h"
#include "geodesy/geoid_models.h"
#include "geodesy/projection.h"
#include "reduce/measurement.h"

#include <cmath>

namespace tramline::reduce {

// Grid coordinates in the file's unit, the projection in metres.
double combinedFactorAt(const TraversePoint &p, LinearUnit unit, const ProcessOptions &options,
                        std::vector<std::string> &warnings) {
    const double toMetres = 1.0 / unitsPerMetre(unit);
    double grid = 1.0;
    double latitude = 0, longitude = 0;
    bool located = false;
    if (!options.projection) {
        warnings.push_back(tr("Warning: invalid grid scale factor.\nUsing factor of 1.0"));
    } else if (const geodesy::Status st = options.projection->inverse(
                   p.north * toMetres, p.east * toMetres, latitude, longitude);
               !st) {
        warnings.push_back(format(tr("\nError %d: unable to convert grid coordinates to lat/lon"),
                                  static_cast<int>(st.code)));
    } else {
        located = true;
        geodesy::GridFactors factors;
        if (options.projection->factorsAt(latitude, longitude, factors) &&
            std::isfinite(factors.scaleFactor) && factors.scaleFactor > 0.0)
            grid = factors.scaleFactor;
        else
            warnings.push_back(tr("Warning: invalid grid scale factor.\nUsing factor of 1.0"));
    }
    double separation = 0.0;
    if (located && options.geoid && options.geoidModel != 0) {
        if (const geodesy::Status st = geodesy::gpsSeparation(*options.geoid, options.geoidModel,
                                                              latitude, longitude, separation);
            !st) {
            warnings.push_back(st.message);
            separation = 0.0;
        }
    }
    constexpr double kFeetPerMetre = 3.280833333333;
    const double elevation = p.hasElevation ? p.elevation : 0.0;
    const double heightFeet = unit == LinearUnit::Metres ? (elevation + separation) * kFeetPerMetre
                                                         : elevation + separation * kFeetPerMetre;
    return combinedScaleFactor(grid, heightFeet);
}

} // namespace tramline::reduce
