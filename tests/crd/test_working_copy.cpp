// The working copy: a user's file, its notes and history in and out, and
// a user's file that a failed save leaves whole.
#include "crd/history_file.h"
#include "crd/point_rename.h"
#include "crd/working_copy.h"
#include "crd_test_support.h"

#include <sys/stat.h>

using namespace tramline::crd;
using namespace crdtest;
using tramline::test::slurp;

namespace {

class WorkingCopyTest : public CrdTest {
protected:
    // A user's file: points 1 and 2, a note on 1, a history of both.
    std::filesystem::path makeUserFile(const std::string &name) {
        const auto path = file(name);
        CoordinateFile user(context);
        EXPECT_TRUE(user.open(path, Create::Always, kFormatAlphanumeric));
        user.setHistoryKeeping(true);
        for (const char *n : {"1", "2"}) {
            CrdPoint p;
            p.set(2000.0, 1000.0, 10.0, n, "IRON ROD");
            EXPECT_TRUE(user.writePoint(p));
            user.addHistory(nullptr, &p, kHistoryOperationInputEdit);
        }
        EXPECT_TRUE(user.addNote("1", "found"));
        return path;
    }
    static std::string state(const std::filesystem::path &path) {
        return slurp(path) + "|" + slurp(notesPathFor(path)) + "|" + slurp(historyPathFor(path));
    }

    CoordinateFile working{context};
    WorkingCopy copy{working};
};

TEST_F(WorkingCopyTest, RoundTripWithNotesAndHistory) {
    const auto user = makeUserFile("site.crd");
    const std::string userHistory = slurp(historyPathFor(user));
    ASSERT_TRUE(copy.create(file("tramlinetmp.crd")).ok());
    ASSERT_TRUE(copy.open(user).ok());
    EXPECT_EQ(copy.userFile(), user);
    EXPECT_EQ(working.path(), file("tramlinetmp.crd"));
    EXPECT_EQ(working.notes("1"), std::vector<std::string>{"found"});
    EXPECT_TRUE(working.historyKeeping());

    // Edits stay in the working copy until saved.
    const std::string before = state(user);
    ASSERT_TRUE(renamePoint(working, "1", "5").ok());
    EXPECT_EQ(state(user), before);
    ASSERT_TRUE(copy.save().ok());
    CoordinateFile back(context);
    ASSERT_TRUE(back.openForReading(user));
    CrdPoint p;
    EXPECT_TRUE(back.readPoint("5", p));
    EXPECT_FALSE(back.readPoint("1", p, PointSearch::Exact, Verbosity::Quiet));
    EXPECT_EQ(back.notes("5"), std::vector<std::string>{"found"});
    std::vector<HistoryEntry> entries;
    ASSERT_TRUE(readHistoryFile(historyPathFor(user), entries));
    ASSERT_EQ(entries.size(), 3u); // the two puts, then the rename
    EXPECT_EQ(entries[2].operation, kHistoryOperationRenumber);
    EXPECT_EQ(slurp(historyPathFor(user)).substr(0, userHistory.size()), userHistory);

    // Save As: a new user's file, with the side files; the old one stays.
    ASSERT_TRUE(copy.saveAs(file("other.crd")).ok());
    EXPECT_EQ(copy.userFile(), file("other.crd"));
    EXPECT_EQ(state(file("other.crd")), state(file("tramlinetmp.crd")));
    EXPECT_EQ(working.path(), file("tramlinetmp.crd")); // still editing the copy
}

// A side file describes its own file's points: one that the working copy
// does not have goes from the target, and opening a file without one
// drops the working copy's.
TEST_F(WorkingCopyTest, SideFilesMirrorTheWorkingCopy) {
    const auto user = makeUserFile("site.crd");
    const auto bare = file("bare.crd");
    {
        CoordinateFile f(context);
        ASSERT_TRUE(f.open(bare, Create::Always, kFormatNumeric));
    }
    ASSERT_TRUE(copy.create(file("tramlinetmp.crd")).ok());
    ASSERT_TRUE(copy.open(user).ok());
    ASSERT_TRUE(copy.open(bare).ok());
    EXPECT_FALSE(std::filesystem::exists(working.notesPath()));
    EXPECT_FALSE(std::filesystem::exists(working.historyPath()));
    EXPECT_FALSE(working.historyKeeping());
    ASSERT_TRUE(copy.saveAs(user).ok());
    EXPECT_FALSE(std::filesystem::exists(notesPathFor(user)));
    EXPECT_FALSE(std::filesystem::exists(historyPathFor(user)));
    EXPECT_EQ(slurp(user), slurp(bare));
}

TEST_F(WorkingCopyTest, AFileThatCannotBeReadLeavesTheWorkingCopy) {
    ASSERT_TRUE(copy.create(file("tramlinetmp.crd")).ok());
    const auto user = makeUserFile("site.crd");
    ASSERT_TRUE(copy.open(user).ok());
    writeBytes(file("site.cgc"), Bytes{'C', '&', 'G'});
    writeBytes(file("empty.crd"), Bytes{});
    struct Case {
        std::filesystem::path path;
        std::string message; // a part of it
    };
    const Case cases[] = {
        {file("missing.crd"), "\nError 21: Could not open file: " + file("missing.crd").string()},
        {file("empty.crd"), "\nError 21: Could not open file: " + file("empty.crd").string()},
        {file("site.cgc"), "File type not supported"},
    };
    const std::string before = state(working.path());
    for (const auto &c : cases) {
        const tramline::Status status = copy.open(c.path);
        EXPECT_FALSE(status.ok()) << c.path;
        EXPECT_NE(status.code, tramline::StatusCode::Io) << c.path; // the copy was not touched
        EXPECT_NE(status.message.find(c.message), std::string::npos) << status.message;
        EXPECT_EQ(copy.userFile(), user);
        EXPECT_TRUE(working.isOpen());
        EXPECT_EQ(state(working.path()), before);
    }
}

TEST_F(WorkingCopyTest, AFailedSaveLeavesTheUsersFileWhole) {
    ASSERT_TRUE(copy.create(file("tramlinetmp.crd")).ok());
    EXPECT_FALSE(copy.save().ok()); // no user's file yet
    CrdPoint p;
    p.set(1.0, 2.0, 3.0, "9", "NEW");
    ASSERT_TRUE(working.writePoint(p));
    struct Case {
        std::filesystem::path target;
        std::string message;
    };
    const Case cases[] = {
        {file("no/such/folder/site.crd"),
         "\nCan't open new file " + file("no/such/folder/site.crd").string()},
        {file("site.txt"), "File type not supported"},
        {file("tramlinetmp.crd"), "\nCan't open new file " + file("tramlinetmp.crd").string()},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(copy.saveAs(c.target).message, c.message) << c.target;
        EXPECT_TRUE(copy.userFile().empty()) << c.target;
    }
    EXPECT_FALSE(std::filesystem::exists(file("no")));

    // A user's file that another program holds for writing is left alone.
    const auto held = makeUserFile("held.crd");
    const std::string before = state(held);
    CoordinateFile other(context);
    ASSERT_TRUE(other.open(held));
    EXPECT_EQ(copy.saveAs(held).message, errorText(kCannotOpen));
    other.close();
    EXPECT_EQ(state(held), before);
}

// A folder the user may not write: the old file and its notes stay as they
// were. Run as an ordinary user, as root writes anywhere.
TEST_F(WorkingCopyTest, ReadOnlyFolderLeavesTheUsersFileWhole) {
    const auto folder = file("ro");
    std::filesystem::create_directories(folder);
    const auto user = makeUserFile("ro/site.crd");
    const std::string before = state(user);
    // The child runs as nobody: the scratch folder becomes its own.
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(dir.c_str(), 65534, 65534), 0);
        for (const auto &entry : std::filesystem::recursive_directory_iterator(dir)) {
            ASSERT_EQ(::chown(entry.path().c_str(), 65534, 65534), 0);
        }
    }
    std::filesystem::permissions(folder, std::filesystem::perms::owner_read |
                                             std::filesystem::perms::owner_exec);
    EXPECT_TRUE(runUnprivileged([&] {
        CoordinateFile edited;
        WorkingCopy child(edited);
        if (!child.create(dir / "tramlinetmp.crd") || !child.open(user) ||
            !renamePoint(edited, "1", "5"))
            return false;
        const tramline::Status status = child.save();
        return !status && status.message == "\nCan't open new file " + user.string();
    }));
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
    EXPECT_EQ(state(user), before);
}

} // namespace
