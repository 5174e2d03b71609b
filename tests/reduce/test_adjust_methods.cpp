// The one table of adjustment methods: what the report, the command line
// and the desktop program's menu call each one.
#include "process_run.h"
#include "reduce/adjust_methods.h"

#include <gtest/gtest.h>

using namespace tramline;
using namespace tramline::reduce;

namespace {

TEST(AdjustMethods, NamesTitlesWordsAndMenuIds) {
    struct Expected {
        AdjustMethod method;
        const char *word, *title, *tab;
        int menu;
        bool built;
    };
    const Expected expected[] = {
        {AdjustMethod::None, "none", "Process No Adjust Results", "No Adjust", 37, true},
        {AdjustMethod::AngleBalance, "angle-balance", "Process Angle Balance Results",
         "Angle Balance", 32813, true},
        {AdjustMethod::Compass, "compass", "Process Compass Results", "Compass", 39, true},
        {AdjustMethod::Crandall, "crandall", "Process Crandall Results", "Crandall", 40, true},
        {AdjustMethod::Transit, "transit", "Process Transit Results", "Transit", 41, true},
        {AdjustMethod::LeastSquares, "least-squares", "Process Least-Squares Results",
         "Least-Squares", 32814, false},
    };
    ASSERT_EQ(adjustMethods().size(), std::size(expected));
    for (const auto &e : expected) {
        const AdjustMethodInfo *byWord = adjustMethodByCliWord(e.word);
        ASSERT_NE(byWord, nullptr) << e.word;
        EXPECT_EQ(byWord->method, e.method) << e.word;
        EXPECT_EQ(adjustMethodByMenuCommand(e.menu), byWord) << e.word;
        EXPECT_STREQ(resultTitle(e.method), e.title);
        EXPECT_STREQ(methodTab(e.method), e.tab);
        EXPECT_EQ(byWord->built, e.built) << e.word;
    }
    EXPECT_EQ(adjustMethodByCliWord("bowditch"), nullptr);
    EXPECT_EQ(adjustMethodByMenuCommand(32821), nullptr); // Process > GPS is no adjustment
}

// Each linear rule records its adjusted points under its own history code.
TEST(AdjustMethods, HistoryCodesOfTheLinearRules) {
    EXPECT_EQ(adjustMethodInfo(AdjustMethod::Transit).historyOperation, 27);
    EXPECT_EQ(adjustMethodInfo(AdjustMethod::Compass).historyOperation, 28);
    EXPECT_EQ(adjustMethodInfo(AdjustMethod::Crandall).historyOperation, 29);
    EXPECT_STREQ(adjustMethodInfo(AdjustMethod::Transit).closureTitle, "Transit Closure");
    EXPECT_STREQ(adjustMethodInfo(AdjustMethod::Crandall).closureTitle, "Crandall Closure");
}

TEST(AdjustMethods, AMethodNotBuiltSaysSoAndWritesNothing) {
    test::ProcessRun run;
    ProcessOptions options;
    options.method = AdjustMethod::LeastSquares;
    const ProcessResult r = run.run("SP,PN1,N 1000,E 1000,EL10,--\n", options);
    EXPECT_EQ(r.status, ProcessResult::Status::Failed);
    EXPECT_EQ(r.error, "Least-Squares: this command is not available yet.");
    EXPECT_TRUE(run.coordinates->highestName().empty());
}

} // namespace
