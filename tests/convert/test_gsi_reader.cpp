// Words as real instruments write them: both line kinds, short words, no
// blank after the last word, unit codes in the information field, dashes
// for a missing value.
#include "convert/gsi_reader.h"

#include <gtest/gtest.h>

namespace tramline::convert::gsi {
namespace {

struct LineCase {
    const char *name;
    const char *line;
    std::size_t words;
    int index;        // the word checked
    const char *data; // its data as read
    const char *info;
};

class GsiLine : public ::testing::TestWithParam<LineCase> {};

TEST_P(GsiLine, FindsEveryWordStart) {
    const LineCase &c = GetParam();
    std::vector<Word> words;
    ASSERT_TRUE(readWords(c.line, words));
    EXPECT_EQ(words.size(), c.words);
    const Word *word = findWord(words, c.index);
    ASSERT_NE(word, nullptr);
    EXPECT_EQ(word->data, c.data);
    EXPECT_EQ(word->info, c.info);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, GsiLine,
    ::testing::Values(
        LineCase{"Gsi8", "110003+00000102 21.102+13247100 22.102+10378200 31..00+00005165 ", 4, 31,
                 "00005165", "..00"},
        LineCase{"Gsi16FromColumnOne",
                 "*110002+00000000GDEM5415 21.024+0000000003545100 22.024+0000000009117510 ", 3, 22,
                 "0000000009117510", ".024"},
        LineCase{"NoBlankAfterLastWord",
                 "*110017+000000002160STKE 81..06+0000000065639032 83..06+0000000002995669", 3, 83,
                 "0000000002995669", "..06"},
        // A ppm word of 21 characters and one of 22 in one GSI-16 line.
        LineCase{"ShortWords",
                 "*110001+0000000000000007 51..1.+0000+000 31...0+000000012345 87...0+0000001300 ",
                 4, 87, "0000001300", "...0"},
        LineCase{"PpmWordOfGsi8", "110001+00000001 51..1.+0000+000 87..10+00001500 ", 3, 51,
                 "0000+000", "..1."},
        LineCase{"DashesKept", "*110004+0000000000009003 83..10+00000000000----- ", 2, 83,
                 "00000000000-----", "..10"},
        LineCase{"RemarkWithBlank", "*410001+0000000000000026 42....+     SOUTH FENCE ", 2, 42,
                 "     SOUTH FENCE", "...."},
        LineCase{"BlockNumberInInfo", "110527+STAZLIB4 25.342+28951540 ", 2, 11, "STAZLIB4",
                 "0527"}),
    [](const auto &p) { return std::string(p.param.name); });

TEST(GsiLine, RefusesTextThatIsNoWord) {
    std::vector<Word> words;
    for (const char *line : {"", "*", "JOB 12 survey", "11000+12345678", "ab0001+00000001 "})
        EXPECT_FALSE(readWords(line, words)) << line;
}

struct ValueCase {
    const char *name;
    Word word;
    bool present;
    double value;
};

class GsiValue : public ::testing::TestWithParam<ValueCase> {};

TEST_P(GsiValue, ReadsTheValueItsUnitCodeGives) {
    const ValueCase &c = GetParam();
    double value = -1.0;
    ASSERT_EQ(numberOf(c.word, value), c.present);
    if (c.present) {
        EXPECT_DOUBLE_EQ(value, c.value);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Values, GsiValue,
    ::testing::Values(
        ValueCase{"NoPointThreeDecimals", {31, "....", '+', "00012345"}, true, 12.345},
        ValueCase{"MetresToMillimetres", {31, "..00", '+', "00005165"}, true, 5.165},
        ValueCase{"TenthMillimetres", {81, "..06", '+', "0000000065639032"}, true, 6563.9032},
        ValueCase{"HundredthMillimetres", {81, "..08", '+', "0000000065639032"}, true, 656.39032},
        ValueCase{"Negative", {83, "..10", '-', "0000000000000092"}, true, -0.092},
        ValueCase{"GonsFiveDecimals", {22, ".102", '+', "09885300"}, true, 98.853},
        ValueCase{"MilsFourDecimals", {21, "..05", '+', "00320000"}, true, 32.0},
        ValueCase{"DecimalPointAsWritten", {87, "....", '+', "0001.50"}, true, 1.5},
        ValueCase{"Dashes", {83, "..10", '+', "00000000000-----"}, false, 0.0},
        ValueCase{"Empty", {83, "..10", '+', ""}, false, 0.0}),
    [](const auto &p) { return std::string(p.param.name); });

TEST(GsiValue, AnglesByUnitCode) {
    struct {
        Word word;
        double degrees;
    } cases[] = {
        {{21, ".102", '+', "10000000"}, 90.0},                                   // gons
        {{21, ".024", '+', "0000000003545100"}, 35.0 + 45.0 / 60 + 10.0 / 3600}, // d.mmsss
        {{21, ".023", '+', "0000000012550000"}, 125.5},                          // decimal degrees
        {{21, "...5", '+', "16000000"}, 90.0},                                   // mils
    };
    for (const auto &c : cases) {
        double degrees = 0.0;
        ASSERT_TRUE(angleDegrees(c.word, degrees));
        EXPECT_NEAR(degrees, c.degrees, 1e-9) << c.word.info;
    }
}

TEST(GsiValue, NamesLoseLeadingZerosOnly) {
    struct {
        const char *data, *name;
    } cases[] = {{"00000000GDEM5415", "GDEM5415"},
                 {"0000000003.1STKE", "3.1STKE"},
                 {"00000000000000w1", "w1"},
                 {"0000000000000000", "0"},
                 {"00001020", "1020"},
                 {"0000MK27", "MK27"}};
    for (const auto &c : cases)
        EXPECT_EQ(nameOf(Word{11, "0001", '+', c.data}), c.name);
    EXPECT_EQ(textOf(Word{42, "....", '+', "0000000000000000"}), "") << "an empty remark";
    EXPECT_EQ(textOf(Word{42, "....", '+', "00000000000FENCE"}), "FENCE");
}

} // namespace
} // namespace tramline::convert::gsi
