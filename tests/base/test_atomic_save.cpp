#include "../support/test_support.h"
#include "base/atomic_save.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
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

// Runs `write` in a child process whose file-size limit (1 KiB) plays the
// full disk; true when the write reported failure.
bool failsOnAFullDisk(const std::function<bool()> &write) {
    const pid_t child = ::fork();
    if (child < 0)
        return false;
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{1024, 1024};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        ::_exit(write() ? 1 : 0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// The files in `dir`: a count above the expected one is a temporary left behind.
long filesIn(const fs::path &dir) {
    return long(std::distance(fs::directory_iterator(dir), fs::directory_iterator{}));
}

TEST_F(AtomicSave, ReplacesAndKeepsPermissions) {
    const auto file = dir / "job.rw5";
    ASSERT_TRUE(saveTextAtomically(file, "old\n"));
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    ASSERT_TRUE(saveTextAtomically(file, "new\n"));
    EXPECT_EQ(slurp(file), "new\n");
    EXPECT_EQ(fs::status(file).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(filesIn(dir), 1);
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
    EXPECT_TRUE(failsOnAFullDisk([&] {
        return saveTextAtomically(file, std::string(100000, 'x'));
    })) << "the save should have failed";
    EXPECT_EQ(slurp(file), "old\n");
    EXPECT_EQ(filesIn(dir), 1);
}

// A file written in pieces appears whole at the commit, and not at all
// when the writer is dropped or a piece fails.
TEST_F(AtomicSave, PiecewiseWriterCommitsWholeOrNothing) {
    const auto file = dir / "job.jxl";
    ASSERT_TRUE(saveTextAtomically(file, "old\n"));
    {
        AtomicFileWriter writer(file);
        ASSERT_TRUE(writer.write("one "));
        ASSERT_TRUE(writer.write("two\n"));
        EXPECT_EQ(slurp(file), "old\n"); // nothing in place before the commit
        EXPECT_TRUE(writer.commit());
    }
    EXPECT_EQ(slurp(file), "one two\n");
    {
        AtomicFileWriter dropped(file);
        ASSERT_TRUE(dropped.write("half"));
    }
    EXPECT_EQ(slurp(file), "one two\n");
    EXPECT_EQ(filesIn(dir), 1);
    AtomicFileWriter toFolder(dir);
    std::string error;
    EXPECT_FALSE(toFolder.write("x"));
    EXPECT_FALSE(toFolder.commit(&error));
    EXPECT_FALSE(error.empty());
    EXPECT_TRUE(failsOnAFullDisk([&] {
        AtomicFileWriter full(file);
        bool ok = true;
        for (int i = 0; i < 100 && ok; ++i)
            ok = full.write(std::string(1000, 'x'));
        return ok && full.commit();
    })) << "the piecewise save should have failed";
    EXPECT_EQ(slurp(file), "one two\n");
    EXPECT_EQ(filesIn(dir), 1);
}

// What the user made of the target decides whether a save may replace it;
// a link is never replaced, its file is.
TEST_F(AtomicSave, RespectsReadOnlyFilesLinksAndOddFiles) {
    struct Case {
        const char *what;
        std::function<fs::path(const fs::path &)> make; // returns the path to save to
        bool saves;
        const char *reason;
    };
    const Case cases[] = {
        {"read-only file",
         [](const fs::path &real) {
             fs::permissions(real, fs::perms::owner_read | fs::perms::group_read |
                                       fs::perms::others_read);
             return real;
         },
         false, "read-only"},
        {"link to the file",
         [this](const fs::path &real) {
             fs::create_symlink(real.filename(), dir / "link.rw5");
             return dir / "link.rw5";
         },
         true, ""},
        {"link to a link",
         [this](const fs::path &real) {
             fs::create_symlink(real, dir / "a.rw5");
             fs::create_symlink("a.rw5", dir / "b.rw5");
             return dir / "b.rw5";
         },
         true, ""},
        {"link to a read-only file",
         [this](const fs::path &real) {
             fs::permissions(real, fs::perms::owner_read);
             fs::create_symlink(real, dir / "link.rw5");
             return dir / "link.rw5";
         },
         false, "read-only"},
        {"FIFO",
         [this](const fs::path &) {
             ::mkfifo((dir / "pipe.rw5").c_str(), 0666);
             return dir / "pipe.rw5";
         },
         false, "not a regular file"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        fs::remove_all(dir);
        fs::create_directories(dir);
        const auto real = dir / "job.rw5";
        ASSERT_TRUE(saveTextAtomically(real, "old\n"));
        const fs::path target = c.make(real);
        const bool wasLink = fs::is_symlink(target);
        std::string error;
        EXPECT_EQ(saveTextAtomically(target, "new\n", &error), c.saves) << error;
        EXPECT_EQ(slurp(real), c.saves ? "new\n" : "old\n");
        EXPECT_NE(error.find(c.reason), std::string::npos) << error;
        EXPECT_EQ(fs::is_symlink(target), wasLink); // a link stays a link
        fs::permissions(real, fs::perms::owner_all);
    }
}

TEST_F(AtomicSave, CopyRefusesAFifoAsSource) {
    ASSERT_EQ(::mkfifo((dir / "pipe").c_str(), 0666), 0);
    std::string error;
    EXPECT_FALSE(copyAtomically(dir / "pipe", dir / "copy", &error)); // must not block
    EXPECT_FALSE(fs::exists(dir / "copy"));
}

using AtomicCopy = tramline::test::ScratchFolderTest;

// Each case: what the target was, how the copy goes, what the target is
// after it. Permissions of an old target stay; a new one takes the source's.
TEST_F(AtomicCopy, TargetIsOldOrWholeCopy) {
    const auto source = dir / "site.crd";
    const std::string big(300000, 'p'); // more than one piece of the copy loop
    tramline::test::spit(source, big);
    fs::permissions(source, fs::perms::owner_read | fs::perms::owner_write);
    struct Case {
        const char *name;
        fs::path from, to;
        const char *oldTarget; // null: no target before
        bool ok;
        fs::perms perms; // of the target afterwards
    };
    const fs::perms rw = fs::perms::owner_read | fs::perms::owner_write;
    const fs::perms shared = rw | fs::perms::group_read | fs::perms::others_read;
    const Case cases[] = {
        {"new target", source, dir / "new.crd", nullptr, true, rw},
        {"old target keeps its permissions", source, dir / "old.crd", "old", true, shared},
        {"missing source", dir / "none.crd", dir / "kept.crd", "kept", false, shared},
        {"source is a folder", dir, dir / "kept2.crd", "kept", false, shared},
        {"target's folder missing", source, dir / "no" / "such.crd", nullptr, false, rw},
    };
    for (const auto &c : cases) {
        if (c.oldTarget) {
            tramline::test::spit(c.to, c.oldTarget);
            fs::permissions(c.to, shared);
        }
        std::string error;
        EXPECT_EQ(copyAtomically(c.from, c.to, &error), c.ok) << c.name;
        EXPECT_EQ(error.empty(), c.ok) << c.name;
        const std::string expected = c.ok ? big : c.oldTarget ? c.oldTarget : "";
        EXPECT_EQ(fs::exists(c.to), c.ok || c.oldTarget) << c.name;
        EXPECT_EQ(slurp(c.to), expected) << c.name;
        if (fs::exists(c.to)) {
            EXPECT_EQ(fs::status(c.to).permissions() & fs::perms::all, c.perms) << c.name;
        }
    }
    // No temporaries are left behind by the failures.
    for (const auto &entry : fs::directory_iterator(dir))
        EXPECT_NE(entry.path().filename().string().front(), '.') << entry.path();
}

TEST_F(AtomicCopy, FullDiskLeavesTheOldTarget) {
    const auto source = write("big.crd", std::string(100000, 'x'));
    const auto target = write("site.crd", "old");
    EXPECT_TRUE(failsOnAFullDisk([&] { return copyAtomically(source, target); }))
        << "the copy should have failed";
    EXPECT_EQ(slurp(target), "old");
    EXPECT_EQ(filesIn(dir), 2);
}

} // namespace
