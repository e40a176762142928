#include "base/testGroup.h"

#include "base/exInternalError.h"
#include "base/trace.h"
#include "base/traceManager.h"

#include "support/childProcess.h"
#include "support/groupTest.h"
#include "support/traceTest.h"
#include "support/vtableSlot.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::CollectingManager;
using support::coutOf;
using support::PlainGroup;
using Zu::TestGroup;
using Zu::Trace;

static_assert(std::is_abstract_v<TestGroup>);
static_assert(std::has_virtual_destructor_v<TestGroup>);
static_assert(std::is_copy_constructible_v<PlainGroup>);
static_assert(std::is_copy_assignable_v<PlainGroup>);

// The texts that the list of the groups consists of.
std::vector<std::string> instances()
{
    const CollectingManager manager;
    TestGroup::printInstances();
    return manager._texts;
}

// Whether the list has this row.
bool isListed(const std::string& row)
{
    const std::vector<std::string> rows = instances();
    return std::find(rows.begin(), rows.end(), row) != rows.end();
}

// How often the list has this row.
std::ptrdiff_t countOf(const std::string& row)
{
    const std::vector<std::string> rows = instances();
    return std::count(rows.begin(), rows.end(), row);
}

class TestGroupTest : public support::TracingTest
{
};

TEST_F(TestGroupTest, AGroupHasDefaults)
{
    static PlainGroup group("TestGroupTest.defaults");
    EXPECT_STREQ(group.getName(), "TestGroupTest.defaults");
    EXPECT_TRUE(group.getPrintHeaders());
    EXPECT_FALSE(group.getGroupNameInArgs());

    static const PlainGroup unnamed;
    EXPECT_EQ(unnamed.getName(), nullptr);
    EXPECT_TRUE(unnamed.getPrintHeaders());
    EXPECT_FALSE(unnamed.getGroupNameInArgs());
}

TEST_F(TestGroupTest, SettersSetTheirSwitch)
{
    static PlainGroup group;
    group.setPrintHeaders(false);
    EXPECT_FALSE(group.getPrintHeaders());
    EXPECT_FALSE(group.getGroupNameInArgs());
    group.setGroupNameInArgs(true);
    EXPECT_FALSE(group.getPrintHeaders());
    EXPECT_TRUE(group.getGroupNameInArgs());
    group.setPrintHeaders(true);
    EXPECT_TRUE(group.getPrintHeaders());
    EXPECT_TRUE(group.getGroupNameInArgs());
    group.setGroupNameInArgs(false);
    EXPECT_TRUE(group.getPrintHeaders());
    EXPECT_FALSE(group.getGroupNameInArgs());
}

TEST_F(TestGroupTest, WhatAGroupDoesNotSayDoesNothing)
{
    static PlainGroup group;
    TestGroup& base = group;
    std::ostringstream stream;
    char* words[] = {nullptr};
    EXPECT_EQ(coutOf(
                  [&]
                  {
                      base.prepare(0, words);
                      base.terminate();
                      base.dump(stream);
                  }),
              "");
    EXPECT_EQ(stream.str(), "");
}

TEST_F(TestGroupTest, AGroupIsFoundByItsName)
{
    static PlainGroup group("TestGroupTest.found");
    static PlainGroup other("TestGroupTest.found2");
    static PlainGroup empty("");
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.found"), &group);
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.found2"), &other);
    EXPECT_EQ(TestGroup::getInstance(""), &empty);
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.foun"), nullptr);
    EXPECT_EQ(TestGroup::getInstance("testGroupTest.found"), nullptr);
    EXPECT_EQ(TestGroup::getInstance(nullptr), nullptr);
}

TEST_F(TestGroupTest, AllGroupsAreVisitedInTheOrderOfTheirRegistration)
{
    static PlainGroup first("TestGroupTest.visited");
    static PlainGroup unnamed;
    static PlainGroup last("TestGroupTest.visited2");
    std::vector<TestGroup*> visited;
    TestGroup::visitAll([&](TestGroup& group) { visited.push_back(&group); });
    ASSERT_GE(visited.size(), 3U);
    EXPECT_EQ(std::vector<TestGroup*>(visited.end() - 3, visited.end()),
              (std::vector<TestGroup*>{&first, &unnamed, &last}));
}

TEST_F(TestGroupTest, TheTextsAreCopied)
{
    std::string name = "TestGroupTest.copied";
    std::string usage = "usage";
    std::string description = "description";
    static PlainGroup group;
    group.setName(name.c_str());
    group.setUsage(usage.c_str());
    group.setDescription(description.c_str());
    for (std::string* const text : {&name, &usage, &description}) text->assign(text->size(), 'x');
    EXPECT_STREQ(group.getName(), "TestGroupTest.copied");
    EXPECT_TRUE(isListed("TestGroupTest.copied usage\ndescription\n"));
}

TEST_F(TestGroupTest, ANullTextTakesTheFormerOneAway)
{
    static PlainGroup group;
    group.setName("TestGroupTest.taken");
    group.setUsage("usage that is taken");
    group.setDescription("description that is taken");
    EXPECT_TRUE(isListed("TestGroupTest.taken usage that is taken\ndescription that is taken\n"));
    group.setName(nullptr);
    EXPECT_EQ(group.getName(), nullptr);
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.taken"), nullptr);
    EXPECT_TRUE(isListed("<untitled> usage that is taken\ndescription that is taken\n"));
    group.setUsage(nullptr);
    EXPECT_TRUE(isListed("<untitled> \ndescription that is taken\n"));
    group.setUsage("usage that comes back");
    group.setDescription(nullptr);
    EXPECT_TRUE(isListed("<untitled> usage that comes back\n"));
}

TEST_F(TestGroupTest, ARenamedGroupIsFoundByItsNewNameOnly)
{
    static PlainGroup group;
    static PlainGroup successor;
    successor.setName(nullptr);
    group.setName("TestGroupTest.a");
    group.setName("TestGroupTest.b");
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.a"), nullptr);
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.b"), &group);
    successor.setName("TestGroupTest.a");
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.a"), &successor);
}

TEST_F(TestGroupTest, AGroupMayGetItsOwnNameAgain)
{
    static PlainGroup group("TestGroupTest.again");
    group.setName("TestGroupTest.again");
    EXPECT_STREQ(group.getName(), "TestGroupTest.again");
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.again"), &group);
}

TEST_F(TestGroupTest, ASecondGroupOfANameIsRefused)
{
    static PlainGroup group("TestGroupTest.x%s");
    const std::size_t before = instances().size();
    std::string expected;
    const std::string out = coutOf(
        [&]
        {
            try
            {
                const PlainGroup second("TestGroupTest.x%s");
                ADD_FAILURE() << "nothing raised";
            }
            catch (const Zu::ExInternalError& exception)
            {
                EXPECT_STREQ(exception.getReason(),
                             "Duplicate test group : \"TestGroupTest.x%s\".");
                EXPECT_TRUE(std::string(exception.getFileName()).ends_with("testGroup.cpp"));
                expected = "| " + support::reportOf(exception, "Zu::ExInternalError") + "\n";
            }
        });
    EXPECT_EQ(out, expected);
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.x%s"), &group);
    EXPECT_EQ(instances().size(), before);
    EXPECT_EQ(countOf("TestGroupTest.x%s \n"), 1);
}

TEST_F(TestGroupTest, ARefusedNameLeavesAGroupWithoutOne)
{
    static PlainGroup group("TestGroupTest.first");
    static PlainGroup renamed;
    renamed.setName("TestGroupTest.second");
    EXPECT_NE(
        coutOf([] { EXPECT_THROW(renamed.setName("TestGroupTest.first"), std::runtime_error); }),
        "");
    EXPECT_EQ(renamed.getName(), nullptr);
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.second"), nullptr);
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.first"), &group);
}

TEST_F(TestGroupTest, ANameOfAnyLengthIsKeptAndRefusedAgain)
{
    const std::string name(5000, 'n');
    static PlainGroup group(name.c_str());
    EXPECT_EQ(group.getName(), name);
    EXPECT_EQ(TestGroup::getInstance(name.c_str()), &group);
    std::string reason;
    coutOf(
        [&]
        {
            try
            {
                const PlainGroup second(name.c_str());
            }
            catch (const Zu::ExInternalError& exception)
            {
                reason = exception.getReason();
            }
        });
    const std::string whole = "Duplicate test group : \"" + name + "\".";
    EXPECT_GE(reason.size(), 100U);
    EXPECT_EQ(reason, whole.substr(0, reason.size()));
}

TEST_F(TestGroupTest, GroupsWithoutANameAreNoDuplicates)
{
    static PlainGroup one;
    static PlainGroup two;
    one.setUsage("of a nameless group");
    two.setUsage("of a nameless group");
    EXPECT_EQ(countOf("<untitled> of a nameless group\n"), 2);
    EXPECT_EQ(TestGroup::getInstance("<untitled>"), nullptr);
}

TEST_F(TestGroupTest, ACopySharesTheTextsAndIsNotRegistered)
{
    static PlainGroup group("TestGroupTest.original");
    group.setUsage("usage");
    group.setPrintHeaders(false);
    group.setGroupNameInArgs(true);
    const std::size_t before = instances().size();
    {
        const PlainGroup copy(group);
        EXPECT_STREQ(copy.getName(), "TestGroupTest.original");
        EXPECT_EQ(copy.getName(), group.getName());
        EXPECT_FALSE(copy.getPrintHeaders());
        EXPECT_TRUE(copy.getGroupNameInArgs());
        EXPECT_EQ(TestGroup::getInstance("TestGroupTest.original"), &group);
        EXPECT_EQ(instances().size(), before);
    }
    EXPECT_EQ(countOf("TestGroupTest.original usage\n"), 1);
}

TEST_F(TestGroupTest, AnAssignedGroupSharesTheTextsToo)
{
    static PlainGroup group("TestGroupTest.assignedFrom");
    group.setPrintHeaders(false);
    static PlainGroup assigned;
    assigned = group;
    EXPECT_EQ(assigned.getName(), group.getName());
    EXPECT_FALSE(assigned.getPrintHeaders());
    EXPECT_EQ(TestGroup::getInstance("TestGroupTest.assignedFrom"), &group);
}

TEST_F(TestGroupTest, TheListHasATitleTheGroupsAndTheLevels)
{
    static PlainGroup first;
    static PlainGroup second;
    first.setUsage("first of the list");
    second.setUsage("second of the list");
    second.setDescription("with a description");
    std::ostringstream levels;
    Trace::printLevels(levels);

    const std::vector<std::string> texts = instances();
    ASSERT_GE(texts.size(), 4U);
    EXPECT_EQ(texts.front(), "\nRegistered test groups:\n");
    EXPECT_EQ(texts.back(), levels.str());
    const auto one = std::find(texts.begin(), texts.end(), "<untitled> first of the list\n");
    const auto two = std::find(texts.begin(), texts.end(),
                               "<untitled> second of the list\nwith a description\n");
    ASSERT_NE(two, texts.end());
    EXPECT_LT(one, two);
}

TEST_F(TestGroupTest, TheListIsPrintedWhileTracingIsOff)
{
    static PlainGroup group("TestGroupTest.listed");
    set("off");
    EXPECT_NE(coutOf([] { TestGroup::printInstances(); }).find("\nTestGroupTest.listed \n\n"),
              std::string::npos);
}

TEST_F(TestGroupTest, HeadersAndRemarksAreThreeLines)
{
    const struct
    {
        const char* _options;
        const char* _header;
        const char* _remark;
    } cases[] = {
        {"", "| \n| ***** a%s *****\n| \n", "| \n| [ a%s ] \n| \n"},
        // A line without text does not count.
        {"noindent", "***** a%s *****\n", "[ a%s ] \n"},
        {"hide=Main", "", ""},
        {"hide=all", "", ""},
        {"off", "", ""},
    };
    for (const auto& row : cases)
    {
        set("reset");
        set(row._options);
        EXPECT_EQ(coutOf([] { TestGroup::caseHeader("a%s"); }), row._header) << row._options;
        EXPECT_EQ(coutOf([] { TestGroup::log("a%s"); }), row._remark) << row._options;
    }
}

TEST_F(TestGroupTest, HeadersAndRemarksMayBeEmptyOrOfAnyLength)
{
    EXPECT_EQ(coutOf([] { TestGroup::caseHeader(""); }), "| \n| *****  *****\n| \n");
    EXPECT_EQ(coutOf([] { TestGroup::log(""); }), "| \n| [  ] \n| \n");
    EXPECT_EQ(coutOf([] { TestGroup::log(nullptr); }), "| \n| [  ] \n| \n");
    const std::string text(100000, 't');
    EXPECT_EQ(coutOf([&] { TestGroup::caseHeader(text.c_str()); }),
              "| \n| ***** " + text + " *****\n| \n");
    EXPECT_EQ(coutOf([&] { TestGroup::log(text.c_str()); }), "| \n| [ " + text + " ] \n| \n");
}

TEST_F(TestGroupTest, TheLinesAreIndentedWithTheScopeThatTheyStandIn)
{
    Trace& trace = Zu::TraceManager::getInstance().getTrace();
    const std::string out = coutOf(
        [&]
        {
            const Trace::Entry entry(trace, *Trace::MainTraceLevel, "scope", "file.cpp", 5);
            TestGroup::caseHeader("text");
            TestGroup::log("text");
        });
    EXPECT_EQ(out, "+ scope\n"
                   "  | \n"
                   "  | ***** text *****\n"
                   "  | \n"
                   "  | \n"
                   "  | [ text ] \n"
                   "  | \n"
                   "  /\n");
}

TEST_F(TestGroupTest, EachLineAsksForTheLevelAnew)
{
    CollectingManager manager;
    manager._afterwards = "hide=Main";
    TestGroup::caseHeader("text");
    EXPECT_EQ(manager._texts, std::vector<std::string>{"| "});
    manager._texts.clear();
    set("show=Main");
    TestGroup::log("text");
    EXPECT_EQ(manager._texts, std::vector<std::string>{"| "});
}

TEST_F(TestGroupTest, EachLineIsPrintedOnItsOwn)
{
    const CollectingManager manager;
    TestGroup::caseHeader("text");
    TestGroup::log("text");
    const std::vector<std::string> expected = {"| ", "| ***** text *****", "| ",
                                               "| ", "| [ text ] ",        "| "};
    EXPECT_EQ(manager._texts, expected);
}

TEST(TestGroup, TwoStaticGroupsOfANameEndTheProgramBeforeMain)
{
    const support::ProgramResult result =
        support::runProgram("duplicateGroupsProgram", {"twin"}, support::groupEnvironment({}));
    EXPECT_TRUE(result.aborted);
    EXPECT_EQ(support::withoutPlaces(result.out, "testGroup"),
              "without groups: as it should be\n"
              "with a group: as it should be\n"
              "| Throwing exception [Exception Type = Zu::ExInternalError, <place>]\n"
              "Duplicate test group : \"twin\".\n");
}

TEST(TestGroup, AGroupReportsInTheMiddleOfARun)
{
    EXPECT_EQ(support::outputOfGroups({"commands", "header", "one", "log", "two", "options",
                                       "hide=Main", "header", "three", "log", "four"}),
              "| \n"
              "| ***** one *****\n"
              "| \n"
              "| \n"
              "| [ two ] \n"
              "| \n");
}

TEST(TestGroup, VirtualOperationsKeepTheirSlots)
{
    EXPECT_EQ(support::slotOf(&Zu::TestGroup::prepare), 2);
    EXPECT_EQ(support::slotOf(&Zu::TestGroup::run), 3);
    EXPECT_EQ(support::slotOf(&Zu::TestGroup::terminate), 4);
    EXPECT_EQ(support::slotOf(&Zu::TestGroup::dump), 5);
}

} // namespace
