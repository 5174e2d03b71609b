// A writer killed (SIGKILL) at a random moment while it moves records must
// leave a file that opens, is sorted, holds no name twice and holds either
// the old points or the new ones of each update. The number of kills is
// TRAMLINE_KILL_RUNS (default 50; run a thousand by hand).
#include "crd_test_support.h"

#include "crd/crd_io_morvane.h"
#include "crd/file_kinds.h"
#include "crd/move_journal.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <map>
#include <random>
#include <thread>

using namespace tramline::crd;

namespace {

namespace fs = std::filesystem;

constexpr int kOld = 8000;  // even names P00002 ... the tail that moves
constexpr int kNew = 300;   // odd names among them
constexpr int kSingles = 8; // inserts one at a time

std::string nameOf(int n) {
    char text[16];
    std::snprintf(text, sizeof text, "P%05d", n);
    return text;
}

CrdPoint pointOf(int n) {
    CrdPoint p;
    p.name = nameOf(n);
    p.northing = n;
    p.easting = 2.0 * n;
    p.elevation = 0.5;
    p.description = "D" + std::to_string(n);
    return p;
}

enum class Update { OneBatch, OneAtATime };

class KillSafety : public crdtest::CrdTest {
protected:
    void SetUp() override {
        crdtest::CrdTest::SetUp();
        base = file("base.crd");
        CrdIOMorvane io;
        ASSERT_TRUE(io.create(base, kFormatAlphanumeric));
        std::vector<CrdPoint> old;
        for (int i = 1; i <= kOld; ++i)
            old.push_back(pointOf(2 * i));
        ASSERT_EQ(io.writePoints(old, Verbosity::Quiet, nullptr), kOld);
        // The new names land in the lower part, so most of the file moves.
        for (int i = 0; i < kNew; ++i)
            fresh.push_back(pointOf(2 * (i * 7 + 1) + 1));
    }

    // The writer, in a child process; returns its pid.
    pid_t startWriter(const fs::path &path, Update how) {
        const pid_t child = ::fork();
        if (child != 0)
            return child;
        CrdIOMorvane io;
        bool ok = io.open(path, CrdAccess::Update);
        if (ok && how == Update::OneBatch)
            ok = io.writePoints(fresh, Verbosity::Quiet, nullptr) == kNew;
        for (std::size_t i = 0;
             ok && how == Update::OneAtATime && i < static_cast<std::size_t>(kSingles); ++i)
            ok = io.writePoint(fresh[i], Verbosity::Quiet, nullptr);
        ::_exit(ok ? 0 : 1);
    }

    // Which of the new points (by position in `fresh`) the file holds, or
    // a failure when it is not a clean old-or-new file.
    ::testing::AssertionResult inspect(const fs::path &path, std::vector<bool> &present) {
        CrdIOMorvane io;
        if (!io.open(path, CrdAccess::Update))
            return ::testing::AssertionFailure() << "does not open, error " << io.lastError();
        if (fs::exists(journalPathFor(path)))
            return ::testing::AssertionFailure() << "journal left after open";
        std::map<std::string, int> wanted;
        for (std::size_t i = 0; i < fresh.size(); ++i)
            wanted[fresh[i].name] = static_cast<int>(i);
        present.assign(fresh.size(), false);
        long old = 0;
        CrdPoint p, before;
        for (long i = 0; io.readByIndex(i, p, 0); ++i) {
            const int n = std::atoi(p.name.c_str() + 1);
            if (i > 0 && n <= std::atoi(before.name.c_str() + 1))
                return ::testing::AssertionFailure() << p.name << " after " << before.name;
            if (p.northing != n || p.easting != 2.0 * n)
                return ::testing::AssertionFailure() << p.name << " holds another's coordinates";
            if (n % 2 == 0)
                ++old;
            else if (wanted.count(p.name))
                present[static_cast<std::size_t>(wanted[p.name])] = true;
            else
                return ::testing::AssertionFailure() << "stray point " << p.name;
            before = p;
        }
        if (old != kOld)
            return ::testing::AssertionFailure() << old << " old points instead of " << kOld;
        return ::testing::AssertionSuccess();
    }

    fs::path base;
    std::vector<CrdPoint> fresh;
};

TEST_F(KillSafety, EveryKillLeavesTheOldOrTheNewFile) {
    const char *runsText = std::getenv("TRAMLINE_KILL_RUNS");
    const int runs = runsText ? std::max(1, std::atoi(runsText)) : 50;
    std::mt19937 random(12345);
    for (const Update how : {Update::OneBatch, Update::OneAtATime}) {
        SCOPED_TRACE(how == Update::OneBatch ? "one batch" : "one at a time");
        // How long an undisturbed update takes sets the window the kills
        // fall into.
        const fs::path path = file("site.crd");
        fs::copy_file(base, path, fs::copy_options::overwrite_existing);
        const auto start = std::chrono::steady_clock::now();
        int status = 0;
        ::waitpid(startWriter(path, how), &status, 0);
        const auto span = std::chrono::duration_cast<std::chrono::microseconds>(
                              std::chrono::steady_clock::now() - start)
                              .count();
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        std::vector<bool> present;
        ASSERT_TRUE(inspect(path, present));
        ASSERT_EQ(std::count(present.begin(), present.end(), true),
                  how == Update::OneBatch ? kNew : kSingles);

        int killedMidway = 0;
        for (int run = 0; run < runs; ++run) {
            fs::copy_file(base, path, fs::copy_options::overwrite_existing);
            fs::remove(journalPathFor(path));
            const pid_t child = startWriter(path, how);
            std::this_thread::sleep_for(std::chrono::microseconds(
                std::uniform_int_distribution<long>(0, span + span / 5)(random)));
            ::kill(child, SIGKILL);
            ::waitpid(child, &status, 0);
            killedMidway += fs::exists(journalPathFor(path)) ? 1 : 0;
            ASSERT_TRUE(inspect(path, present)) << "run " << run;
            if (how == Update::OneBatch) {
                // All of the new points or none.
                const auto count = std::count(present.begin(), present.end(), true);
                ASSERT_TRUE(count == 0 || count == kNew) << "run " << run << ": " << count;
            } else {
                // The inserts done before the kill, in order, and no other.
                const auto firstMissing = std::find(present.begin(), present.end(), false);
                ASSERT_TRUE(std::find(firstMissing, present.end(), true) == present.end())
                    << "run " << run;
            }
        }
        std::printf("%s: %d of %d kills fell inside a move\n",
                    how == Update::OneBatch ? "one batch" : "one at a time", killedMidway, runs);
    }
}

} // namespace
