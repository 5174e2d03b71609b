// Geodimeter points: the five-line export, and a coordinate file written
// out and read back whole (the area samples are in test_field_samples.cpp).
#include "convert/geodimeter_points.h"
#include "convert/point_flow.h"
#include "convert_test_support.h"
#include "crd/coordinate_file.h"
#include "support/test_support.h"

namespace tramline::test {
namespace {

TEST(GeodimeterPoints, ExportWritesFiveLinesAPoint) {
    crd::CrdPoint a, b;
    a.set(200.5, 100.25, 10.125, "1", "IP");
    b.set(-5, -6, 0, "B7", "");
    b.code = "CODE";
    const crd::CrdPoint points[] = {a, b};
    ScriptedInteraction ui;
    convert::ExportOutput out;
    ASSERT_TRUE(convert::exportGeodimeterPoints(points, {}, ui, out).ok());
    EXPECT_EQ(out.bytes, "5=1\n4=IP\n37=100.25000\n38=200.50000\n39=10.12500\n"
                         "5=B7\n4=CODE\n37=-6.00000\n38=-5.00000\n39=0.00000\n");
    EXPECT_EQ(out.completion, "Done");
}

class GeodimeterPointFiles : public ScratchFolderTest {};

TEST_F(GeodimeterPointFiles, RoundTripKeepsEveryPointAndFailuresSaySo) {
    ScriptedInteraction ui;
    crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
    ASSERT_TRUE(file.open(dir / "a.crd", crd::Create::Always, 1));
    for (int i = 1; i <= 30; ++i) {
        crd::CrdPoint p;
        p.set(1000.0 + i * 0.12345, 5000.0 - i * 1.5, i * 0.001, "P" + std::to_string(i),
              "d" + std::to_string(i));
        ASSERT_TRUE(file.writePoint(p));
    }
    convert::ExportOutput out;
    ASSERT_TRUE(
        convert::runPointExport(convert::exportGeodimeterPoints, file, dir / "p.obs", {}, ui, out)
            .ok());
    EXPECT_EQ(ui.messages.back(), "Done");

    crd::CoordinateFile copy(crd::CrdContext{&ui, {}, {}});
    ASSERT_TRUE(copy.open(dir / "b.crd", crd::Create::Always, 1));
    convert::ImportSummary summary;
    ASSERT_TRUE(
        convert::runPointImport(convert::importGeodimeterPoints, dir / "p.obs", copy, ui, summary)
            .ok());
    EXPECT_EQ(ui.messages.back(), "Read in 30 points.");
    std::vector<crd::CrdPoint> before, after;
    readAllPoints(file, before);
    readAllPoints(copy, after);
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(after[i].name, before[i].name);
        EXPECT_NEAR(after[i].northing, before[i].northing, 5e-6);
        EXPECT_NEAR(after[i].easting, before[i].easting, 5e-6);
        EXPECT_NEAR(after[i].elevation, before[i].elevation, 5e-6);
        EXPECT_EQ(after[i].description, before[i].description);
    }

    spit(dir / "old.obs", "keep");
    EXPECT_FALSE(convert::runPointExport(convert::exportGeodimeterPoints, file,
                                         dir / "missing" / "p.obs", {}, ui, out)
                     .ok());
    EXPECT_EQ(ui.messages.back(), "Error: unable to write file");
    EXPECT_FALSE(convert::runPointImport(convert::importGeodimeterPoints, dir / "none.obs", copy,
                                         ui, summary)
                     .ok());
    EXPECT_EQ(ui.messages.back(), "Error: unable to read file");
    EXPECT_FALSE(
        convert::runPointImport(convert::importGeodimeterPoints, dir / "old.obs", copy, ui, summary)
            .ok());
    EXPECT_EQ(ui.messages.back(), "Error: not a Geodimeter file");
}

} // namespace
} // namespace tramline::test
