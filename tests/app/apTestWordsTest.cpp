#include "app/apTestWords.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;
using Zu::ApTestChoice;
using Zu::ApTestWords;

TEST(ApTestWords, TakesTheWordsApart)
{
    const struct
    {
        Texts _words;
        ApTestWords _expected;
    } cases[] = {
        {{}, {false, false, false, "", {}, {}, {}}},
        {{"--help"}, {true, false, false, "", {}, {}, {}}},
        {{"-h"}, {true, false, false, "", {}, {}, {}}},
        {{"--list"}, {false, true, false, "", {}, {}, {}}},
        {{"--all"}, {false, false, true, "", {}, {}, {}}},
        {{"A", "B*"}, {false, false, false, "", {"A", "B*"}, {}, {}}},
        {{"A", "-B", "C"}, {false, false, false, "", {"A", "C"}, {"B"}, {}}},
        {{"--exclude", "B*", "--exclude=C"}, {false, false, false, "", {}, {"B*", "C"}, {}}},
        {{"-B", "--exclude", "-C", "-D"}, {false, false, false, "", {}, {"B", "-C", "D"}, {}}},
        {{"--junit=a.xml"}, {false, false, false, "a.xml", {}, {}, {}}},
        {{"--junit", "-a.xml", "-B"}, {false, false, false, "-a.xml", {}, {"B"}, {}}},
        {{"--junit", "a", "--junit", "b"}, {false, false, false, "b", {}, {}, {}}},
        {{"--junit", "--", "-B"}, {false, false, false, "--", {}, {"B"}, {}}},
        {{"--", "-B", "--all", "--"}, {false, false, false, "", {"-B", "--all", "--"}, {}, {}}},
        {{"-h*"}, {false, false, false, "", {}, {"h*"}, {}}},
        {{"-", ""}, {false, false, false, "", {"-", ""}, {}, {}}},
        {{"--al"},
         {false, false, false, "", {}, {}, {"unknown option '--al'; did you mean '--all'?"}}},
        {{"--frobnicate"}, {false, false, false, "", {}, {}, {"unknown option '--frobnicate'"}}},
        {{"--all=yes"}, {false, false, false, "", {}, {}, {"option '--all' takes no value"}}},
        {{"--junit"}, {false, false, false, "", {}, {}, {"option '--junit' needs a value"}}},
        {{"--exclude"}, {false, false, false, "", {}, {}, {"option '--exclude' needs a value"}}},
        {{"--junit="},
         {false, false, false, "", {}, {}, {"option '--junit' needs the name of a file"}}},
    };
    for (const auto& row : cases)
    {
        const ApTestWords words = Zu::apReadTestWords(row._words);
        const std::string shown = testing::PrintToString(row._words);
        EXPECT_EQ(words._showsHelp, row._expected._showsHelp) << shown;
        EXPECT_EQ(words._lists, row._expected._lists) << shown;
        EXPECT_EQ(words._runsAll, row._expected._runsAll) << shown;
        EXPECT_EQ(words._junit, row._expected._junit) << shown;
        EXPECT_EQ(words._included, row._expected._included) << shown;
        EXPECT_EQ(words._excluded, row._expected._excluded) << shown;
        EXPECT_EQ(words._errors, row._expected._errors) << shown;
    }
}

const Texts NAMES = {"Lookup", "Insert", "TimeLookup", "TimeInsert", "-odd"};

TEST(ApTestWords, ChoosesTheGroupsThatAreMeant)
{
    const struct
    {
        Texts _words;
        Texts _chosen;
    } cases[] = {
        {{"--all"}, NAMES},
        {{"--list"}, NAMES},
        {{"Insert"}, {"Insert"}},
        {{"TimeInsert", "Lookup", "Lookup"}, {"Lookup", "TimeInsert"}},
        {{"Time*"}, {"TimeLookup", "TimeInsert"}},
        {{"?nsert", "*Lookup"}, {"Lookup", "Insert", "TimeLookup"}},
        {{"-Time*"}, {"Lookup", "Insert", "-odd"}},
        {{"*Lookup", "-Time*"}, {"Lookup"}},
        {{"--all", "--exclude=*Insert", "-Lookup"}, {"TimeLookup", "-odd"}},
        {{"--all", "Lookup"}, NAMES},
        {{"--list", "Time*"}, {"TimeLookup", "TimeInsert"}},
        {{"--list", "-Time*"}, {"Lookup", "Insert", "-odd"}},
        {{"--list", "-*"}, {}},
        {{"--", "-odd"}, {"-odd"}},
        {{"--all", "--exclude=-odd"}, {"Lookup", "Insert", "TimeLookup", "TimeInsert"}},
        {{"--all", "--", "-odd"}, NAMES},
    };
    for (const auto& row : cases)
    {
        const ApTestChoice choice = Zu::apChooseTests(Zu::apReadTestWords(row._words), NAMES);
        Texts chosen;
        for (const std::size_t index : choice._groups) chosen.push_back(NAMES[index]);
        EXPECT_EQ(chosen, row._chosen) << testing::PrintToString(row._words);
        EXPECT_EQ(choice._errors, Texts()) << testing::PrintToString(row._words);
    }
}

TEST(ApTestWords, RefusesWhatNoGroupHas)
{
    const struct
    {
        Texts _words;
        Texts _errors;
    } cases[] = {
        {{"Lokup"}, {"there is no group 'Lokup'; did you mean 'Lookup'?"}},
        {{"lookup"}, {"there is no group 'lookup'; did you mean 'Lookup'?"}},
        {{"Deletion"}, {"there is no group 'Deletion'"}},
        {{"TimeLokup*"}, {"no group matches 'TimeLokup*'; did you mean 'TimeLookup'?"}},
        {{"--all", "-Tine*"}, {"no group matches 'Tine*'"}},
        {{"Lookup", "--exclude=Insrt"}, {"there is no group 'Insrt'; did you mean 'Insert'?"}},
        {{"x", "y"}, {"there is no group 'x'", "there is no group 'y'"}},
        {{"--list", "x"}, {"there is no group 'x'"}},
        {{""}, {"there is no group ''"}},
        {{"Lookup", "-Look*"}, {"no group is left to run"}},
        {{"-*"}, {"no group is left to run"}},
        {{"--al"}, {}},
        {{"--junit=a.xml"}, {"nothing is named to run: name groups, or give '--all'"}},
        {{"--"}, {"nothing is named to run: name groups, or give '--all'"}},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Zu::apChooseTests(Zu::apReadTestWords(row._words), NAMES)._errors, row._errors)
            << testing::PrintToString(row._words);
}

TEST(ApTestWords, AProgramWithoutGroupsHasNothingToRun)
{
    EXPECT_EQ(Zu::apChooseTests(Zu::apReadTestWords({"--all"}), {})._errors,
              Texts{"there are no groups"});
    const ApTestChoice list = Zu::apChooseTests(Zu::apReadTestWords({"--list"}), {});
    EXPECT_TRUE(list._errors.empty());
    EXPECT_TRUE(list._groups.empty());
}

TEST(ApTestWords, TheUsageFitsAndNamesEveryOption)
{
    const std::string usage = Zu::apTestUsage("shopTest");
    EXPECT_EQ(usage.rfind("usage: shopTest [option]... [GROUP]...\n", 0), 0U);
    for (const char* const option : {"  --all ", "  -GROUP ", "  --exclude=GROUP ",
                                     "  --junit=FILE ", "  --list ", "  -h, --help ", "  -- "})
        EXPECT_NE(usage.find(option), std::string::npos) << option;
}

} // namespace
