// The shared import flow: refused points are reported and the conversion
// goes on, the store-point lines stay.
#include "convert/import_flow.h"
#include "convert_test_support.h"
#include "crd/coordinate_file.h"
#include "support/test_support.h"

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

} // namespace
} // namespace tramline::test
