#include "app/apCheckRecord.h"

#include "support/groupTest.h"
#include "support/variableGuard.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;
using Zu::ApCheckRecord;

// Collects what is reported.
class ApCheckRecordTest : public testing::Test
{
protected:
    ApCheckRecordTest()
    {
        _variable.set("");
    }

    const support::VariableGuard _variable{"ZU_RUN_TEST_MSGS"};
    const support::CollectingManager _manager;
};

TEST_F(ApCheckRecordTest, CountsWhatAGroupChecks)
{
    ApCheckRecord record;
    record.begin("Lookup");
    EXPECT_TRUE(record.count());
    EXPECT_TRUE(record.count());
    record.fail("a.cpp:1: x");
    const ApCheckRecord::Result result = record.end();
    EXPECT_EQ(result._checks, 2U);
    EXPECT_EQ(result._failed, 1U);
    EXPECT_EQ(result._failures, Texts{"a.cpp:1: x"});
    EXPECT_EQ(_manager._texts, Texts{"Check failed: Lookup: a.cpp:1: x"});
}

TEST_F(ApCheckRecordTest, EachGroupBeginsWithNothing)
{
    ApCheckRecord record;
    record.begin("Lookup");
    record.count();
    record.fail("x");
    record.end();
    record.begin("Insert");
    record.count();
    const ApCheckRecord::Result result = record.end();
    EXPECT_EQ(result._checks, 1U);
    EXPECT_EQ(result._failed, 0U);
    EXPECT_TRUE(result._failures.empty());
}

TEST_F(ApCheckRecordTest, WithoutAGroupThereIsNothingToCount)
{
    ApCheckRecord record;
    EXPECT_FALSE(record.count());
    record.begin("Lookup");
    record.end();
    EXPECT_FALSE(record.count());
    EXPECT_EQ(record.takeOutside()._failed, 0U);
}

TEST_F(ApCheckRecordTest, ChecksOutsideAreKeptUntilTheyAreTaken)
{
    static int calls = 0;
    calls = 0;
    ApCheckRecord record([] { ++calls; });
    EXPECT_FALSE(record.hasOutside());
    record.addOutside("a.cpp:1: x");
    record.addOutside("a.cpp:2: y");
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(record.hasOutside());
    record.begin("Lookup");
    EXPECT_EQ(record.end()._failed, 0U);
    const ApCheckRecord::Result result = record.takeOutside();
    EXPECT_EQ(result._checks, 2U);
    EXPECT_EQ(result._failed, 2U);
    EXPECT_EQ(result._failures, (Texts{"a.cpp:1: x", "a.cpp:2: y"}));
    EXPECT_FALSE(record.hasOutside());
    record.addOutside("a.cpp:3: z");
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(_manager._texts[0], "Check outside of a group: a.cpp:1: x");
}

TEST_F(ApCheckRecordTest, KeepsTheTextsOfSomeFailuresAndTheNumberOfAll)
{
    ApCheckRecord record;
    record.begin("Lookup");
    const std::size_t number = ApCheckRecord::MOST_TEXTS + 5;
    for (std::size_t i = 0; i < number; ++i) record.fail(std::to_string(i));
    const ApCheckRecord::Result result = record.end();
    EXPECT_EQ(result._failed, number);
    ASSERT_EQ(result._failures.size(), ApCheckRecord::MOST_TEXTS);
    EXPECT_EQ(result._failures.front(), "0");
    EXPECT_EQ(_manager._texts.size(), number) << "all are reported";
}

TEST_F(ApCheckRecordTest, ThreadsCountExactly)
{
    constexpr int THREADS = 4;
    constexpr int CHECKS = 10000;
    ApCheckRecord record;
    record.begin("Lookup");
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i)
        threads.emplace_back(
            [&]
            {
                for (int check = 0; check < CHECKS; ++check) record.count();
                for (int check = 0; check < 5; ++check) record.fail("x");
            });
    for (std::thread& thread : threads) thread.join();
    const ApCheckRecord::Result result = record.end();
    EXPECT_EQ(result._checks, static_cast<unsigned>(THREADS * CHECKS));
    EXPECT_EQ(result._failed, static_cast<unsigned>(THREADS * 5));
    EXPECT_EQ(_manager._texts.size(), static_cast<std::size_t>(THREADS * 5));
}

TEST_F(ApCheckRecordTest, TheProcessHasOne)
{
    EXPECT_EQ(&ApCheckRecord::ofProcess(), &ApCheckRecord::ofProcess());
    EXPECT_FALSE(ApCheckRecord::ofProcess().hasOutside());
}

} // namespace
