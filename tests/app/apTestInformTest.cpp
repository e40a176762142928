#include "app/apTestInform.h"

#include "base/exInternalError.h"

#include "support/fileTest.h"
#include "support/groupTest.h"
#include "support/platform.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

using support::TempDir;
using support::VariableGuard;

std::string contentOf(const std::string& file)
{
    std::string text = support::readFile(file);
    if (support::onWindows) std::erase(text, '\r');
    return text;
}

TEST(ApTestInform, PrintsThroughTheTraceManager)
{
    const VariableGuard variable("ZU_RUN_TEST_MSGS");
    variable.set("");
    const support::CollectingManager manager;
    Zu::apTestInform("first\nsecond");
    EXPECT_EQ(manager._texts, std::vector<std::string>{"first\nsecond"});
}

TEST(ApTestInform, AFileHasAllMessagesOfTheProcess)
{
    const VariableGuard variable("ZU_RUN_TEST_MSGS");
    const TempDir directory;
    const std::string file = directory.file("messages");
    support::writeFile(file, "of an earlier process\n");
    variable.set(file);
    const support::CollectingManager manager;
    Zu::apTestInform("first");
    EXPECT_EQ(contentOf(file), "first\n");
    Zu::apTestInform("second");
    EXPECT_EQ(contentOf(file), "first\nsecond\n");
    EXPECT_TRUE(manager._texts.empty());
}

TEST(ApTestInform, AMessageThatTheFileCannotTakeIsNotLost)
{
    const VariableGuard variable("ZU_RUN_TEST_MSGS");
    const TempDir directory;
    variable.set(directory.file("missing/messages"));
    testing::internal::CaptureStderr();
    Zu::apTestInform("first");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "first\n");
}

TEST(ApTestInform, MessagesOfThreadsDoNotMix)
{
    const VariableGuard variable("ZU_RUN_TEST_MSGS");
    const TempDir directory;
    const std::string file = directory.file("messages");
    variable.set(file);
    std::vector<std::thread> threads;
    for (char letter = 'a'; letter < 'e'; ++letter)
        threads.emplace_back(
            [letter]
            {
                for (int i = 0; i < 50; ++i) Zu::apTestInform(std::string(200, letter));
            });
    for (std::thread& thread : threads) thread.join();
    std::vector<std::string> expected;
    for (char letter = 'a'; letter < 'e'; ++letter)
        expected.insert(expected.end(), 50, std::string(200, letter));
    std::vector<std::string> lines = support::linesOf(contentOf(file));
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(lines, expected);
}

template <class Exception> std::string textOf(const Exception& exception)
{
    try
    {
        throw exception;
    }
    catch (...)
    {
        return Zu::apExceptionText();
    }
}

TEST(ApTestInform, ExceptionsAreTexts)
{
    EXPECT_EQ(textOf(Zu::ExInternalError("a.cpp", 7, "why 100%s")),
              "[Exception Type = Zu::ExInternalError, File = a.cpp, Line=7]\nwhy 100%s");
    EXPECT_EQ(textOf(std::out_of_range("too far")),
              "[Exception Type = std::out_of_range]\ntoo far");
    EXPECT_EQ(textOf(7), "Unknown exception.");
}

} // namespace
