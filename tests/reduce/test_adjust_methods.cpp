// The one table of adjustment methods: what the report, the command line
// and the desktop program's menu call each one.
#include "process_run.h"
#include "reduce/adjust_methods.h"

#include <gtest/gtest.h>

using namespace tramline;
using namespace tramline::reduce;

namespace {

// The command line and the menu find each method by its own word and id,
// and nothing by a word or id of something else.
TEST(AdjustMethods, WordsAndMenuIdsFindTheirMethod) {
    for (const auto &m : adjustMethods()) {
        EXPECT_EQ(adjustMethodByCliWord(m.cliWord), &m) << m.cliWord;
        EXPECT_EQ(adjustMethodByMenuCommand(m.menuCommand), &m) << m.cliWord;
    }
    EXPECT_EQ(adjustMethodByCliWord("bowditch"), nullptr);
    EXPECT_EQ(adjustMethodByMenuCommand(32821), nullptr); // Process > GPS is no adjustment
}

// A least-squares run without observations fails before anything is stored.
TEST(AdjustMethods, AFailedLeastSquaresRunWritesNothing) {
    test::ProcessRun run;
    ProcessOptions options;
    options.method = AdjustMethod::LeastSquares;
    const ProcessResult r = run.run("SP,PN1,N 1000,E 1000,EL10,--\n", options);
    EXPECT_EQ(r.status, ProcessResult::Status::Failed);
    EXPECT_EQ(r.error, "Error: no least-squares data found. Run Prepare Least-Squares Data.");
    EXPECT_TRUE(run.coordinates->highestName().empty());
}

} // namespace
