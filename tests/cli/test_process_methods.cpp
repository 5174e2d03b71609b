// The methods the process command takes come from the method table: every
// built one runs, the one not built yet says so and leaves no file behind.
#include "../support/test_support.h"
#include "cli/cli.h"
#include "reduce/adjust_methods.h"

#include "../support/cli_support.h"

#include <gtest/gtest.h>

using namespace tramline;

namespace {

class ProcessMethods : public test::ScratchFolderTest {};

TEST_F(ProcessMethods, EveryMethodWordOfTheTable) {
    const std::string example =
        std::string(TRAMLINE_SOURCE_DIR) + "/data/examples/closed-traverse.rw5";
    for (const auto &m : reduce::adjustMethods()) {
        const auto crd = dir / (std::string(m.cliWord) + ".crd");
        const test::CliResult r = test::runCli({"process", example, "--crd", crd.string(),
                                                "--workdir", (dir / "work").string(), "--method",
                                                m.cliWord, "--start", "1", "--end", "1"});
        if (m.built) {
            EXPECT_EQ(r.code, 0) << m.cliWord << r.err;
            EXPECT_EQ(r.out.rfind(std::string(m.resultTitle) + "\n", 0), 0u) << m.cliWord;
        } else {
            EXPECT_EQ(r.code, 1) << m.cliWord;
            EXPECT_NE(r.err.find(std::string(m.name) + ": this command is not available yet."),
                      std::string::npos)
                << r.err;
            EXPECT_FALSE(std::filesystem::exists(crd)) << m.cliWord;
        }
    }
}

} // namespace
