// The registry drives the menus, the command line and the file dialogs:
// names must be unique per kind and every built converter callable.
#include "convert/gsi_import.h"
#include "convert/gsi_point_export.h"
#include "convert/registry.h"

#include <gtest/gtest.h>

#include <set>

namespace tramline::convert {
namespace {

TEST(Registry, NamesAreUniquePerKindAndBuiltEntriesHaveTheirFunction) {
    std::set<std::pair<int, std::string>> seen;
    for (const auto &entry : formatRegistry()) {
        EXPECT_TRUE(seen.insert({int(entry.kind), entry.id}).second) << entry.id;
        if (entry.built && entry.kind == FormatKind::RawImport) {
            EXPECT_NE(entry.import, nullptr) << entry.id;
        }
        if (entry.built && entry.kind == FormatKind::RawExport) {
            EXPECT_NE(entry.exporter, nullptr) << entry.id;
        }
        EXPECT_EQ(findFormatByMenu(entry.kind, entry.menuName), &entry) << entry.menuName;
    }
}

TEST(Registry, FindsByNameInAnyCaseAndGivesDialogFilters) {
    struct Case {
        FormatKind kind;
        const char *id;
        const char *title;
        const char *filter;
    };
    const Case cases[] = {
        {FormatKind::RawImport, "SDR", "SDR Raw File to Import", "*.sdr *.raw"},
        {FormatKind::RawImport, "candg", "C and G Raw File to Import", "*.cgr *.raw *.txt *"},
        {FormatKind::PointImport, "text", "Text/ASCII File To Import",
         "*.txt *.asc *.dat *.csv *.xyz *"},
        {FormatKind::PointExport, "text", "Point Text File to Write",
         "*.txt *.asc *.dat *.csv *.xyz *"},
    };
    for (const auto &c : cases) {
        const FormatEntry *entry = findFormat(c.kind, c.id);
        ASSERT_NE(entry, nullptr) << c.id;
        EXPECT_STREQ(entry->dialogTitle, c.title);
        EXPECT_EQ(dialogFilter(*entry), c.filter);
    }
    EXPECT_EQ(findFormat(FormatKind::RawExport, "text"), nullptr);
    EXPECT_FALSE(findFormat(FormatKind::RawImport, "quillan")->built);
    EXPECT_EQ(findFormat(FormatKind::RawImport, "gsi")->import, importGsi);
    EXPECT_EQ(findFormat(FormatKind::PointExport, "gsi")->pointExport, exportGsiPoints);
}

} // namespace
} // namespace tramline::convert
