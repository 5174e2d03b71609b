// The shared import flow: refused points are reported and the conversion
// goes on, the store-point lines stay.
#include "base/point_names.h"
#include "convert/import_flow.h"
#include "convert_test_support.h"
#include "crd/coordinate_file.h"
#include "crd/file_kinds.h"
#include "support/test_support.h"

#include <cmath>
#include <sstream>

namespace tramline::test {
namespace {

class ImportFlow : public ScratchFolderTest {};

TEST_F(ImportFlow, RefusedPointIsReportedAndItsLineWrittenAllTheSame) {
    write("in.sdr", "00NMSDR33 V04-04.02     05-Nov-20 08:00 113111\n"
                    "08KI              12100.0           200.0           5.0\n"
                    "08KI             ABC1.0             2.0             3.0\n");
    ScriptedInteraction ui({"Sideshots"});
    crd::CoordinateFile numeric(crd::CrdContext{&ui, {}, {}});
    ASSERT_TRUE(numeric.open(dir / "num.crd", crd::Create::Always, crd::kFormatNumeric));
    convert::ImportSummary summary;
    ASSERT_TRUE(convert::runImport(convert::importSdr,
                                   {dir / "in.sdr", dir / "out.rw5", {}, &numeric}, ui, summary)
                    .ok());
    EXPECT_EQ(summary.pointsStored, 1);
    EXPECT_EQ(summary.pointsRefused, 1);
    const std::string prefix = "\nError: ";
    ASSERT_TRUE(summary.report.starts_with(prefix)) << summary.report;
    EXPECT_TRUE(summary.report.ends_with(" Unable to write point ABC")) << summary.report;
    EXPECT_NE(slurp(dir / "out.rw5").find("SP,PNABC,N 1.0000,E 2.0000,EL3.0000,--\n"),
              std::string::npos);
    crd::CrdPoint p;
    EXPECT_TRUE(numeric.readPoint("12", p));
    EXPECT_EQ(ui.messages.back(), "SOKKIA File conversion complete");
    EXPECT_EQ(convert::summaryLine(summary),
              "Read 3 records: 0 observations, 1 points stored, 0 lines skipped");
}

// The import sorts points before the coordinate file sees them; the order
// must be the file's own, with equal names kept in the order met.
TEST(PointNameOrder, FollowsThePointNameOrderAndKeepsEqualNamesInTheirOrder) {
    const std::vector<std::string> names = {
        "10", "9",   "A2",   "a10", "007", "7",  "1.5", "1.10", "123456789012345678901",
        "99", "10",  "B",    "0",   "",    "A2", "2a",  "2",    "999999999999999999",
        "9",  "2.0", "0009", "x",   "X",   "10"};
    std::vector<crd::CrdPoint> points(names.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        points[i].name = names[i];
    const auto order = convert::pointNameOrder(points);
    ASSERT_EQ(order.size(), names.size());
    std::vector<bool> seen(names.size(), false);
    for (const auto i : order)
        seen.at(i) = true;
    EXPECT_EQ(std::count(seen.begin(), seen.end(), true), long(names.size()));
    for (std::size_t k = 1; k < order.size(); ++k) {
        const auto &a = names[order[k - 1]], &b = names[order[k]];
        const int c = comparePointNames(a, b);
        EXPECT_LE(c, 0) << a << " before " << b;
        if (c == 0) {
            EXPECT_LT(order[k - 1], order[k]) << "equal names " << a << " out of order";
        }
    }
}

TEST_F(ImportFlow, PointsAreStoredInNameOrderAndRefusalsReportedInTheOrderMet) {
    ScriptedInteraction ui;
    crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
    ASSERT_TRUE(file.open(dir / "alpha.crd", crd::Create::Always, crd::kFormatAlphanumeric));
    auto point = [](const char *name, double e) {
        crd::CrdPoint p;
        p.set(e, 2 * e, 3 * e, name);
        return p;
    };
    std::vector<crd::CrdPoint> points = {point("9", NAN), point("5", 1),   point("B7", 2),
                                         point("", 3),    point("5", 4),   point("10", 5),
                                         point("A", 6),   point("2", NAN), point("b7", 7)};
    std::string report;
    EXPECT_EQ(convert::writeImportedPoints(file, std::move(points), report), 6);
    // Refused: "9" and "2" (no coordinates) and the blank name, as met.
    const auto nine = report.find("point 9\n"), blank = report.find("point \n"),
               two = report.find("point 2");
    ASSERT_NE(nine, std::string::npos) << report;
    ASSERT_NE(blank, std::string::npos) << report;
    ASSERT_NE(two, std::string::npos) << report;
    EXPECT_LT(nine, blank);
    EXPECT_LT(blank, two);
    std::vector<crd::CrdPoint> stored;
    ASSERT_TRUE(crd::readAllPoints(file, stored));
    std::vector<std::string> names;
    for (const auto &p : stored)
        names.push_back(p.name);
    EXPECT_EQ(names, (std::vector<std::string>{"5", "10", "A", "B7"}));
    EXPECT_EQ(stored[0].easting, 4.0); // the later of the two "5"
    EXPECT_EQ(stored[3].easting, 7.0); // "b7" is "B7" again, and later
}

// A large file's line list is reserved from a sample of its start: the
// stream must be read from where it stood, every line whole.
TEST(SourceLines, LargeStreamIsReadWholeFromWhereItStood) {
    std::string bytes = "skipped by the caller\n";
    const std::size_t start = bytes.size();
    std::vector<std::string> expected;
    for (int i = 0; bytes.size() < (std::size_t(3) << 20); ++i) {
        expected.push_back("line " + std::to_string(i) + std::string(std::size_t(i % 97), 'x'));
        bytes += expected.back() + (i % 3 == 0 ? "\r\n" : "\n");
        if (i % 1000 == 0)
            bytes += "\n"; // an empty line keeps its number
    }
    std::istringstream in(bytes);
    in.seekg(std::streamoff(start));
    convert::SourceLines lines;
    ASSERT_TRUE(convert::readSourceLines(in, lines).ok());
    ASSERT_EQ(lines.size(), expected.size());
    EXPECT_EQ(lines.front().text, "line 0");
    EXPECT_EQ(lines.back().text, expected.back());
    EXPECT_EQ(lines[1].number, 2u); // after line 0 and its empty line
    for (std::size_t i = 0; i < lines.size(); i += 997)
        EXPECT_EQ(lines[i].text, expected[i]);
}

} // namespace
} // namespace tramline::test
