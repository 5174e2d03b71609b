// The write lock between writers (in this process and another), and a disk
// that fills up in the middle of a write.
#include "crd_test_support.h"

#include "crd/coordinate_file.h"
#include "crd/crd_errors.h"
#include "crd/crd_io_morvane.h"
#include "crd/file_kinds.h"

#include <chrono>
#include <csignal>
#include <sys/resource.h>

using namespace tramline::crd;
using namespace crdtest;

namespace {

const std::string kWait15 = "\nWaiting 1.5 seconds to obtain file lock...";
const std::string kWait5 = "\nWaiting 5 seconds to obtain file lock...";

std::string errorOne(const std::filesystem::path &path) {
    return "\nError 1: Could not open file: " + path.string() +
           "\nIt might be read-only, in use by another application\nor locked in error by program. "
           "If locked, restart program.";
}

std::string failedToOpen(const std::filesystem::path &path) {
    return "Failed to open coordinate file:\n  " + path.string() +
           "\nFile may be read-only or already opened by another.\nRead-only files cannot be used. "
           "Use Windows\nExplorer to make sure file is not read-only.";
}

class Lock : public CrdTest {
protected:
    void makeFile(std::initializer_list<const char *> names) {
        CoordinateFile crd(context);
        ASSERT_TRUE(crd.open(file("site.crd"), Create::Always, kFormatAlphanumeric));
        for (const char *name : names) {
            CrdPoint p;
            p.set(1, 2, 3, name);
            ASSERT_TRUE(crd.writePoint(p));
        }
    }
};

TEST_F(Lock, SecondWriterInThisProcessIsRefusedAfterTheRetries) {
    makeFile({"A"});
    CoordinateFile first(context);
    ASSERT_TRUE(first.open(file("site.crd")));
    ui.messages.clear();

    CoordinateFile second(context);
    EXPECT_FALSE(second.open(file("site.crd")));
    EXPECT_EQ(second.lastError(), kCannotOpen);
    EXPECT_EQ(waits, (std::vector<int>{1500, 5000}));
    EXPECT_EQ(ui.messages, (std::vector<std::string>{kWait15, kWait5, errorOne(file("site.crd"))}));

    waits.clear();
    ui.messages.clear();
    CrdIOMorvane inner(context);
    EXPECT_FALSE(inner.open(file("site.crd"), CrdAccess::Update));
    EXPECT_EQ(inner.lastError(), kCannotOpen);
    EXPECT_EQ(waits, (std::vector<int>{500, 2500}));
    EXPECT_EQ(ui.messages, std::vector<std::string>{failedToOpen(file("site.crd"))});

    CoordinateFile reader(context); // readers take no lock
    CrdPoint p;
    ASSERT_TRUE(reader.openForReading(file("site.crd")));
    EXPECT_TRUE(reader.readPoint("A", p));

    first.close();
    EXPECT_TRUE(second.open(file("site.crd")));
}

TEST_F(Lock, CancelledWaitGivesUpAtOnce) {
    makeFile({"A"});
    CoordinateFile first(context);
    ASSERT_TRUE(first.open(file("site.crd")));
    CrdContext impatient = context;
    impatient.wait = [this](int ms) {
        waits.push_back(ms);
        return false;
    };
    CoordinateFile second(impatient);
    EXPECT_FALSE(second.open(file("site.crd")));
    EXPECT_EQ(waits, std::vector<int>{1500});
}

// Another process holds the file: the real waits run (about 9.5 s in all)
// and the holder's points come through untouched.
TEST_F(Lock, WriterInAnotherProcess) {
    makeFile({"A", "B"});
    int ready[2], release[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(release), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        CoordinateFile holder;
        CrdPoint p;
        p.set(7, 8, 9, "C", "held");
        const bool ok = holder.open(file("site.crd")) && holder.writePoint(p);
        char c = ok ? 'y' : 'n';
        (void)!::write(ready[1], &c, 1);
        (void)!::read(release[0], &c, 1);
        holder.close();
        ::_exit(ok ? 0 : 1);
    }
    char c = 0;
    ASSERT_EQ(::read(ready[0], &c, 1), 1);
    ASSERT_EQ(c, 'y');

    CrdContext realTime;
    realTime.messages = &ui;
    const auto start = std::chrono::steady_clock::now();
    CoordinateFile second(realTime);
    EXPECT_FALSE(second.open(file("site.crd")));
    EXPECT_EQ(second.lastError(), kCannotOpen);
    CrdIOMorvane inner(realTime);
    EXPECT_FALSE(inner.open(file("site.crd"), CrdAccess::Update));
    EXPECT_EQ(inner.lastError(), kCannotOpen);
    const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited.count(), 9.0); // 1.5 + 5 outside, 0.5 + 2.5 inside
    EXPECT_EQ(ui.messages, (std::vector<std::string>{kWait15, kWait5, errorOne(file("site.crd")),
                                                     failedToOpen(file("site.crd"))}));

    CoordinateFile reader(context);
    CrdPoint p;
    ASSERT_TRUE(reader.openForReading(file("site.crd")));
    ASSERT_TRUE(reader.readPoint("C", p));
    EXPECT_EQ(p.description, "held");

    (void)!::write(release[1], "x", 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    CoordinateFile after(context);
    ASSERT_TRUE(after.open(file("site.crd")));
    EXPECT_TRUE(after.readPoint("A", p) && after.readPoint("B", p) && after.readPoint("C", p));
    for (int fd : {ready[0], ready[1], release[0], release[1]})
        ::close(fd);
}

// Runs `job` in a child whose files may not grow past `limit` bytes (the
// way a full disk stops a write); the child's exit code.
int withFileSizeLimit(std::uint64_t limit, const std::function<int()> &job) {
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        struct rlimit rl {};
        rl.rlim_cur = rl.rlim_max = limit;
        if (::setrlimit(RLIMIT_FSIZE, &rl) != 0)
            ::_exit(100);
        ::_exit(job());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(Lock, FullDiskDuringInsertsKeepsEveryStoredPoint) {
    const auto path = file("full.crd");
    std::vector<std::string> original;
    {
        CoordinateFile crd(context);
        ASSERT_TRUE(crd.open(path, Create::Always, kFormatAlphanumeric));
        for (int i = 100; i < 300; ++i) {
            CrdPoint p;
            p.set(i, i, i, "P" + std::to_string(i));
            ASSERT_TRUE(crd.writePoint(p));
            original.push_back(p.name);
        }
    }
    const std::uint64_t start = std::filesystem::file_size(path);
    // Room for 3 more records and a part of a fourth. Each child reports
    // the number of points it stored, or 200 + the error of the failure.
    const int stored = withFileSizeLimit(start + 3 * 66 + 20, [&] {
        CoordinateFile crd;
        if (!crd.open(path))
            return 250;
        for (int i = 0; i < 10; ++i) {
            CrdPoint p;
            p.set(i, i, i, "P" + std::to_string(10 + i)); // sorts first: the whole tail moves
            if (!crd.writePoint(p, Verbosity::Quiet))
                return crd.lastError() == kReadWriteFailed ? i : 200 + crd.lastError();
        }
        return 99;
    });
    EXPECT_EQ(stored, 3);
    const int bulk = withFileSizeLimit(start + 3 * 66 + 20, [&] {
        CoordinateFile crd;
        std::vector<CrdPoint> points(5);
        for (int i = 0; i < 5; ++i)
            points[static_cast<std::size_t>(i)].set(i, i, i, "Q" + std::to_string(i));
        if (!crd.open(path))
            return 250;
        return crd.writePoints(points, Verbosity::Quiet) == 0 && crd.lastError() == kReadWriteFailed
                   ? 0
                   : 1;
    });
    EXPECT_EQ(bulk, 0);
    const int numeric = withFileSizeLimit(4096, [&] {
        CoordinateFile crd;
        if (!crd.open(file("full-numeric.crd"), Create::Always, kFormatNumeric))
            return 250;
        CrdPoint p;
        p.set(1, 1, 1, "5");
        if (!crd.writePoint(p))
            return 1;
        p.set(2, 2, 2, "500"); // 28 KB on: does not fit
        return !crd.writePoint(p, Verbosity::Quiet) && crd.lastError() == kReadWriteFailed ? 0 : 2;
    });
    EXPECT_EQ(numeric, 0);

    EXPECT_EQ(std::filesystem::file_size(path), start + 3 * 66);
    CoordinateFile crd(context);
    ASSERT_TRUE(crd.openForReading(path));
    std::vector<std::string> names;
    CrdPoint p;
    for (crd.setCurrentIndex(-1); crd.readNext(p);)
        names.push_back(p.name);
    std::vector<std::string> expected = {"P10", "P11", "P12"};
    expected.insert(expected.end(), original.begin(), original.end());
    EXPECT_EQ(names, expected);
    ASSERT_TRUE(crd.openForReading(file("full-numeric.crd")));
    EXPECT_EQ(crd.highestName(), "5");
    EXPECT_EQ(std::filesystem::file_size(file("full-numeric.crd")), 6u * 56);
}

// Writers that all start on a file that does not exist yet: each point
// they report stored is in the file afterwards.
TEST_F(Lock, WritersCreatingTheSameFileAtOnceLoseNothing) {
    for (int round = 0; round < 20; ++round) {
        const auto path = file("new.crd");
        std::filesystem::remove(path);
        int gate[2];
        ASSERT_EQ(::pipe(gate), 0);
        std::vector<pid_t> writers;
        for (int w = 0; w < 4; ++w) {
            const pid_t pid = ::fork();
            if (pid == 0) {
                ::close(gate[1]);
                char byte;
                (void)::read(gate[0], &byte, 1); // all start when the gate closes
                CrdContext quick;
                quick.wait = [](int) { return true; };
                CoordinateFile crd(quick);
                CrdPoint p;
                p.name = "P" + std::to_string(w);
                p.northing = w;
                for (int attempt = 0; attempt < 200; ++attempt) {
                    if (crd.open(path, Create::IfMissing, kFormatAlphanumeric))
                        ::_exit(crd.writePoint(p, Verbosity::Quiet) ? 0 : 1);
                    ::usleep(1000);
                }
                ::_exit(2);
            }
            writers.push_back(pid);
        }
        ::close(gate[0]);
        ::close(gate[1]);
        int stored = 0;
        for (const pid_t pid : writers) {
            int status = 0;
            ::waitpid(pid, &status, 0);
            stored += WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 1 : 0;
        }
        CoordinateFile crd(context);
        ASSERT_TRUE(crd.openForReading(path));
        std::vector<CrdPoint> points;
        ASSERT_TRUE(readAllPoints(crd, points));
        ASSERT_EQ(static_cast<int>(points.size()), stored) << "round " << round;
        ASSERT_EQ(stored, 4) << "round " << round;
    }
}

} // namespace
