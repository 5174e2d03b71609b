// Opening, refusing, damaged files, and the whole-file operations.
#include "crd_test_support.h"

#include "base/point_names.h"
#include "crd/coordinate_file.h"
#include "crd/crd_errors.h"
#include "crd/file_kinds.h"
#include "crd/notes_file.h"

#include <limits>
#include <sys/stat.h>

using namespace tramline::crd;
using namespace crdtest;

namespace {

class CoordinateFileTest : public CrdTest {
protected:
    void putAll(CoordinateFile &crd, std::initializer_list<const char *> names) {
        for (const char *name : names) {
            CrdPoint p;
            p.set(1, 2, 3, name, std::string("d") + name);
            ASSERT_TRUE(crd.writePoint(p)) << name;
        }
    }
    static std::vector<std::string> names(CoordinateFile &crd) {
        std::vector<std::string> out;
        CrdPoint p;
        for (crd.setCurrentIndex(-1); crd.readNext(p);)
            out.push_back(p.name);
        return out;
    }
};

TEST(CrdErrors, UnknownCodesSaySo) {
    for (int unknown : {14, 19, 36, 41, 43, 49, 57, -1})
        EXPECT_EQ(errorText(unknown),
                  "No description is available for error #" + std::to_string(unknown) + ".");
}

TEST(CrdFileKinds, ExtensionMapping) {
    struct Case {
        const char *path;
        int defaultFormat, format;
        const char *text;
    };
    const Case cases[] = {
        {"a.crd", 0, 0, "crd"},   {"a.CRD", 1, 1, "crd"},  {"a.crd", 4, 4, "crd"},
        {"a.crd", 7, 1, "crd"},   {"a.crd", -1, 1, "crd"}, {"a.cgc", 0, 3, "cgc"},
        {"a.zak", 0, 5, "zak"},   {"a.mdb", 0, 6, "mdb"},  {"a.dwg", 0, 7, "dwg"},
        {"a.crdb", 0, 8, "crdb"}, {"a.txt", 0, -1, ""},    {"crd", 0, -1, ""},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(formatFromExtension(c.path, c.defaultFormat), c.format) << c.path;
        EXPECT_STREQ(extensionText(c.format), c.text) << c.path;
    }
}

TEST_F(CoordinateFileTest, OtherKindsAreRefused) {
    for (const char *name : {"a.cgc", "a.mdb", "a.zak", "a.dwg", "a.crdb", "a.txt"}) {
        CoordinateFile crd(context);
        EXPECT_FALSE(crd.open(file(name))) << name; // a new file of that kind
        EXPECT_EQ(crd.lastError(), kFileTypeNotSupported);
        writeBytes(file(name), Bytes(200, 1));
        EXPECT_FALSE(crd.open(file(name))) << name; // an existing one
        EXPECT_EQ(crd.lastError(), kFileTypeNotSupported);
        EXPECT_EQ(readBytes(file(name)), Bytes(200, 1));
    }
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(CoordinateFileTest, NewFilesTakeTheDefaultFormat) {
    struct Case {
        int setting, format; // -1: refused
    };
    for (const Case c : {Case{0, 0}, Case{1, 1}, Case{4, -1}, Case{9, 1}}) {
        CoordinateFile crd(context);
        crd.setDefaultFormat(c.setting);
        const auto path = file("new" + std::to_string(c.setting) + ".crd");
        EXPECT_EQ(crd.open(path), c.format >= 0) << c.setting;
        EXPECT_EQ(crd.format(), c.format) << c.setting;
    }
}

// No NaN or infinity reaches a file, by either way in, in either layout:
// the point is refused with its own error and the file stays as it was.
TEST_F(CoordinateFileTest, NonFiniteCoordinatesAreRefused) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char *what;
        double e, n, z;
    } cases[] = {{"easting NaN", nan, 2, 3},
                 {"northing infinite", 1, -inf, 3},
                 {"elevation infinite", 1, 2, inf}};
    for (const int format : {kFormatNumeric, kFormatAlphanumeric}) {
        const auto path = file("site" + std::to_string(format) + ".crd");
        CoordinateFile crd(context);
        ASSERT_TRUE(crd.open(path, Create::Always, format));
        putAll(crd, {"1"});
        const Bytes before = readBytes(path);
        for (const auto &c : cases) {
            SCOPED_TRACE(std::string(c.what) + (format == kFormatNumeric ? " numeric" : " alpha"));
            CrdPoint p;
            p.set(c.e, c.n, c.z, "2", "");
            EXPECT_FALSE(crd.writePoint(p, Verbosity::Quiet));
            EXPECT_EQ(crd.lastError(), kNotANumber);
            const CrdPoint both[] = {p, p};
            std::vector<int> errors;
            EXPECT_EQ(crd.writePoints(both, Verbosity::Quiet, &errors), 0);
            EXPECT_EQ(errors, (std::vector<int>{kNotANumber, kNotANumber}));
            EXPECT_EQ(readBytes(path), before);
        }
    }
}

TEST_F(CoordinateFileTest, ExistingFileKeepsItsLayoutUnlessCreated) {
    const auto path = file("site.crd");
    {
        CoordinateFile crd(context);
        ASSERT_TRUE(crd.open(path, Create::Always, kFormatNumeric));
        putAll(crd, {"3"});
    }
    CoordinateFile crd(context);
    crd.setDefaultFormat(1);
    ASSERT_TRUE(crd.open(path));
    EXPECT_EQ(crd.format(), kFormatNumeric);
    EXPECT_EQ(names(crd), std::vector<std::string>{"3"});
    ASSERT_TRUE(crd.open(path, Create::Always, -1)); // forced anew, in the default format
    EXPECT_EQ(crd.format(), kFormatAlphanumeric);
    EXPECT_TRUE(names(crd).empty());
}

TEST_F(CoordinateFileTest, DamagedFiles) {
    struct Case {
        const char *what;
        Bytes bytes;
        bool opens;
        int error;     // of the open, or of the first read
        long readable; // points a walk gets before it stops
    };
    Bytes numeric;
    addDouble(numeric, 3.0);
    addDouble(numeric, 0.0);
    addDouble(numeric, 2009.0415);
    addText(numeric, "", 32);
    for (int i = 1; i <= 3; ++i)
        append(numeric, numericRecord(i, i, i, ""));
    Bytes cut = numeric;
    cut.resize(cut.size() - 20);
    Bytes garbage = numeric;
    for (int i = 0; i < 8; ++i)
        garbage[static_cast<std::size_t>(i)] = 0xff; // highest number: NaN
    Bytes alpha = alphaHeader("", "");
    append(alpha, alphaRecord(1, 1, 1, "", "A"));
    append(alpha, alphaRecord(2, 2, 2, "", "B"));
    Bytes alphaCut = alpha;
    alphaCut.resize(alphaCut.size() - 30);
    const Case cases[] = {
        {"header cut short", Bytes(30, 7), false, kReadWriteFailed, 0},
        {"last record cut short", cut, true, kReadWriteFailed, 2},
        {"garbage highest number", garbage, true, kPointNotFound, 3},
        {"alphanumeric record cut short", alphaCut, true, kPointNotFound, 1},
    };
    for (const auto &c : cases) {
        const auto path = file("damaged.crd");
        writeBytes(path, c.bytes);
        CoordinateFile crd(context);
        // Read only: a damaged file is never opened for writing.
        ASSERT_EQ(crd.openForReading(path), c.opens) << c.what;
        if (!c.opens) {
            EXPECT_EQ(crd.lastError(), c.error) << c.what;
            EXPECT_EQ(readBytes(path), c.bytes) << c.what;
            continue;
        }
        long count = 0;
        CrdPoint p;
        for (crd.setCurrentIndex(-1); crd.readNext(p);)
            ++count;
        EXPECT_EQ(count, c.readable) << c.what;
        EXPECT_EQ(crd.lastError(), c.error) << c.what;
    }
    EXPECT_NE(
        std::find(ui.messages.begin(), ui.messages.end(),
                  "\nError 23: Could not open file: " + file("damaged.crd").string() +
                      "\nUnspecified error reading or writing file.\nIt might be read-only or "
                      "in use by another application or be invalid."),
        ui.messages.end());
}

TEST_F(CoordinateFileTest, ZeroLengthFileIsMadeNew) {
    const auto path = file("empty.crd");
    writeBytes(path, {});
    CoordinateFile reader(context);
    EXPECT_FALSE(reader.openForReading(path));
    EXPECT_EQ(reader.lastError(), kCannotOpen);
    CoordinateFile crd(context);
    crd.setDefaultFormat(0);
    ASSERT_TRUE(crd.open(path));
    EXPECT_EQ(crd.format(), kFormatNumeric);
    EXPECT_EQ(readBytes(path).size(), 56u);
}

TEST_F(CoordinateFileTest, ReadOnlyFileAndFolderAreRefusedAtOnce) {
    const auto path = file("ro.crd");
    {
        CoordinateFile crd(context);
        ASSERT_TRUE(crd.open(path, Create::Always, kFormatAlphanumeric));
        putAll(crd, {"A1"});
    }
    std::filesystem::permissions(path, std::filesystem::perms::owner_read |
                                           std::filesystem::perms::group_read |
                                           std::filesystem::perms::others_read);
    const auto errorOne = [](const std::filesystem::path &target) {
        return "\nError 1: Could not open file: " + target.string() +
               "\nIt might be read-only, in use by another application\nor locked in error by "
               "program. If locked, restart program.";
    };
    const Bytes before = readBytes(path);
    EXPECT_TRUE(runUnprivileged([&] {
        bool ok = true;
        for (const auto &target : {path, dir}) {
            ui.messages.clear();
            CoordinateFile crd(context);
            ok = ok && !crd.open(target) && crd.lastError() == kCannotOpen &&
                 ui.messages == std::vector<std::string>{errorOne(target)};
        }
        CoordinateFile reader(context);
        return ok && waits.empty() && reader.openForReading(path) &&
               names(reader) == std::vector<std::string>{"A1"};
    }));
    EXPECT_EQ(readBytes(path), before);
}

TEST_F(CoordinateFileTest, MissingFolderAndMissingFile) {
    const auto nowhere = file("no/such/folder/site.crd");
    CoordinateFile crd(context);
    EXPECT_FALSE(crd.open(nowhere, Create::Always, 1));
    EXPECT_EQ(crd.lastError(), kCannotCreate);
    EXPECT_EQ(ui.messages.front(), "\nCan't open new file " + nowhere.string());
    EXPECT_EQ(ui.messages.back(), "\nError 20: Could not open file: " + nowhere.string() +
                                      "\nThe coordinate file could not be created.\nIt might be "
                                      "read-only or in use by another application or be invalid.");
    EXPECT_FALSE(crd.openForReading(file("missing.crd")));
    EXPECT_EQ(crd.lastError(), kCannotOpen);
}

TEST_F(CoordinateFileTest, NothingOpen) {
    CoordinateFile crd(context);
    CrdPoint p;
    EXPECT_FALSE(crd.readPoint("1", p));
    EXPECT_EQ(crd.lastError(), kNotOpen);
    EXPECT_FALSE(crd.readNext(p));
    EXPECT_FALSE(crd.writePoint(p));
    EXPECT_EQ(crd.deletePoints([](const CrdPoint &) { return true; }), -1);
    EXPECT_EQ(crd.lastError(), kNotOpen);
    EXPECT_EQ(ui.messages, (std::vector<std::string>{"\nError3: crd file not open",
                                                     "\nError1: crd file not open"}));
}

TEST_F(CoordinateFileTest, DeleteKeepsTheRestTheHeaderAndOtherNotes) {
    for (int format : {kFormatNumeric, kFormatAlphanumeric}) {
        const auto path = file(format ? "alpha.crd" : "num.crd");
        CoordinateFile crd(context);
        ASSERT_TRUE(crd.open(path, Create::Always, format));
        putAll(crd, {"1", "2", "3", "4", "5", "7"});
        ASSERT_TRUE(crd.setHeaderTexts({"Job 12", "2.500", format ? "12/31/1999" : "1999.1231"}));
        ASSERT_TRUE(crd.addNote("2", "under the oak"));
        ASSERT_TRUE(crd.addNote("3", "nail"));
        ::chmod(path.c_str(), 0640);

        tramline::PointList list;
        ASSERT_TRUE(list.parse("1-2,5,9"));
        std::vector<CrdPoint> removed;
        EXPECT_EQ(
            crd.deletePoints([&](const CrdPoint &p) { return list.contains(p.name); }, &removed),
            3);
        ASSERT_EQ(removed.size(), 3u);
        EXPECT_EQ(removed[1].description, "d2");
        EXPECT_EQ(names(crd), (std::vector<std::string>{"3", "4", "7"}));
        EXPECT_EQ(crd.headerTexts().title, "Job 12");
        EXPECT_EQ(crd.headerTexts().number, "2.500");
        EXPECT_EQ(crd.headerTexts().date, format ? "12/31/1999" : "1999.1231");
        EXPECT_TRUE(crd.notes("2").empty());
        EXPECT_EQ(crd.notes("3"), std::vector<std::string>{"nail"});
        struct stat st {};
        ::stat(path.c_str(), &st);
        EXPECT_EQ(st.st_mode & 0777, 0640u);
        // Still ours: still writable, and the new file is what is on disk.
        putAll(crd, {"8"});
        crd.close();
        ASSERT_TRUE(crd.openForReading(path));
        EXPECT_EQ(names(crd), (std::vector<std::string>{"3", "4", "7", "8"}));
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir), {}),
              4); // files and notes, no temporary
}

TEST_F(CoordinateFileTest, CreatingAnewRemovesTheNotes) {
    const auto path = file("site.v2.crd");
    CoordinateFile crd(context);
    ASSERT_TRUE(crd.open(path, Create::Always, 1));
    ASSERT_TRUE(crd.addNote("A", "note"));
    EXPECT_EQ(crd.notesPath(), file("site.not"));
    EXPECT_TRUE(std::filesystem::exists(file("site.not")));
    ASSERT_TRUE(crd.open(path, Create::Always, 1));
    EXPECT_FALSE(std::filesystem::exists(file("site.not")));
}

TEST_F(CoordinateFileTest, RewriteTakesInARecordPastTheHeaderAndDropsEmptyTail) {
    const auto path = file("site.crd");
    CoordinateFile crd(context);
    ASSERT_TRUE(crd.open(path, Create::Always, 0));
    putAll(crd, {"2", "4"});
    // A point written just before a crash, its header not yet updated, and
    // empty records after it.
    Bytes bytes = readBytes(path);
    append(bytes, numericRecord(9, 9, 9, ""));
    append(bytes, numericRecord(0, 0, 0, ""));
    append(bytes, numericRecord(0, 0, 0, " "));
    crd.close();
    writeBytes(path, bytes);
    ASSERT_TRUE(crd.open(path));
    CrdPoint p;
    EXPECT_FALSE(crd.readPoint("5", p, PointSearch::Exact, Verbosity::Quiet));
    EXPECT_EQ(names(crd), (std::vector<std::string>{"2", "4", "5"})); // the walk sees it
    ASSERT_TRUE(crd.rewrite());
    EXPECT_EQ(readBytes(path).size(), 6u * 56);
    EXPECT_EQ(crd.highestName(), "5");
    EXPECT_TRUE(crd.readPoint("5", p));
    EXPECT_EQ(p.easting, 9.0);
}

TEST_F(CoordinateFileTest, SaveAsAndRenameCarryTheSideFiles) {
    const auto path = file("a.crd");
    CoordinateFile crd(context);
    ASSERT_TRUE(crd.open(path, Create::Always, 1));
    crd.setHistoryKeeping(true);
    putAll(crd, {"P1"});
    CrdPoint p;
    ASSERT_TRUE(crd.readPoint("P1", p));
    ASSERT_TRUE(crd.addHistory(nullptr, &p, kHistoryOperationInputEdit));
    ASSERT_TRUE(crd.addNote("P1", "iron pin"));

    ASSERT_TRUE(crd.saveAs(file("b.crd")));
    EXPECT_EQ(crd.path(), file("b.crd"));
    EXPECT_EQ(readBytes(file("a.crd")), readBytes(file("b.crd")));
    EXPECT_EQ(crd.notes("P1"), std::vector<std::string>{"iron pin"});
    EXPECT_TRUE(std::filesystem::exists(file("a.not")));
    EXPECT_TRUE(std::filesystem::exists(file("b.his")));

    ASSERT_TRUE(crd.rename(file("c.crd")));
    EXPECT_FALSE(std::filesystem::exists(file("b.crd")));
    EXPECT_FALSE(std::filesystem::exists(file("b.not")));
    EXPECT_TRUE(std::filesystem::exists(file("c.his")));
    putAll(crd, {"P2"}); // still open for update under the new name
    EXPECT_EQ(names(crd), (std::vector<std::string>{"P1", "P2"}));
    EXPECT_EQ(crd.notes("P1"), std::vector<std::string>{"iron pin"});

    EXPECT_FALSE(crd.rename(file("a.crd"))); // never over another file
    EXPECT_EQ(crd.lastError(), kRenameFailed);
    EXPECT_EQ(crd.path(), file("c.crd"));
}

TEST(CrdNotes, TextSurvivesEscapes) {
    const tramline::test::ScratchFolder folder;
    const auto path = folder.path / "site.not";
    NotesFile notes;
    notes.add("A\t1", "line one\nline\\two\r");
    notes.add("a1", "second");
    ASSERT_TRUE(notes.save(path));
    NotesFile back;
    ASSERT_TRUE(back.load(path));
    EXPECT_EQ(back.notesFor("A\t1"), std::vector<std::string>{"line one\nline\\two\r"});
    EXPECT_EQ(back.notesFor("A1"), std::vector<std::string>{"second"}); // names compare as names
    EXPECT_EQ(removeNotes(path, [](std::string_view n) { return n == "a1"; }), 1);
    ASSERT_TRUE(back.load(path));
    EXPECT_EQ(back.notes().size(), 1u);
    crdtest::writeBytes(path, {'x', '\n'});
    EXPECT_FALSE(back.load(path)); // not a notes file
}

} // namespace
