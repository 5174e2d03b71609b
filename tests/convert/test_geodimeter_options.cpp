// "readgeod.ini": the two flags, the lines it tolerates, the lines it
// refuses with their line number, and the form that edits them.
#include "convert/geodimeter_import.h"
#include "convert/geodimeter_options.h"
#include "convert_test_support.h"
#include "support/test_support.h"

namespace tramline::test {
namespace {

TEST(GeodimeterOptionsFile, ReadsFlagsAndRefusesBadLines) {
    struct Case {
        const char *text;
        bool ok;
        std::size_t badLine;
        bool strip, info;
    };
    const Case cases[] = {
        {"is_strip=1\nis_info=0\n", true, 0, true, false},
        {"[readgeod]\n\n is_info = 1 \r\nother=7\n", true, 0, false, true},
        {"is_strip=0\nis_info=1", true, 0, false, true},
        {"is_strip=1\nis_info=yes\n", false, 2, true, false},
        {"is_strip=2\n", false, 1, false, false},
        {"is_strip\n", false, 1, false, false},
        {"=1\n", false, 1, false, false},
    };
    for (const auto &c : cases) {
        std::istringstream in(c.text);
        convert::GeodimeterOptions options;
        const Status s = convert::readGeodimeterOptions(in, options);
        EXPECT_EQ(s.ok(), c.ok) << c.text;
        EXPECT_EQ(s.lineNumber, c.badLine) << c.text;
        if (!c.ok) {
            EXPECT_EQ(s.message,
                      "Error: bad line " + std::to_string(c.badLine) + " in readgeod.ini");
        }
        EXPECT_EQ(options.stripDecimal, c.strip) << c.text;
        EXPECT_EQ(options.infoCodes, c.info) << c.text;
    }
}

TEST(GeodimeterOptionsFile, SavesWhatItLoadsAndAMissingFileKeepsDefaults) {
    ScratchFolder dir;
    const auto file = dir.path / convert::kGeodimeterIni;
    convert::GeodimeterOptions options;
    ASSERT_TRUE(convert::loadGeodimeterOptions(file, options).ok());
    EXPECT_FALSE(options.stripDecimal || options.infoCodes);
    ASSERT_TRUE(convert::saveGeodimeterOptions(file, {false, true}));
    EXPECT_EQ(slurp(file), "is_strip=0\nis_info=1\n");
    ASSERT_TRUE(convert::loadGeodimeterOptions(file, options).ok());
    EXPECT_TRUE(!options.stripDecimal && options.infoCodes);
}

TEST(GeodimeterOptionsForm, AnswersDecideTheImportAndPresetAnswersSkipTheForm) {
    ScriptedInteraction ui({"Yes|No"});
    convert::ImportOutput out;
    ASSERT_TRUE(convert::importGeodimeter(sourceOf("2=S\n5=A\n4=1.5\n7=1\n9=2\n"), ui, out).ok());
    EXPECT_EQ(ui.questions.at(0), "Geodimeter Process Options");
    EXPECT_EQ(linesStarting(out, "SS,").at(0), "SS,OPS,FPA,AR1.0000,ZE90.0000,SD2.0000,--15\n");

    ScriptedInteraction none;
    convert::GeodimeterOptionsAnswered answered(none, {false, true});
    convert::ImportOutput second;
    ASSERT_TRUE(
        convert::importGeodimeter(sourceOf("2=S\n5=A\n4=1.5\n60=X\n7=1\n9=2\n"), answered, second)
            .ok());
    EXPECT_TRUE(none.questions.empty());
    EXPECT_EQ(linesStarting(second, "SS,").at(0),
              "SS,OPS,FPA,AR1.0000,ZE90.0000,SD2.0000,--1.5 X\n");
}

} // namespace
} // namespace tramline::test
