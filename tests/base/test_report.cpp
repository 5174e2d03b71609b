#include "base/interaction.h"
#include "base/report.h"

#include <gtest/gtest.h>

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
