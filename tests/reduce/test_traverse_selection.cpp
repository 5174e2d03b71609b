// Choosing the traverse: with "Prompt" the user names the traverse points
// from start to end, so that a spur measured from a station stays out of
// the closure that "Automatic" (every side in file order) would take in.
#include "process_run.h"

#include <gtest/gtest.h>

using namespace tramline;
using namespace tramline::reduce;

namespace {

// A square loop 1-2-3-4-1 with a spur 2-5 measured before 2-3.
const char *kLoopWithSpur = "SP,PN1,N 1000,E 1000,EL10,--\n"
                            "OC,OP1,N ,E ,EL,--\n"
                            "TR,OP1,FP2,AZ90.0000,ZE90.0000,HD100.000,--\n"
                            "OC,OP2,N ,E ,EL,--\n"
                            "TR,OP2,FP5,AZ180.0000,ZE90.0000,HD100.000,--\n"
                            "TR,OP2,FP3,AZ0.0000,ZE90.0000,HD100.000,--\n"
                            "OC,OP3,N ,E ,EL,--\n"
                            "TR,OP3,FP4,AZ270.0000,ZE90.0000,HD100.000,--\n"
                            "OC,OP4,N ,E ,EL,--\n"
                            "TR,OP4,FP1,AZ180.0000,ZE90.0000,HD100.000,--\n";

TEST(TraverseSelection, PromptTakesThePointsTheUserNames) {
    struct Case {
        const char *what;
        bool automatic;
        bool endsGiven;
        std::deque<std::string> replies;
        ProcessResult::Status status;
        const char *closureLine; ///< in "Closure Results"; empty: no closure
        size_t questions;        ///< forms and choices asked
    };
    const Case cases[] = {
        {"automatic takes the spur in",
         true,
         true,
         {},
         ProcessResult::Status::Done,
         "Hz Dist Error   : 100.00000",
         0},
        {"prompt leaves it out",
         false,
         true,
         {"2", "3", "4", "1"},
         ProcessResult::Status::Done,
         "Hz Dist Error   : 0.00000",
         4},
        {"prompt chosen in the dialog",
         true,
         false,
         {"1|1|Prompt", "2", "3", "4", "1"},
         ProcessResult::Status::Done,
         "Hz Dist Error   : 0.00000",
         5},
        {"prompt cancelled",
         false,
         true,
         {"2", "<cancel>"},
         ProcessResult::Status::ReturnToEditor,
         "",
         2},
    };
    for (const auto &c : cases) {
        test::ProcessRun run(c.replies);
        ProcessOptions options;
        options.method = AdjustMethod::Compass;
        options.automaticTraversePoints = c.automatic;
        if (c.endsGiven)
            options.startPoint = options.endPoint = "1";
        const ProcessResult r = run.run(kLoopWithSpur, options);
        EXPECT_EQ(r.status, c.status) << c.what << ": " << r.error;
        EXPECT_EQ(run.ui.questions.size(), c.questions) << c.what;
        for (const auto &q : run.ui.questions)
            EXPECT_EQ(q, "Traverse Points") << c.what;
        const std::string closure = test::ProcessRun::tab(r, "Closure Results");
        if (*c.closureLine)
            EXPECT_NE(closure.find(c.closureLine), std::string::npos) << c.what << closure;
        else
            EXPECT_EQ(closure, "") << c.what;
    }
}

} // namespace
