#include "geodesy/set_geoid_area.h"

#include "../support/test_support.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace tramline;
using namespace tramline::geodesy;

namespace {

// A one-degree world-wide model whose node value encodes its position
// (row * 1000 + column), so that a cut can be checked node by node.
void writeModel(const std::filesystem::path &file) {
    GridBounds b{-90, 0, 90, 360};
    GeoidGrid grid(b, 181, 361);
    for (int r = 0; r < grid.rows(); ++r)
        for (int c = 0; c < grid.columns(); ++c)
            grid.setNode(r, c, r * 1000 + c);
    ASSERT_TRUE(grid.save(file).ok());
}

} // namespace

TEST(SetGeoidArea, CutsTheSquareOnTheModelsNodes) {
    const tramline::test::ScratchFolder f;
    writeModel(f.path / "egm96.grd");
    GeoidModels models({f.path, "http://127.0.0.1:9/", 2});
    GeoidAreaSettings s;
    s.model = 6;
    s.latitude = 45.3000;   // 45 30' N
    s.longitude = 100.1500; // 100 15' W
    s.size = 2.0;
    ScriptedInteraction ui;
    const auto out = f.path / "job.grd";
    ASSERT_TRUE(setGeoidArea(models, s, out, ui).ok());
    EXPECT_EQ(ui.messages, std::vector<std::string>{"Done"});

    GeoidGrid cut;
    ASSERT_TRUE(GeoidGrid::load(out, cut).ok());
    // 44.5..46.5 N widened to 44..47; 259.75 E +- 1 widened to 258..261.
    EXPECT_EQ(cut.bounds().south, 44);
    EXPECT_EQ(cut.bounds().north, 47);
    EXPECT_EQ(cut.bounds().west, 258);
    EXPECT_EQ(cut.bounds().east, 261);
    ASSERT_EQ(cut.rows(), 4);
    ASSERT_EQ(cut.columns(), 4);
    EXPECT_EQ(cut.node(0, 0), (44 + 90) * 1000 + 258);
    EXPECT_EQ(cut.node(3, 3), (47 + 90) * 1000 + 261);
    // The cut interpolates like the model inside the square.
    double fromCut = 0, fromModel = 0;
    ASSERT_TRUE(cut.separation(45.5, -99.75, fromCut));
    ASSERT_TRUE(models.separation(6, 45.5, -99.75, fromModel).ok());
    EXPECT_NEAR(fromCut, fromModel, 1e-4);
}

TEST(SetGeoidArea, MilesAndEdges) {
    const tramline::test::ScratchFolder f;
    writeModel(f.path / "egm96.grd");
    GeoidModels models({f.path, "http://127.0.0.1:9/", 2});
    GeoidAreaSettings s;
    s.model = 6;
    s.latitude = 60.0;
    s.longitudeSide = LongitudeSide::East;
    s.longitude = 10.0;
    s.sizeUnit = AreaSizeUnit::Miles;
    s.size = 138.0; // 1.995 degrees of latitude, twice that of longitude at 60 N
    ScriptedInteraction ui;
    ASSERT_TRUE(setGeoidArea(models, s, f.path / "miles.grd", ui).ok());
    GeoidGrid cut;
    ASSERT_TRUE(GeoidGrid::load(f.path / "miles.grd", cut).ok());
    EXPECT_EQ(cut.bounds().south, 59);
    EXPECT_EQ(cut.bounds().north, 61);
    EXPECT_EQ(cut.bounds().west, 8);
    EXPECT_EQ(cut.bounds().east, 12);

    // At the pole the square is clipped to the model.
    s.latitude = 89.3;
    s.sizeUnit = AreaSizeUnit::Degrees;
    s.size = 4;
    ASSERT_TRUE(setGeoidArea(models, s, f.path / "pole.grd", ui).ok());
    ASSERT_TRUE(GeoidGrid::load(f.path / "pole.grd", cut).ok());
    EXPECT_EQ(cut.bounds().north, 90);
}

TEST(SetGeoidArea, Messages) {
    const tramline::test::ScratchFolder f;
    writeModel(f.path / "egm96.grd");
    std::ofstream(f.path / "osgm02.grd") << "49\n350\n61\n362\n1.0\n1.0\n1\n2\n3\n4\n";
    std::ofstream(f.path / "israel.grd") << "29\n34\n33.5\n36\n2.0\n"; // truncated
    GeoidModels models({f.path, "http://127.0.0.1:9/", 2});
    struct Case {
        int model;
        double latitude, size;
        AreaSizeUnit unit;
        std::filesystem::path output;
        const char *message;
    };
    constexpr auto Deg = AreaSizeUnit::Degrees;
    constexpr auto Miles = AreaSizeUnit::Miles;
    const Case cases[] = {
        {0, 45, 1, Deg, "a.grd", "Error: Geoid not set"},
        {79, 45, 1, Deg, "a.grd", "Error: Geoid not set"},
        {6, 45, 15.5, Deg, "a.grd", "Warning: max geoid size is 15 degrees"},
        {6, 45, 1100, Miles, "a.grd", "Warning: max geoid size is 15 degrees"},
        {36, 45, 1, Deg, "a.grd", "Error: Point is not within grid coverage."},
        {1, 10, 1, Deg, "a.grd", "Error: Point is not within grid coverage."},
        {40, 31, 1, Deg, "a.grd", "Error unable to read geoid"},
        {6, 45, 1, Deg, "no/such/folder/a.grd", "Error: unable to write Geoid grid."},
    };
    for (const auto &c : cases) {
        GeoidAreaSettings s;
        s.model = c.model;
        s.latitude = c.latitude;
        s.longitude = 1.0;
        s.longitudeSide = LongitudeSide::East;
        s.size = c.size;
        s.sizeUnit = c.unit;
        ScriptedInteraction ui;
        const Status status = setGeoidArea(models, s, f.path / c.output, ui);
        EXPECT_FALSE(status.ok()) << c.message;
        EXPECT_EQ(status.message, c.message);
        EXPECT_EQ(ui.messages, std::vector<std::string>{c.message});
    }
    EXPECT_FALSE(std::filesystem::exists(f.path / "a.grd"));
}

TEST(SetGeoidArea, IniFileInItsOrder) {
    const tramline::test::ScratchFolder f;
    GeoidAreaSettings s;
    s.latitude = 45.3015;
    s.longitude = 100.1;
    s.model = 6;
    s.size = 2.5;
    s.latitudeSide = LatitudeSide::North;
    s.longitudeSide = LongitudeSide::West;
    s.sizeUnit = AreaSizeUnit::Miles;
    const auto ini = f.path / kSetGeoidIni;
    ASSERT_TRUE(saveGeoidAreaSettings(ini, s));
    EXPECT_EQ(tramline::test::slurp(ini),
              "lat_val=45.3015\nlon_val=100.1000\nis_geoid99=6\nsize=2.50\nis_north=1\nis_east=0\n"
              "is_deg=0\n");
    GeoidAreaSettings back;
    ASSERT_TRUE(loadGeoidAreaSettings(ini, back));
    EXPECT_EQ(back.latitude, 45.3015);
    EXPECT_EQ(back.model, 6);
    EXPECT_EQ(back.sizeUnit, AreaSizeUnit::Miles);
    EXPECT_EQ(back.longitudeSide, LongitudeSide::West);

    // Unknown keys, bad values, CRLF and overlong lines are passed over.
    std::ofstream(ini, std::ios::binary) << "size=abc\r\nbogus=1\r\n"
                                         << std::string(500, 'x') << "\r\nis_east=1\r\n";
    GeoidAreaSettings partial;
    ASSERT_TRUE(loadGeoidAreaSettings(ini, partial));
    EXPECT_EQ(partial.size, 1.0);
    EXPECT_EQ(partial.longitudeSide, LongitudeSide::East);
    EXPECT_FALSE(loadGeoidAreaSettings(f.path / "absent.ini", partial));
}

TEST(SetGeoidArea, AsksThroughTheForm) {
    GeoidAreaSettings s;
    ScriptedInteraction ui({"45.3|South|100.15|West|2|Miles|6"});
    ASSERT_TRUE(askGeoidArea(ui, s));
    EXPECT_EQ(ui.questions, std::vector<std::string>{"Set Geoid Area"});
    EXPECT_EQ(s.latitude, 45.3);
    EXPECT_EQ(s.latitudeSide, LatitudeSide::South);
    EXPECT_EQ(s.longitudeSide, LongitudeSide::West);
    EXPECT_EQ(s.sizeUnit, AreaSizeUnit::Miles);
    EXPECT_EQ(s.model, 6);
    ScriptedInteraction cancel({"<cancel>"});
    EXPECT_FALSE(askGeoidArea(cancel, s));
    ScriptedInteraction bad({"x|North|1|East|1|Degree|6"});
    EXPECT_FALSE(askGeoidArea(bad, s));
}
