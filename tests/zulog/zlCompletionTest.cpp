#include "zulog/zlCompletion.h"

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

bool hasLine(const std::string& script, const std::string& line)
{
    return script.find("\n" + line + "\n") != std::string::npos;
}

// A real bash runs the script in another test.
TEST(ZlCompletion, TakesCommandsOptionsAndSetsFromTheDefinition)
{
    std::vector<std::string> words;
    CLI::App app("text", "zulog");
    CLI::App* const outer = app.add_subcommand("outer");
    CLI::App* const inner = outer->add_subcommand("inner");
    inner->add_option("--colour", words)->type_name("WHEN")->check(CLI::IsMember({"red", "blue"}));
    inner->add_option("--output", words)->type_name("FILE");
    inner->add_option("--number", words)->type_name("N");
    inner->add_flag("--all");
    inner->add_option("FILE", words)->type_name("");
    const std::string script = Zu::zlBashCompletion(app);
    EXPECT_TRUE(hasLine(script, "            \"zulog outer\") command=\"zulog outer\" ;;"));
    EXPECT_TRUE(
        hasLine(script, "            \"zulog outer inner\") command=\"zulog outer inner\" ;;"));
    EXPECT_TRUE(hasLine(script, "                _zulog_values $'inner'"));
    EXPECT_TRUE(hasLine(script, "        \"zulog outer inner --colour\")\n"
                                "            _zulog_values $'red\\nblue'\n            return"));
    EXPECT_TRUE(hasLine(script, "        \"zulog outer inner --output\")\n"
                                "            _zulog_files\n            return"));
    // Nothing is known of its value.
    EXPECT_TRUE(hasLine(script, "        \"zulog outer inner --number\")\n            return"));
    // A value is no word of the command.
    EXPECT_TRUE(hasLine(script, "            \"zulog outer inner --output\") _zulog_skip ;;"));
    // It has no value.
    EXPECT_EQ(script.find("\"zulog outer inner --all\""), std::string::npos);
    EXPECT_TRUE(hasLine(script, "                _zulog_values "
                                "$'--help\\n--colour\\n--output\\n--number\\n--all'\n"
                                "            else\n                _zulog_files"));
}

} // namespace
