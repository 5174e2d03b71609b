// Tools > GPS Localization Report and Process > GPS through the menu, on a
// job whose local grid is UTM zone 33 moved by (1000, -5800000).
#include "app_test_support.h"

#include "app/command_ids.h"
#include "app/coordinate_grid_model.h"
#include "base/angles.h"
#include "base/format.h"
#include "geodesy/epsg.h"
#include "geodesy/projection.h"

#include <QTabWidget>
#include <QTableWidget>

using namespace tramline;
using namespace tramline::app;

namespace {

class LocalizationShellTest : public test::ShellTest {
protected:
    struct Gps {
        const char *name;
        double lat, lon, h;
        bool control;
    };
    static constexpr Gps kJob[] = {{"1", 52.40, 16.90, 95.0, true},
                                   {"2", 52.41, 16.90, 96.0, true},
                                   {"3", 52.40, 16.92, 97.0, true},
                                   {"4", 52.41, 16.92, 94.0, true},
                                   {"9", 52.405, 16.91, 95.5, false}};

    static void local(const Gps &g, double &north, double &east) {
        geodesy::CoordinateSystem utm;
        EXPECT_TRUE(geodesy::systemFromEpsg(32633, utm));
        geodesy::Projection projection;
        EXPECT_TRUE(projection.open(utm));
        EXPECT_TRUE(projection.forward(g.lat, g.lon, north, east));
        north -= 5.8e6;
        east += 1000.0;
    }

    std::filesystem::path job() {
        std::string text = "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n";
        for (const Gps &g : kJob) {
            appendFormat(text, "GPS,PN%s,LA%.11f,LN%.11f,EL%.4f,--\n", g.name, packDms(g.lat, 8),
                         packDms(g.lon, 8), g.h);
            double n = 0, e = 0;
            local(g, n, e);
            if (g.control)
                appendFormat(text, "--GS,PN%s,N %.4f,E %.4f,EL%.4f\n", g.name, n, e, g.h - 40);
        }
        return write("site.rw5", text);
    }
};

TEST_F(LocalizationShellTest, DefineLocalizationThenProcessGps) {
    const auto raw = job();
    auto d = start("\"" + raw.string() + "\"");
    const auto kept = dir / "site.dat";
    shell.files = {raw.string(), kept.string()};
    shell.reply("EPSG|32633");
    shell.reply("On|On|Off");
    d->dispatch(cmd::GpsLocalizationReport);
    ASSERT_NE(d->localizationWindow(), nullptr) << testing::PrintToString(shell.messages);
    EXPECT_EQ(shell.asked.front(), "Alignment File to Load (dat;loc;gc3;raw)");
    EXPECT_EQ(shell.questions.at(1).rfind("Localization Report Settings", 0), 0u);
    const QTableWidget &list = *d->localizationWindow()->pointList();
    ASSERT_EQ(list.columnCount(), 10);
    EXPECT_EQ(list.horizontalHeaderItem(0)->text(), "Localization Points");
    EXPECT_EQ(list.horizontalHeaderItem(7)->text(), "Use_Horizontal");
    EXPECT_EQ(list.rowCount(), 4);
    // Numbers line up on their decimal points, flags centre, words read from the left.
    for (int column = 0; column < list.columnCount(); ++column) {
        const Qt::Alignment expected = column <= 6   ? Qt::AlignRight | Qt::AlignVCenter
                                       : column <= 8 ? Qt::Alignment(Qt::AlignCenter)
                                                     : Qt::AlignLeft | Qt::AlignVCenter;
        EXPECT_EQ(Qt::Alignment(list.item(0, column)->textAlignment()), expected)
            << list.horizontalHeaderItem(column)->text().toStdString();
    }
    const QString report = d->localizationWindow()->reportText();
    EXPECT_TRUE(report.contains("Over Determination by Plane Similarity"));
    EXPECT_FALSE(report.contains("Local_X = a0")) << "formulas were switched off";
    EXPECT_EQ(d->localizationWindow()->tabs()->count(), 3);
    EXPECT_NE(test::slurp(settingsFolder() / "locreport.ini").find("is_formula=0"),
              std::string::npos);
    ASSERT_TRUE(std::filesystem::exists(kept));
    ASSERT_TRUE(std::filesystem::exists(dir / "site.ini"));
    // The plan shows each alignment point's residual, magnified as stated.
    d->dispatch(cmd::Plot);
    ASSERT_NE(d->plotWindow(), nullptr);
    EXPECT_EQ(d->plotWindow()->count(PlotWindow::ResidualItem), 4);
    EXPECT_TRUE(d->plotWindow()->legend().contains(
        QString("Localization residuals x %1").arg(d->plotWindow()->residualFactor())));

    shell.files = {kept.string()};
    d->dispatch(cmd::ProcessGps);
    ASSERT_NE(d->processResultsWindow(), nullptr);
    EXPECT_EQ(d->processResultsWindow()->windowTitle(), "GPS Processing");
    const auto &points = d->coordinateModel()->points();
    ASSERT_EQ(points.size(), 5u);
    const int row = d->coordinateModel()->rowOf("9");
    ASSERT_GE(row, 0);
    double n = 0, e = 0;
    local(kJob[4], n, e);
    EXPECT_NEAR(points[static_cast<size_t>(row)].northing, n, 0.001);
    EXPECT_NEAR(points[static_cast<size_t>(row)].easting, e, 0.001);
    EXPECT_NEAR(points[static_cast<size_t>(row)].elevation, 55.5, 0.001);
    EXPECT_TRUE(d->coordinateModified());
}

TEST_F(LocalizationShellTest, AJobWithoutPairsSaysSoAndShowsNothing) {
    const auto raw = write("lone.rw5", "GPS,PN1,LA52.2400,LN16.5400,EL95.0,--\n");
    auto d = start();
    shell.files = {raw.string()};
    shell.reply("EPSG|32633");
    shell.reply("On|On|On");
    d->dispatch(cmd::GpsLocalizationReport);
    EXPECT_EQ(d->localizationWindow(), nullptr);
    ASSERT_FALSE(shell.messages.empty());
    EXPECT_EQ(shell.messages.back(), "No calibration records found");
}

} // namespace
