// The user's settings for one processing run.
#pragma once

#include "raw/validate.h"
#include "reduce/adjust_methods.h"
#include "reduce/direct_reverse.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace tramline::geodesy {
class GeoidModels;
class Projection;
} // namespace tramline::geodesy

namespace tramline::reduce {

/// A point with known coordinates given by the user (closing reference).
struct KnownPoint {
    std::string name;
    std::optional<double> north, east, elevation; ///< empty: take it from the coordinate file
};

struct ProcessOptions {
    AdjustMethod method = AdjustMethod::None;
    double scaleFactor = 1.0;         ///< "%.8f"
    bool combinedScaleFactor = false; ///< per measurement, from the coordinate system
    /// The job's grid system, for the combined factor (not owned).
    const geodesy::Projection *projection = nullptr;
    /// Geoid separations for the combined factor (not owned); model 0: none.
    geodesy::GeoidModels *geoid = nullptr;
    int geoidModel = 0;
    bool curvature = false; ///< earth curvature and refraction
    bool stadia = false;
    bool elevations = true;        ///< 3D; "--Elevation: 2D" notes switch it off
    bool pointNotes = false;       ///< do_notes: "LINE:%ld,FILE:%s" on every stored point
    bool reportSideshots = false;  ///< report_ss
    bool reportUnadjusted = false; ///< report_org
    bool reportAdjustments = true; ///< report_adj
    bool verticalAdjust = false;   ///< vert: spread the vertical closure error
    bool angleBalance = false;     ///< do_angbal: balance angles before a linear rule
    /// Height limits of the validation. Defaults: instrument 0 to 10, rod 0
    /// to 50 (feet or metres alike: a taller rod or instrument is a typo).
    raw::HeightLimits heights{true, 0.0, 10.0, 0.0, 50.0};
    DirectReverseTolerances directReverse;

    std::string startPoint, endPoint; ///< traverse ends; empty: asked for
    bool automaticTraversePoints = true;
    KnownPoint closingPoint; ///< empty name: the ending point as stored
    std::string closingShotOccupied, closingShotForesight; ///< empty: chosen or asked
    std::optional<double> referenceAzimuth;                ///< angle balance reference, ddd.mmss

    std::filesystem::path workingFolder; ///< the temporary files go here
    /// The coordinate file the report names (the user's file, not the
    /// working copy processing writes to); empty: the written file's path.
    std::string coordinateFileName;
    /// Fill ProcessFigures::stored, a copy of every stored point (the
    /// command line's JSON wants them; a million points are 100 MB).
    bool keepStoredPoints = false;
    /// Told how many records of how many the walk has passed; empty: the
    /// walk costs one test per record and nothing more.
    std::function<void(std::size_t done, std::size_t total)> progress;
};

} // namespace tramline::reduce
