// The Geodimeter import's rules of the labels on small inputs (the field
// samples are in test_field_samples.cpp).
#include "convert/geodimeter_import.h"
#include "convert_test_support.h"

namespace tramline::test {
namespace {

convert::ImportOutput importGeodimeterBytes(const std::string &bytes,
                                            convert::GeodimeterOptions options = {}) {
    convert::ImportOutput out;
    const Status s = convert::importGeodimeterWith(sourceOf(bytes), options, out);
    EXPECT_TRUE(s.ok()) << s.message;
    return out;
}

struct LabelCase {
    const char *name;
    const char *input;
    convert::GeodimeterOptions options;
    std::vector<std::string> expected; // lines that must be written, in order
    const char *absent;                // a text no line may hold, empty: none
};

class GeodimeterLabels : public ::testing::TestWithParam<LabelCase> {};

TEST_P(GeodimeterLabels, WriteTheirLines) {
    const LabelCase &c = GetParam();
    const auto out = importGeodimeterBytes(c.input, c.options);
    std::size_t at = 0;
    for (const auto &want : c.expected) {
        while (at < out.lines.size() && out.lines[at] != want)
            ++at;
        ASSERT_LT(at, out.lines.size()) << "missing or out of order: " << want;
    }
    for (const auto &line : out.lines)
        if (*c.absent) {
            EXPECT_EQ(line.find(c.absent), std::string::npos) << line;
        }
}

INSTANTIATE_TEST_SUITE_P(
    Rules, GeodimeterLabels,
    ::testing::Values(
        LabelCase{"HighLabelSkipped",
                  "2=S\n75=HIGH\n5=A\n7=10\n8=90\n9=5\n",
                  {},
                  {"SS,OPS,FPA,AR10.0000,ZE90.0000,SD5.0000,--\n"},
                  "HIGH"},
        LabelCase{"AnglesWithoutDistance",
                  "2=S\n5=A\n4=TREE\n7=10.3\n8=89\n5=B\n7=20\n8=91\n9=4.5\n",
                  {},
                  {"BK,OPS,BPA,BS,BC10.3000\n", "SS,OPS,FPA,AR10.3000,ZE89.0000,SD0.0,--TREE\n",
                   "SS,OPS,FPB,AR20.0000,ZE91.0000,SD4.5000,--\n"},
                  ""},
        LabelCase{"StripDecimal",
                  "2=S\n5=A\n4=12.5\n7=1\n9=2\n",
                  {true, false},
                  {"SS,OPS,FPA,AR1.0000,ZE90.0000,SD2.0000,--125\n"},
                  ""},
        LabelCase{"CodeKeptWithoutStrip",
                  "2=S\n5=A\n4=12.5\n7=1\n9=2\n",
                  {},
                  {"SS,OPS,FPA,AR1.0000,ZE90.0000,SD2.0000,--12.5\n"},
                  ""},
        LabelCase{"InfoAsNote",
                  "2=S\n5=A\n60=OAK\n7=1\n9=2\n",
                  {},
                  {"--60=OAK\n", "SS,OPS,FPA,AR1.0000,ZE90.0000,SD2.0000,--\n"},
                  ""},
        LabelCase{"InfoInDescription",
                  "2=S\n5=A\n4=T\n61=OAK\n7=1\n9=2\n",
                  {false, true},
                  {"SS,OPS,FPA,AR1.0000,ZE90.0000,SD2.0000,--T OAK\n"},
                  "--61="},
        LabelCase{"HorizontalDistance",
                  "2=S\n5=A\n7=1\n8=88\n11=7.25\n",
                  {},
                  {"SS,OPS,FPA,AR1.0000,ZE88.0000,HD7.2500,--\n"},
                  ""},
        // Station and reference object with coordinates: the bearing is
        // known (north-east at 45 degrees).
        LabelCase{"ReferenceWithBearing",
                  "2=S\n37=100\n38=100\n39=5\n3=1.5\n62=R\n37=110\n38=110\n21=12.3456\n",
                  {},
                  {"LS,HI1.5\n", "SP,PNS,N 100.0000,E 100.0000,EL5.0000,--\n",
                   "BK,OPS,BPR,BS45.0000,BC12.3456\n"},
                  ""},
        LabelCase{"ReferenceWithoutCoordinates",
                  "2=S\n62=R\n21=12.3456\n5=A\n7=1\n9=2\n",
                  {},
                  {"BK,OPS,BPR,BS,BC12.3456\n", "SS,OPS,FPA,AR1.0000,ZE90.0000,SD2.0000,--\n"},
                  "BPA"},
        LabelCase{"TraverseToLaterStation",
                  "2=S\n5=T\n7=1\n9=2\n5=A\n7=3\n9=4\n2=T\n5=S\n7=0\n9=2\n",
                  {},
                  {"TR,OPS,FPT,AR1.0000,ZE90.0000,SD2.0000,--\n",
                   "SS,OPS,FPA,AR3.0000,ZE90.0000,SD4.0000,--\n",
                   "SS,OPT,FPS,AR0.0000,ZE90.0000,SD2.0000,--\n"},
                  ""},
        LabelCase{"NotesAndMarkers",
                  "50=JOB1\n51=2024-01-02\n0=RESULT\n0=Measured point\n30=12\n46=0.002\n74=1013\n",
                  {},
                  {"JB,NMJOB1,DT2024-01-02,TM\n", "--Job Name: JOB1\n", "--Date: 2024-01-02\n",
                   "--Measured point\n", "--Atmospheric Correction: 12\n",
                   "--Standard Deviation: 0.002\n", "--Air Pressure: 1013\n"},
                  "RESULT"},
        // Gons: 100 gon is 90 degrees.
        LabelCase{"GonFile",
                  "2=S\n5=A\n7=100\n8=383.5\n9=3\n",
                  {},
                  {"SS,OPS,FPA,AR90.0000,ZE345.0900,SD3.0000,--\n"},
                  ""}),
    [](const ::testing::TestParamInfo<LabelCase> &param) { return std::string(param.param.name); });

TEST(GeodimeterImport, RefusesAFileWithoutLabelsAndACancelledForm) {
    ScriptedInteraction ui({"<cancel>"});
    convert::ImportOutput out;
    EXPECT_EQ(convert::importGeodimeter(sourceOf("hello world\nno labels here\n"), ui, out).code,
              StatusCode::Format);
    EXPECT_EQ(convert::importGeodimeter(sourceOf("5=A\n"), ui, out).code, StatusCode::Cancelled);
    EXPECT_TRUE(out.lines.empty());
}

} // namespace
} // namespace tramline::test
