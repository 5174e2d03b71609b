#include "../support/test_support.h"
#include "base/atomic_save.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tramline;
namespace fs = std::filesystem;

namespace {

using tramline::test::slurp;
using AtomicSave = tramline::test::ScratchFolderTest;

TEST_F(AtomicSave, ReplacesAndKeepsPermissions) {
    const auto file = dir / "job.rw5";
    ASSERT_TRUE(saveTextAtomically(file, "old\n"));
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    ASSERT_TRUE(saveTextAtomically(file, "new\n"));
    EXPECT_EQ(slurp(file), "new\n");
    EXPECT_EQ(fs::status(file).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator{}),
              1); // no temporaries
}

TEST_F(AtomicSave, FailuresLeaveTheOldFile) {
    const auto file = dir / "job.rw5";
    ASSERT_TRUE(saveTextAtomically(file, "old\n"));
    std::string error;
    // A writer that gives up.
    EXPECT_FALSE(saveAtomically(
        file, [](std::ostream &) { return false; }, &error));
    EXPECT_EQ(slurp(file), "old\n");
    // A folder where the file should be.
    EXPECT_FALSE(saveTextAtomically(dir, "x", &error));
    EXPECT_FALSE(error.empty());
    // A folder that cannot be written (root ignores permissions, so only
    // check this as an ordinary user).
    if (::geteuid() != 0) {
        fs::permissions(dir, fs::perms::owner_read | fs::perms::owner_exec);
        EXPECT_FALSE(saveTextAtomically(file, "new\n", &error));
        fs::permissions(dir, fs::perms::owner_all);
        EXPECT_EQ(slurp(file), "old\n");
    }
}

TEST_F(AtomicSave, FullDiskLeavesTheOldFile) {
    // A child process with a small file-size limit plays the full disk.
    const auto file = dir / "job.rw5";
    ASSERT_TRUE(saveTextAtomically(file, "old\n"));
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{1024, 1024};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const bool ok = saveTextAtomically(file, std::string(100000, 'x'));
        ::_exit(ok ? 1 : 0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the save should have failed";
    EXPECT_EQ(slurp(file), "old\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator{}), 1);
}

} // namespace
