// Points to GSI-8 and GSI-16 and back through the point import: every
// point comes back; the record-length check of GSI-8 looks only at the
// northing and the easting, and only from above.
#include "base/unset.h"
#include "convert/gsi_import.h"
#include "convert/gsi_point_export.h"
#include "convert/point_flow.h"
#include "convert_test_support.h"
#include "crd/coordinate_file.h"
#include "support/test_support.h"

namespace tramline::test {
namespace {

crd::CrdPoint pointAt(double e, double n, double z, const char *name, const char *desc = "") {
    crd::CrdPoint p;
    p.set(e, n, z, name, desc);
    return p;
}

convert::ExportOutput exportPoints(const std::vector<crd::CrdPoint> &points, const char *variant,
                                   const char *unit = "m") {
    ScriptedInteraction ui;
    convert::ExportOutput out;
    EXPECT_TRUE(convert::exportGsiPoints(points, {variant, unit}, ui, out).ok());
    EXPECT_TRUE(ui.questions.empty()) << "both answers were given";
    return out;
}

TEST(GsiPointExport, WritesEachPointAsOneBlock) {
    struct {
        const char *variant, *unit;
        crd::CrdPoint point;
        const char *line;
    } cases[] = {
        {"gsi16", "m", pointAt(1234.5675, 987.125, 10.0, "P12", "FENCE"),
         "*110001+0000000000000P12 71....+00000000000FENCE 81..10+0000000001234568 "
         "82..10+0000000000987125 83..10+0000000000010000 \n"},
        {"gsi8", "ft", pointAt(-12.5, 7.25, 0.0, "7", ""),
         "110001+00000007 71....+00000000 81..11-00012500 82..11+00007250 83..11+00000000 \n"},
        // A missing elevation is written as dashes.
        {"gsi8", "m", pointAt(1, 2, kUnsetPositive, "A", "X"),
         "110001+0000000A 71....+0000000X 81..10+00001000 82..10+00002000 83..10+-------- \n"},
    };
    for (const auto &c : cases) {
        crd::CrdPoint p = c.point;
        if (std::string(c.line).find("----") != std::string::npos)
            p.elevation = kUnsetPositive;
        EXPECT_EQ(exportPoints({p}, c.variant, c.unit).bytes, c.line);
    }
}

TEST(GsiPointExport, Gsi8RecordLengthCheck) {
    struct {
        const char *variant;
        crd::CrdPoint point;
        bool tooLong;
    } cases[] = {
        {"gsi8", pointAt(100000.000, 5.0, 1.0, "1"), true},
        {"gsi8", pointAt(5.0, 100000.000, 1.0, "1"), true},
        {"gsi8", pointAt(99999.9, 99999.9, 1.0, "1"), false},
        {"gsi8", pointAt(5.0, 5.0, 150000.000, "1"), false}, // elevation not checked
        {"gsi8", pointAt(-100000.0, 5.0, 1.0, "1"), false},  // nor the lower bound
        {"gsi16", pointAt(100000.000, 5.0, 1.0, "1"), false},
    };
    for (const auto &c : cases) {
        const auto out =
            exportPoints({pointAt(1, 1, 1, "0"), c.point, pointAt(2, 2, 2, "9")}, c.variant);
        EXPECT_EQ(out.completion,
                  c.tooLong ? "Error: coordinates exceed record length. Try GSI-16 format."
                            : "Done")
            << c.point.easting << " " << c.point.northing;
        EXPECT_EQ(out.records, 3) << "the file is written to its end";
    }
}

TEST(GsiPointExport, AsksWhenNotToldAndCanBeCancelled) {
    ScriptedInteraction ui({"Feet|GSI-8"});
    convert::ExportOutput out;
    ASSERT_TRUE(convert::exportGsiPoints(std::vector{pointAt(1, 2, 3, "5")}, {}, ui, out).ok());
    EXPECT_TRUE(out.bytes.starts_with("110001+00000005 ")) << out.bytes;
    EXPECT_NE(out.bytes.find(" 81..11+"), std::string::npos);
    ScriptedInteraction cancel({"<cancel>"});
    EXPECT_EQ(convert::exportGsiPoints(std::vector{pointAt(1, 2, 3, "5")}, {}, cancel, out).code,
              StatusCode::Cancelled);
}

TEST(GsiPointExport, PointsComeBackThroughThePointImport) {
    const std::vector<crd::CrdPoint> points = {
        pointAt(1234.567, 987.125, 10.0, "P12", "FENCE"), pointAt(-12.5, 7.25, 0.0, "7", ""),
        pointAt(698460.332, 173419.641, -0.092, "9001", "EOV"),
        pointAt(0.0, 0.0, 0.0, "2017", "ZERO")};
    for (const char *variant : {"gsi16", "gsi8"}) {
        const auto exported = exportPoints(points, variant);
        ScriptedInteraction ui;
        convert::ImportOutput imported;
        ASSERT_TRUE(convert::importGsiPointsWildsoft(sourceOf(exported.bytes), ui, imported).ok());
        EXPECT_EQ(imported.completion, "Done");
        EXPECT_TRUE(imported.lines.empty());
        ASSERT_EQ(imported.points.size(), points.size()) << variant;
        for (std::size_t i = 0; i < points.size(); ++i) {
            EXPECT_EQ(imported.points[i].name, points[i].name);
            EXPECT_EQ(imported.points[i].description, points[i].description);
            EXPECT_NEAR(imported.points[i].easting, points[i].easting, 5e-4);
            EXPECT_NEAR(imported.points[i].northing, points[i].northing, 5e-4);
            EXPECT_NEAR(imported.points[i].elevation, points[i].elevation, 5e-4);
        }
    }
}

using GsiPointFiles = ScratchFolderTest;

TEST_F(GsiPointFiles, FlowWritesTheCoordinateFileOut) {
    ScriptedInteraction ui;
    crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
    ASSERT_TRUE(file.open(dir / "job.crd"));
    std::string report;
    const std::vector<crd::CrdPoint> points = {pointAt(1, 2, 3, "1", "A"),
                                               pointAt(4, 5, 6, "2", "B")};
    convert::writeImportedPoints(file, points, report);
    convert::ExportOutput out;
    ASSERT_TRUE(convert::runPointExport(convert::exportGsiPoints, file, dir / "out.gsi",
                                        {"gsi16", "m"}, ui, out)
                    .ok());
    EXPECT_EQ(readBytes(dir / "out.gsi"), out.bytes);
    EXPECT_EQ(ui.messages.back(), "Done");
    // An unwritable destination: the message, and nothing else changed.
    EXPECT_FALSE(convert::runPointExport(convert::exportGsiPoints, file, dir / "no/such/out.gsi",
                                         {"gsi16", "m"}, ui, out)
                     .ok());
    EXPECT_EQ(ui.messages.back(), "Error: unable to write file");
}

} // namespace
} // namespace tramline::test
