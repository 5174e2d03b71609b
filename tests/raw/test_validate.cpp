#include "raw/streaming_check.h"
#include "raw/validate.h"

#include "../support/raw_support.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace tramline::raw;

namespace {

using tramline::test::readRawText;

TEST(ValidateRaw, Warnings) {
    struct Case {
        const char *text;
        std::vector<std::string> warnings;
    };
    const Case cases[] = {
        {"SS,OP1,FP2,AR10.6000,ZE90.0060,SD1,--\n", {}}, // exactly 60 passes
        {"SS,OP1,FP2,AR10.6100,ZE90.0000,SD1,--\n",
         {"Warning: Bad horizontal angle: 10.6100 at row: 1 (Not dd.mmss format)"}},
        {"--x\nSS,OP1,FP2,AR10.0000,ZE90.0061,SD1,--\n",
         {"Warning: Bad vertical angle: 90.0061 at row: 2 (Not dd.mmss format)"}},
        {"SS,OP1,FP2,AR10.0000,CE5.0,SD4.0,--\n",
         {"Warning: Invalid elevation difference: 5.0000 at row: 1 (Greater than slope distance)"}},
        {"SS,OP1,FP2,AR10.0000,CE90.0090,HD4.0,--\n", {}}, // elevation differences are not angles
        {"BK,OP1,BP2,BS400.0000,BC10.7000\n",
         {"Warning: Bad backsight azimuth: 400.0000 at row: 1 (Not dd.mmss format)",
          "Warning: Bad set backsight azimuth: 10.7000 at row: 1 (Not dd.mmss format)"}},
        {"SS,OP1,FP2,AR-98765432.1,ZE,SD1,--\n", {}}, // the unset value is never validated
        {"SS,OP1,FP2,AR10.0000,ZE-98765432.1,SD1,--\n", {}},
        {"SS,OP1,FP2,AR10.0000,CE5.0,SD-98765432.1,--\n", {}},
        {"SS,OP1,FP2,AR10.0000,CE5.0,SDx,--\n", {}}, // no distance to compare with
        {"--UNITS GONS\nSS,OP1,FP2,AR10.9900,ZE99.9900,SD1,--\n", {}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(validateRaw(readRawText(c.text)), c.warnings) << c.text;
}

TEST(ValidateRaw, HeightLimits) {
    HeightLimits limits{true, 0.0, 10.0, 0.0, 20.0};
    const auto w = validateRaw(readRawText("LS,HI12.5,HR-1\nLS,HI-98765432.1\n"), limits);
    EXPECT_EQ(w,
              (std::vector<std::string>{
                  "Warning: Invalid Instrument Height 12.50 at row: 1 (Not within 0.00 to 10.00)",
                  "Warning: Invalid Rod Height -1.00 at row: 1 (Not within 0.00 to 20.00)"}));
}

TEST(SummarizeRaw, CountsAndUnrecognisedLines) {
    std::istringstream in(
        "JB,NMX,DT,TM\nOC,OP1,N ,E ,EL,--\nSS,OP1,FP2,AR1,ZE2,SD3,--\nNAME,x\nQQ,what\nab\n--n\n");
    const RawSummary s = summarizeRaw(in);
    EXPECT_EQ(s.lines, 7u);
    EXPECT_EQ(s.records, 6u);
    EXPECT_EQ(s.setups, 1u);
    EXPECT_EQ(s.observations, 1u);
    EXPECT_EQ(s.notes, 1u);
    EXPECT_EQ(s.unrecognised, (std::vector<std::string>{"line 5: QQ,what"}));
}

} // namespace

namespace tramline::raw {
namespace {

// The one-pass check must say what reading the whole file says: the same
// counts, unrecognised lines and warnings, the unit declared anywhere.
TEST(StreamingCheck, AgreesWithTheWholeFile) {
    const char *const texts[] = {
        "JB,NMX,DT,TM\nOC,OP1,N ,E ,EL,--\nSS,OP1,FP2,AR1,ZE2,SD3,--\nNAME,x\nQQ,what\nab\n--n\n",
        "SS,OP1,FP2,AR10.6100,ZE90.0061,SD1,--\nBK,OP1,BP2,BS400.0000,BC10.7000\nZZ\n",
        "SS,OP1,FP2,AR10.6100,ZE90.0000,SD1,--\n--UNITS GONS\nSS,OP1,FP2,AR10.9900,CE9,SD4,--\n",
        "LS,HI12.5,HR-1\nSS,OP1,FP2,AR10.0000,CE5.0,SD4.0,--\n",
    };
    for (const char *text : texts) {
        SCOPED_TRACE(text);
        std::istringstream whole(text);
        const RawSummary expected = summarizeRaw(whole);
        std::istringstream in(text);
        std::vector<std::string> unrecognised, warnings;
        StreamingCheck check;
        ASSERT_TRUE(checkRawStream(
                        in, [&](const std::string &line) { unrecognised.push_back(line); },
                        [&](std::string w, bool dmsOnly) {
                            warnings.push_back(std::string(dmsOnly ? "dms " : "") + w);
                        },
                        check)
                        .ok());
        std::vector<std::string> kept;
        const bool dms = check.units.angle == tramline::AngleUnit::DegreesMinutesSeconds;
        for (const auto &w : warnings)
            if (!w.starts_with("dms ") || dms)
                kept.push_back(w.starts_with("dms ") ? w.substr(4) : w);
        EXPECT_EQ(kept, validateRaw(tramline::test::readRawText(text)));
        EXPECT_EQ(unrecognised, expected.unrecognised);
        EXPECT_EQ(check.summary.lines, expected.lines);
        EXPECT_EQ(check.summary.records, expected.records);
        EXPECT_EQ(check.summary.observations, expected.observations);
        EXPECT_EQ(check.summary.notes, expected.notes);
        EXPECT_TRUE(check.summary.unrecognised.empty());
    }
}

} // namespace
} // namespace tramline::raw
