#include "base/testHandlers.h"

#include "base/compiler.h"
#include "base/exBadException.h"

#include "support/groupTest.h"
#include "support/traceTest.h"
#include "support/variableGuard.h"

#include <exception>
#include <gtest/gtest.h>
#include <iostream>
#include <string>

// For standard libraries without such a handler. In the global namespace, as in the source.
namespace withoutHandlers
{

struct Handler
{
    template <class Function> Handler(Function*) {}
};

[[maybe_unused]] static std::terminate_handler set_unexpected(Handler)
{
    return nullptr;
}

} // namespace withoutHandlers

namespace
{

namespace TestHandlers = Zu::TestHandlers;

void doNothing() {}

// Null where the standard library has no such handler.
ZU_IGNORE_DEPRECATED
std::terminate_handler exchangeUnexpected(std::terminate_handler handler)
{
    using namespace std;
    using namespace withoutHandlers;
    return set_unexpected(handler);
}
ZU_END_IGNORE

class TestHandlersTest : public support::TracingTest
{
protected:
    // What the handler for unexpected exceptions prints; it raises each time.
    static std::string outputOfUnexpected()
    {
        return support::withoutPlaces(
            support::coutOf([] { EXPECT_THROW(TestHandlers::onUnexpected(), Zu::ExBadException); }),
            "testHandlers");
    }
};

TEST_F(TestHandlersTest, WhatIsUnexpectedBecomesABadException)
{
    EXPECT_EQ(outputOfUnexpected(),
              "+ unexpectedHandler()\n"
              "  | Bad exception encountered.\n"
              "  | Throwing exception [Exception Type = Zu::ExBadException, <place>]\n"
              "Invalid exception thrown.\n"
              "  /\n");
    // The indentation is as before.
    EXPECT_TRUE(outputOfUnexpected().starts_with("+ unexpectedHandler()\n  | Bad"));
}

TEST_F(TestHandlersTest, WhatIsUnexpectedIsTracedAsTheOptionsSay)
{
    set("hide=Main");
    EXPECT_EQ(outputOfUnexpected(),
              "| Throwing exception [Exception Type = Zu::ExBadException, <place>]\n"
              "Invalid exception thrown.\n");
    set("reset,hide=Exceptions");
    EXPECT_EQ(outputOfUnexpected(), "+ unexpectedHandler()\n"
                                    "  | Bad exception encountered.\n"
                                    "  /\n");
    set("off");
    EXPECT_EQ(outputOfUnexpected(), "");
}

TEST_F(TestHandlersTest, TheBadExceptionIsAStandardOneAndSaysWhereItWasRaised)
{
    support::coutOf(
        []
        {
            try
            {
                TestHandlers::onUnexpected();
            }
            catch (const std::bad_exception& exception)
            {
                EXPECT_STREQ(exception.what(), "Invalid exception thrown.");
                const auto* const base = dynamic_cast<const Zu::ExBase*>(&exception);
                ASSERT_TRUE(base);
                EXPECT_TRUE(std::string(base->getFileName()).ends_with("testHandlers.cpp"));
                EXPECT_GT(base->getLineNo(), 0);
            }
        });
}

TEST_F(TestHandlersTest, InstallMakesThemTheHandlersOfTheProcess)
{
    const std::terminate_handler former = std::get_terminate();
    TestHandlers::install();
    const std::terminate_handler installed = std::set_terminate(former);
    EXPECT_TRUE(installed == &TestHandlers::onTerminate);
}

TEST_F(TestHandlersTest, InstallMakesOneTheHandlerOfWhatIsUnexpected)
{
    if (!exchangeUnexpected(&TestHandlers::onUnexpected))
        GTEST_SKIP() << "This standard library has no handler of unexpected exceptions";
    const auto former = exchangeUnexpected(&doNothing);
    TestHandlers::install();
    EXPECT_TRUE(exchangeUnexpected(former) == &TestHandlers::onUnexpected);
}

class TestHandlersDeathTest : public TestHandlersTest
{
protected:
    TestHandlersDeathTest() : _variable("ZU_RUN_TEST_MSGS")
    {
        _variable.set("");
    }

    // The dying process is heard on standard error alone.
    [[noreturn]] static void terminateAloud()
    {
        std::cout.rdbuf(std::cerr.rdbuf());
        TestHandlers::onTerminate();
    }

    support::VariableGuard _variable;
};

TEST_F(TestHandlersDeathTest, TerminationIsToldAndEndsTheProcess)
{
    EXPECT_DEATH(terminateAloud(), "\\+ terminateHandler\\(\\)");
    EXPECT_DEATH(terminateAloud(), "Abnormal termination: Terminate handler called\\.");
}

TEST_F(TestHandlersDeathTest, TerminationIsToldWhileTracingIsOff)
{
    set("off");
    EXPECT_DEATH(terminateAloud(), "Abnormal termination: Terminate handler called\\.");
}

TEST_F(TestHandlersDeathTest, AnInstalledHandlerIsCalledWhenTheRuntimeGivesUp)
{
    EXPECT_DEATH(
        {
            std::cout.rdbuf(std::cerr.rdbuf());
            TestHandlers::install();
            std::terminate();
        },
        "Abnormal termination: Terminate handler called\\.");
}

} // namespace
