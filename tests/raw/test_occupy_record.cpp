// Occupy records: read into their fields for computation, shown and saved
// as the line they are.
#include "../support/test_support.h"
#include "raw/document.h"
#include "raw/reader.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace tramline;
using namespace tramline::raw;

namespace {

TEST(OccupyRecord, FieldsOfStrictAndLooseLines) {
    struct Case {
        const char *line;
        std::vector<std::string> fields; ///< point, north, east, elevation, note
    };
    const Case cases[] = {
        {"OC,OP12,N 1.5,E 2.5,EL3.5,--IRON ROD", {"12", "1.5", "2.5", "3.5", "IRON ROD"}},
        {"OC,PN7,N ,E ,EL,--", {"7", "", "", "", ""}},
        {"OC,OP5,N 5,E 6,EL,--x,y", {"5", "5", "6", "", "x,y"}},
        // Not in the strict form: the point only, no coordinates.
        {"OC,OP9,E 1,N 2,EL3,--", {"9", "", "", "", ""}},
        {"OC,OP4", {"4", "", "", "", ""}},
    };
    for (const auto &c : cases) {
        RawNode node;
        ASSERT_TRUE(parseRawLine(c.line, RawUnits{}, node)) << c.line;
        EXPECT_EQ(node.type, RecordType::Occupy) << c.line;
        EXPECT_EQ(node.text, c.line);
        EXPECT_EQ(node.fields, c.fields) << c.line;
    }
}

// The grid keeps showing an occupy line as a "DS" row of its own text, and
// saving gives back the same bytes.
TEST(OccupyRecord, GridRowAndSavedBytes) {
    const std::string text = "OC,OP1,N 5000.0000,E 5000.0000,EL100.0000,--IRON ROD\n"
                             "OC,PN2,N ,E ,EL,--\n"
                             "OC,OP3,odd\n";
    std::istringstream in(text);
    RawFile file;
    ASSERT_TRUE(readRaw(in, file));
    RawDocument doc;
    doc.load(file);
    ASSERT_EQ(doc.rowCount(), 3u);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_EQ(doc.row(i).type, "DS") << i;
    EXPECT_EQ(doc.row(2).cells, std::vector<std::string>{"OC,OP3,odd"});
    EXPECT_EQ(doc.text(), text);
    // Read back from the grid, the records are occupy records again.
    RawFile back;
    ASSERT_TRUE(doc.records(back));
    ASSERT_EQ(back.nodes.size(), 3u);
    EXPECT_EQ(back.nodes[1].type, RecordType::Occupy);
    EXPECT_EQ(back.nodes[1].fields[kOccupiedPoint], "2");
}

} // namespace
