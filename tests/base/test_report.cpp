#include "../support/test_support.h"
#include "base/interaction.h"
#include "base/report.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using namespace tramline;

TEST(Report, TabsInOrderAndAppend) {
    Report r("Process Results");
    r.append("Results", std::string("line 1\n")); // taken over by the empty tab
    r.append("Warnings", "careful");
    r.append("Results", std::string("line 2\n")); // added to what it holds
    ASSERT_EQ(r.tabs().size(), 2u);
    EXPECT_EQ(r.tabs()[0].text, "line 1\nline 2\n");
    EXPECT_EQ(
        r.toText(),
        "Process Results\n\nResults\n=======\nline 1\nline 2\n\nWarnings\n========\ncareful\n\n");
    std::ostringstream written;
    r.write(written);
    EXPECT_EQ(written.str(), r.toText());
}

// A tab that begins with a file reads as if the file's text were its own:
// the heading rule, the closing newline and the text after it.
TEST(Report, TabFromFileReadsLikeText) {
    test::ScratchFolder scratch;
    const struct {
        const char *name;
        const char *fileText; ///< nullptr: no file at all
        const char *after;
        const char *content;
    } cases[] = {
        {"listing and summary", "a\nb\n", "sum\n", "a\nb\nsum\n"},
        {"file alone, newline added", "a\nb", "", "a\nb"},
        {"empty file", "", "sum", "sum"},
        {"empty file and no text", "", "", ""},
        {"missing file", nullptr, "sum\n", "sum\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const auto path = scratch.path / "listing.tmp";
        std::filesystem::remove(path);
        if (c.fileText)
            std::ofstream(path, std::ios::binary) << c.fileText;
        Report fromFile("R"), inMemory("R");
        fromFile.append("First", "x");
        fromFile.appendFile("Listing", path).text = c.after;
        fromFile.append("Last", "y\n");
        inMemory.append("First", "x");
        inMemory.append("Listing", std::string(c.content));
        inMemory.append("Last", "y\n");
        EXPECT_EQ(fromFile.tabs()[1].content(), c.content);
        EXPECT_EQ(fromFile.tabs()[1].contentEmpty(), std::string(c.content).empty());
        EXPECT_EQ(fromFile.toText(), inMemory.toText());
        std::ostringstream written;
        fromFile.write(written);
        EXPECT_EQ(written.str(), inMemory.toText());
    }
}

TEST(ScriptedInteraction, RepliesInOrder) {
    ScriptedInteraction ui({"No", "1|two", "<cancel>"});
    EXPECT_EQ(ui.choose("Q", "Sure?", {"Yes", "No"}), 1);
    std::vector<FormField> form{{"a", "", {}}, {"b", "", {}}};
    EXPECT_TRUE(ui.fillForm("F", form));
    EXPECT_EQ(form[1].value, "two");
    EXPECT_FALSE(ui.fillForm("F", form));
    EXPECT_EQ(ui.choose("Q", "Again?", {"Yes"}), -1); // script exhausted
    EXPECT_EQ(ui.questions.front(), "Q: Sure?");
}
