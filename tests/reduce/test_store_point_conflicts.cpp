// Several store point records for one point: which ones are a conflict the
// user is asked about, and what changing the later ones into notes leaves.
#include "processing_fixture.h"

using namespace tramline;
using namespace tramline::reduce;

namespace {

class StorePointConflicts : public test::ProcessingRun {};

// Coordinates are compared to a twentieth of the last printed decimal: a
// difference a file writes as the same four decimals is no conflict.
TEST_F(StorePointConflicts, ToleranceAtItsBoundary) {
    struct Row {
        const char *name;
        const char *second;
        bool conflict;
    };
    const Row rows[] = {
        {"equal", "SP,PN7,N 1000.0000,E 2000.0000,EL50.0000,--B\n", false},
        {"equal written otherwise", "SP,PN7,N 1000,E 2000.00,EL50.000000,--B\n", false},
        {"north just inside", "SP,PN7,N 1000.00004,E 2000.0000,EL50.0000,--B\n", false},
        {"north just outside", "SP,PN7,N 1000.00006,E 2000.0000,EL50.0000,--B\n", true},
        {"east just inside", "SP,PN7,N 1000.0000,E 1999.99996,EL50.0000,--B\n", false},
        {"east just outside", "SP,PN7,N 1000.0000,E 1999.99994,EL50.0000,--B\n", true},
        {"elevation just inside", "SP,PN7,N 1000.0000,E 2000.0000,EL50.00004,--B\n", false},
        {"elevation just outside", "SP,PN7,N 1000.0000,E 2000.0000,EL49.99994,--B\n", true},
        {"elevation missing", "SP,PN7,N 1000.0000,E 2000.0000,EL,--B\n", true},
        {"a centimetre", "SP,PN7,N 1000.0100,E 2000.0000,EL50.0000,--B\n", true},
    };
    for (const auto &row : rows) {
        SetUp();
        ui.reply("Continue &Processing");
        const ProcessResult r =
            process(std::string("SP,PN7,N 1000.0000,E 2000.0000,EL50.0000,--A\n") + row.second);
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << row.name;
        const bool asked =
            !ui.questions.empty() && ui.questions[0].rfind("Store Point Conflicts: ", 0) == 0;
        EXPECT_EQ(asked, row.conflict) << row.name;
        if (asked && row.conflict) {
            EXPECT_TRUE(contains(ui.questions[0], "Point ID  Store Line #'s\n7         1,2"))
                << ui.questions[0];
        }
        TearDown();
    }
    SetUp();
}

TEST_F(StorePointConflicts, SecondaryRecordsBecomeNotes) {
    ui.reply("&Change Secondary Store Point Records into Notes");
    const ProcessResult r = process("SP,PN7,N 1000.0000,E 2000.0000,EL50.0000,--A\n"
                                    "SP,PN7,N 1000.0000,E 2000.0000,EL50.0000,--SAME\n"
                                    "SP,PN7,N 1000.5000,E 2000.0000,EL50.0000,--MOVED\n"
                                    "SP,PN8,N 1.0000,E 2.0000,EL3.0000,--OTHER\n");
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    EXPECT_TRUE(r.rawChanged);
    EXPECT_EQ(file.nodes[1].type, raw::RecordType::StorePoint); // equal: kept
    EXPECT_EQ(file.nodes[2].text, "--SP7,N 1000.5000,E 2000.0000,EL50.0000,--MOVED");
    EXPECT_DOUBLE_EQ(point("7")->northing, 1000.0);
    EXPECT_DOUBLE_EQ(point("8")->northing, 1.0);
}

} // namespace
