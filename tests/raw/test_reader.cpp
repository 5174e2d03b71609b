#include "base/angles.h"
#include "raw/reader.h"

#include "../support/raw_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

using namespace tramline;
using namespace tramline::raw;

namespace {

using tramline::test::readRawText;

Observation readShot(const std::string &line, const std::string &prefix = {}) {
    const RawFile f = readRawText(prefix + line + "\n");
    EXPECT_FALSE(f.nodes.empty());
    return f.nodes.back().observation;
}

// Normalisation: every observation ends as a vertical angle and a slope
// distance, whatever the file wrote.
TEST(RawReader, NormalisesVerticalAndDistance) {
    struct Case {
        const char *line;
        double verticalDegrees;
        double slope;
    };
    const double h = 100.0, ce = 3.0;
    const Case cases[] = {
        {"SS,OP1,FP2,AR0,ZE87.3000,SD100.000,--", 2.5, 100.0},
        {"SS,OP1,FP2,AR0,ZE92.3000,SD100.000,--", -2.5, 100.0},
        {"SS,OP1,FP2,AR0,VA2.3000,SD100.000,--", 2.5, 100.0},
        {"SS,OP1,FP2,AR0,VA2.3000,HD100.000,--", 2.5, 100.0 / std::cos(radians(2.5))},
        {"SS,OP1,FP2,AR0,VA-2.3000,hD100.000,--", -2.5, 100.0 / std::cos(radians(2.5))},
        {"SS,OP1,FP2,AR0,CE3.000,HD100.000,--", degrees(std::atan(ce / h)), std::hypot(h, ce)},
        {"SS,OP1,FP2,AR0,CE-3.000,HD100.000,--", -degrees(std::atan(ce / h)), std::hypot(h, ce)},
        {"SS,OP1,FP2,AR0,CE3.000,SD100.000,--", degrees(std::atan(3.0 / std::sqrt(10000.0 - 9.0))),
         100.0},
        {"SS,OP1,FP2,AR0,CE5.000,SD5.000,--", 0.0, 5.0},      // straight up: no horizontal, angle 0
        {"SS,OP1,FP2,AR0,XX2.3000,SD100.000,--", 2.5, 100.0}, // unknown code reads as VA
    };
    for (const auto &c : cases) {
        const Observation o = readShot(c.line);
        ASSERT_TRUE(o.hasVertical) << c.line;
        // Written back to ddd.mmss, so compare at a tenth of a microsecond.
        EXPECT_NEAR(unpackDms(o.verticalAngle), c.verticalDegrees, 1e-7) << c.line;
        EXPECT_NEAR(o.slopeDistance, c.slope, 1e-9) << c.line;
    }
}

TEST(RawReader, GonFilesNormaliseInGons) {
    const Observation o =
        readShot("SS,OP1,FP2,AR0,ZE97.5000,SD100.000,--", "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU1\n");
    EXPECT_NEAR(o.verticalAngle, 2.5, 1e-12); // 100 - 97.5 gons
    const Observation n = readShot("SS,OP1,FP2,AR0,VA2.5,HD100.000,--", "--UNITS GONS\n");
    EXPECT_NEAR(n.slopeDistance, 100.0 / std::cos(radians(2.25)), 1e-9);
}

TEST(RawReader, HorizontalKinds) {
    struct Case {
        const char *field;
        HorizontalKind kind;
        double value;
    };
    const Case cases[] = {
        {"BRN45.3000E", HorizontalKind::NE, 45.3}, {"BRS45.3000E", HorizontalKind::SE, 45.3},
        {"BRS45.3000W", HorizontalKind::SW, 45.3}, {"BRN45.3000W", HorizontalKind::NW, 45.3},
        {"AZ45.3000", HorizontalKind::AZ, 45.3},   {"AL45.3000", HorizontalKind::AL, 45.3},
        {"AR45.3000", HorizontalKind::AR, 45.3},   {"DL45.3000", HorizontalKind::DL, 45.3},
        {"DR45.3000", HorizontalKind::DR, 45.3},   {"GN45.3000", HorizontalKind::GN, 45.3},
    };
    for (const auto &c : cases) {
        const Observation o = readShot(std::string("TR,OP1,FP2,") + c.field + ",ZE90,SD1,--");
        EXPECT_EQ(o.horizontalKind, c.kind) << c.field;
        EXPECT_TRUE(o.hasHorizontal) << c.field;
        EXPECT_DOUBLE_EQ(o.horizontal, c.value) << c.field;
    }
}

TEST(RawReader, ObservationFlagsAndFields) {
    const Observation o = readShot("CL+AB,OP10,FP11,AR1.0000,ZE90,SD5,--desc, with comma");
    EXPECT_TRUE(o.isClosing());
    EXPECT_TRUE(o.isAngleBalance());
    EXPECT_TRUE(o.isClosingAndBalance());
    EXPECT_FALSE(o.isTraverse());
    EXPECT_EQ(o.occupied, "10");
    EXPECT_EQ(o.foresight, "11");
    EXPECT_EQ(o.description, "desc, with comma");
    const Observation empty = readShot("SS,OP1,FP2,AR,ZE,SD,--");
    EXPECT_FALSE(empty.hasHorizontal);
    EXPECT_FALSE(empty.hasVertical);
    EXPECT_FALSE(empty.hasDistance);
}

// An observation keeps the vertical value as written beside the normalised
// one, and its field texts only when a value is not a number (which the
// editor then shows as written).
TEST(RawReader, ObservationKeepsWhatTheNumbersCannot) {
    struct Case {
        const char *line;
        bool hasWritten;
        double written;
        std::vector<std::string> fields;
    };
    const Case cases[] = {
        {"SS,OP1,FP2,AR10.0000,ZE87.3000,SD100.000,--A", true, 87.3, {}},
        {"SS,OP1,FP2,AR10.0000,VA2.3000,HD100.000,--A", true, 2.3, {}},
        {"SS,OP1,FP2,AR10.0000,CE3.000,HD100.000,--A", true, 3.0, {}},
        {"SS,OP1,FP2,ARx,ZE87.3000,SD100.000,--A",
         true,
         87.3,
         {"1", "2", "x", "87.3000", "100.000", "A"}},
        {"SS,OP1,FP2,AR10.0000,ZE,SD5,--", false, 0.0, {"1", "2", "10.0000", "", "5", ""}},
        {"SS,OP1,FP2,BRN45.3000E,ZE90,SD?,--", true, 90.0, {"1", "2", "45.3000", "90", "?", ""}},
    };
    for (const auto &c : cases) {
        const RawFile f = readRawText(std::string(c.line) + "\n");
        ASSERT_EQ(f.nodes.size(), 1u) << c.line;
        const Observation &o = f.nodes[0].observation;
        EXPECT_EQ(o.hasWrittenVertical, c.hasWritten) << c.line;
        if (c.hasWritten) {
            EXPECT_DOUBLE_EQ(o.writtenVertical, c.written) << c.line;
        }
        EXPECT_EQ(f.nodes[0].fields, c.fields) << c.line;
    }
}

TEST(RawReader, RecordsAndTextRows) {
    const std::string text = "JB,NMX,DT1,TM2\n"
                             "MO,AD0,UN0,SF1.00000000,EC0,EO0,AU0\n"
                             "ab\n" // shorter than three characters: dropped
                             "--\n"
                             "SP,PN7,N 1.5,E 2.5,EL3.5,--MON\n"
                             "LS,HR5.5\n"
                             "BK,OP1,BP,BS45.3000\n"
                             "GPS,PN9,LA1,LN2,EL3,--G\n"
                             "BP,PN8,LA1,LN2,EL3,AG1,PA2,AT3,SR4\n"
                             "G1,BP1,PN2,DX1,DY2,DZ3\n"
                             "DO,Data On/Off\n"
                             "NAME,Loop A\n"
                             "--" +
                             std::string(100, 'n') +
                             "\n"
                             "ZZ,unknown\n";
    const RawFile f = readRawText(text);
    ASSERT_EQ(f.nodes.size(), 12u);
    EXPECT_EQ(f.units.linear, LinearUnit::InternationalFeet);
    EXPECT_EQ(f.nodes[0].type, RecordType::Text);
    EXPECT_EQ(f.nodes[0].text, "JB,NMX,DT1,TM2");
    EXPECT_EQ(f.nodes[2].type, RecordType::StorePoint);
    EXPECT_EQ(f.nodes[2].fields, (std::vector<std::string>{"7", "1.5", "2.5", "3.5", "MON"}));
    EXPECT_EQ(f.nodes[3].type, RecordType::Heights);
    EXPECT_FALSE(f.nodes[3].hasHi);
    EXPECT_TRUE(f.nodes[3].hasHr);
    EXPECT_EQ(f.nodes[3].fields[1], "5.5");
    EXPECT_EQ(f.nodes[4].fields, (std::vector<std::string>{"1", "", "45.3000"}));
    EXPECT_EQ(f.nodes[6].type, RecordType::BasePoint);
    EXPECT_EQ(f.nodes[6].fields.back(), "AG1,PA2,AT3,SR4");
    EXPECT_EQ(f.nodes[7].type, RecordType::GpsVector);
    EXPECT_EQ(f.nodes[7].fields[0], "BP1,PN2,DX1,DY2,DZ3");
    EXPECT_EQ(f.nodes[8].type, RecordType::DataOnOff);
    EXPECT_EQ(f.nodes[9].fields[0], "Loop A");
    EXPECT_EQ(f.nodes[10].text.size(), kTextRowLimit); // long text rows are cut
    EXPECT_EQ(f.nodes[11].text, "ZZ,unknown");
    EXPECT_EQ(f.nodes[11].lineNumber, 14u);
}

TEST(RawReader, Units) {
    struct Case {
        const char *text;
        LinearUnit linear;
        AngleUnit angle;
    };
    const Case cases[] = {
        {"", LinearUnit::Metres, AngleUnit::DegreesMinutesSeconds},
        {"MO,AD0,UN0,SF1.00000000,EC0,EO0,AU0\n", LinearUnit::InternationalFeet,
         AngleUnit::DegreesMinutesSeconds},
        {"MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n", LinearUnit::Metres,
         AngleUnit::DegreesMinutesSeconds},
        {"MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n", LinearUnit::UsSurveyFeet,
         AngleUnit::DegreesMinutesSeconds},
        {"MO,AD0,UN1,SF1.00000000,EC0,EO0,AU2\n", LinearUnit::Metres, AngleUnit::Gons},
        {"--UNITS FOOT\n", LinearUnit::InternationalFeet, AngleUnit::DegreesMinutesSeconds},
        {"--UNITS METERS\r\n--UNITS GONS\n", LinearUnit::Metres, AngleUnit::Gons},
        {"MO,AD0,UN0,SF1.00000000,EC0,EO0,AU0\n--UNITS METERS\n", LinearUnit::Metres,
         AngleUnit::DegreesMinutesSeconds},
        {"MO,AD0,UN9,SF1.00000000,EC0,EO0,AU0\n", LinearUnit::Metres,
         AngleUnit::DegreesMinutesSeconds},
    };
    for (const auto &c : cases) {
        const RawFile f = readRawText(c.text);
        EXPECT_EQ(f.units.linear, c.linear) << c.text;
        EXPECT_EQ(f.units.angle, c.angle) << c.text;
    }
}

TEST(RawReader, BadInputNeverCrashes) {
    std::string garbage;
    for (int i = 0; i < 20000; ++i)
        garbage += static_cast<char>((i * 7919) % 256);
    const RawFile g = readRawText(garbage);
    for (const auto &n : g.nodes)
        EXPECT_LE(n.text.size(), kTextRowLimit);

    const RawFile shortLines = readRawText("a\nbc\n\n--\nx\n");
    EXPECT_TRUE(shortLines.nodes.empty());

    const RawFile crlf = readRawText("SS,OP1,FP2,AR90.0000,ZE90.0000,SD10.000,--EP\r\n");
    ASSERT_EQ(crlf.nodes.size(), 1u);
    EXPECT_EQ(crlf.nodes[0].observation.description, "EP");

    // A 5,000-character line comes in 221-character pieces, each a record.
    const RawFile longLine = readRawText("--" + std::string(4998, 'x') + "\nLS,HI1\n");
    EXPECT_EQ(longLine.nodes.size(), 24u);
    EXPECT_EQ(longLine.nodes.back().type, RecordType::Heights);
}

// A stream that serves `lines` lines of eight bytes in one block and then
// fails, as a disk or a network share can.
class FailingBuffer : public std::streambuf {
public:
    explicit FailingBuffer(std::size_t lines) {
        for (std::size_t i = 0; i < lines; ++i)
            m_data += "LS,HI12\n";
        setg(m_data.data(), m_data.data(), m_data.data() + m_data.size());
    }

protected:
    int_type underflow() override { throw std::runtime_error("device gone"); }

private:
    std::string m_data;
};

TEST(RawReader, FailuresCarryTheirLine) {
    RawFile f;
    const struct {
        std::filesystem::path path;
        StatusCode code;
    } files[] = {{"/nonexistent/job.rw5", StatusCode::NotFound},
                 {std::filesystem::temp_directory_path(), StatusCode::NotFound}};
    for (const auto &c : files) {
        const Status status = readRawFile(c.path, f);
        EXPECT_EQ(status.code, c.code) << c.path;
        EXPECT_EQ(status.message, "Error: unable to read raw file");
        EXPECT_EQ(status.lineNumber, 0u) << c.path; // nothing was read
    }
    // The reader takes 64 KiB at a time: 8192 lines arrive, the next fails.
    FailingBuffer buffer(8192);
    std::istream in(&buffer);
    const Status status = readRaw(in, f);
    EXPECT_EQ(status.code, StatusCode::Io);
    EXPECT_EQ(status.lineNumber, 8193u);
    EXPECT_EQ(f.nodes.size(), 8192u);
    std::istringstream good("LS,HI1\n");
    EXPECT_TRUE(readRaw(good, f).ok());
}

} // namespace

// Fuzzing found an occupy line too short to hold a point ("OC,A") thrown
// out of range where the processing looked for its point.
TEST(RawRecords, OccupiedPointOfShortLines) {
    struct Case {
        const char *line, *point;
    };
    const Case cases[] = {{"OC,OP12,N 1,E 2,EL3,--", "12"},
                          {"OC,PNA-7,N ,E ,EL,--", "A-7"},
                          {"OC,OP5", "5"},
                          {"OC,A", ""},
                          {"OC,", ""},
                          {"OC,OP", ""},
                          {"SS,OP1,FP2", ""}};
    for (const auto &c : cases)
        EXPECT_EQ(occupiedPointOf(c.line), c.point) << c.line;
}
