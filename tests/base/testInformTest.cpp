#include "base/testInform.h"

#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/groupTest.h"
#include "support/platform.h"
#include "support/tempDir.h"
#include "support/traceTest.h"
#include "support/variableGuard.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::coutOf;
using support::TempDir;
using Zu::TestInform;

static_assert(!std::is_default_constructible_v<TestInform>);

struct Kind
{
    void (*_operation)(const char* text);
    std::string _prefix;
};

const Kind KINDS[] = {
    {TestInform::testNotPerformed, "Test not performed: "},
    {TestInform::exceptionEncountered, "Exception encountered: "},
    {TestInform::abnormalTermination, "Abnormal termination: "},
};

// The lines of a file of messages, which has the platform's line endings.
std::string messagesIn(const std::string& file)
{
    std::string text = support::readFile(file);
    if (support::onWindows) std::erase(text, '\r');
    return text;
}

class TestInformTest : public support::TracingTest
{
protected:
    TestInformTest() : _variable("ZU_RUN_TEST_MSGS")
    {
        _variable.set("");
    }

    support::VariableGuard _variable;
};

TEST_F(TestInformTest, AMessageIsThePrefixAndTheText)
{
    for (const Kind& kind : KINDS)
        for (const std::string& text :
             {std::string("text"), std::string("100%s %n"), std::string("two\nlines\n"),
              std::string(" "), std::string(), std::string(100000, 't')})
            EXPECT_EQ(coutOf([&] { kind._operation(text.c_str()); }), kind._prefix + text + "\n");
}

TEST_F(TestInformTest, NoTextIsAnEmptyOne)
{
    const TempDir dir;
    for (const Kind& kind : KINDS)
    {
        _variable.set("");
        EXPECT_EQ(coutOf([&] { kind._operation(nullptr); }), kind._prefix + "\n");
        _variable.set(dir.file("messages"));
        EXPECT_EQ(coutOf([&] { kind._operation(nullptr); }), "");
        EXPECT_EQ(messagesIn(dir.file("messages")), kind._prefix + "\n");
    }
}

TEST_F(TestInformTest, AMessageIsPrintedWhileTracingIsOff)
{
    set("off");
    for (const Kind& kind : KINDS)
        EXPECT_EQ(coutOf([&] { kind._operation("text"); }), kind._prefix + "text\n");
}

TEST_F(TestInformTest, AMessageGoesToTheCurrentManager)
{
    const support::CollectingManager manager;
    for (const Kind& kind : KINDS)
    {
        manager._texts.clear();
        EXPECT_EQ(coutOf([&] { kind._operation("text"); }), "");
        EXPECT_EQ(manager._texts, std::vector<std::string>{kind._prefix + "text"});
    }
}

TEST_F(TestInformTest, AFileGetsTheMessageInsteadOfTheManager)
{
    for (const Kind& kind : KINDS)
        for (const std::string& text : {std::string("text"), std::string("100%s %n"),
                                        std::string("two\nlines\n"), std::string(100000, 't')})
        {
            const TempDir dir;
            _variable.set(dir.file("messages"));
            EXPECT_EQ(coutOf([&] { kind._operation(text.c_str()); }), "");
            EXPECT_EQ(messagesIn(dir.file("messages")), kind._prefix + text + "\n");
        }
}

TEST_F(TestInformTest, AFileHoldsTheLastMessageAlone)
{
    const TempDir dir;
    support::writeFile(dir.file("messages"), std::string(1000, 'x'));
    _variable.set(dir.file("messages"));
    TestInform::exceptionEncountered("a rather long message");
    EXPECT_EQ(messagesIn(dir.file("messages")), "Exception encountered: a rather long message\n");
    TestInform::testNotPerformed("short");
    EXPECT_EQ(messagesIn(dir.file("messages")), "Test not performed: short\n");
}

TEST_F(TestInformTest, TheFileIsClosedBehindEachMessage)
{
    const TempDir dir;
    _variable.set(dir.file("first"));
    TestInform::testNotPerformed("one");
    std::filesystem::rename(dir.file("first"), dir.file("moved"));
    _variable.set(dir.file("second"));
    TestInform::testNotPerformed("two");
    EXPECT_EQ(messagesIn(dir.file("moved")), "Test not performed: one\n");
    EXPECT_EQ(messagesIn(dir.file("second")), "Test not performed: two\n");
    EXPECT_FALSE(std::filesystem::exists(dir.file("first")));
}

TEST_F(TestInformTest, AFileThatCannotBeOpenedLosesTheMessage)
{
    const TempDir dir;
    for (const std::string& file : {dir.path(), dir.file("missing") + "/messages"})
    {
        _variable.set(file);
        for (const Kind& kind : KINDS)
            EXPECT_EQ(coutOf([&] { kind._operation("text"); }), "") << file;
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
}

TEST(TestInform, AnEmptyVariableCountsAsNone)
{
    EXPECT_EQ(support::outputOfGroups(
                  {"commands", "notPerformed", "one", "exception", "two", "abnormal", "three"},
                  {{"ZU_RUN_TEST_MSGS", ""}}),
              "Test not performed: one\n"
              "Exception encountered: two\n"
              "Abnormal termination: three\n");
}

TEST(TestInform, TheVariableIsReadForEachMessage)
{
    const TempDir dir;
    EXPECT_EQ(
        support::outputOfGroups({"commands", "notPerformed", "one", "variable",
                                 "ZU_RUN_TEST_MSGS=" + dir.file("messages"), "exception", "two",
                                 "variable", "ZU_RUN_TEST_MSGS=", "abnormal", "three"}),
        "Test not performed: one\n"
        "Abnormal termination: three\n");
    EXPECT_EQ(messagesIn(dir.file("messages")), "Exception encountered: two\n");
}

} // namespace
