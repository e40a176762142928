// The checker itself, by cases from the literature whose results are known. Each one's set of
// outcomes is exact: all that the memory model allows, and nothing else.

#include "modelChecker.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace
{

using Outcomes = std::set<std::string>;
using std::memory_order;

constexpr memory_order relaxed = std::memory_order_relaxed;
constexpr memory_order acquire = std::memory_order_acquire;
constexpr memory_order release = std::memory_order_release;
constexpr memory_order sequential = std::memory_order_seq_cst;

std::string digits(std::initializer_list<int> values)
{
    std::string text;
    for (const int value : values) text += std::to_string(value);
    return text;
}

// Explores the scenario in three ways, which must agree: reduced as far as possible, with all loads
// put off, and without any reduction.
model::Result exploreInAllWays(const std::function<void()>& scenario)
{
    model::Options options;
    const model::Result reduced = model::explore(scenario, options);
    options._putsAllOff = true;
    const model::Result putOff = model::explore(scenario, options);
    options._everyTurn = true;
    const model::Result all = model::explore(scenario, options);
    EXPECT_EQ(reduced._violation.empty(), all._violation.empty()) << all._violation;
    EXPECT_EQ(reduced._violation.empty(), putOff._violation.empty());
    if (!all._violation.empty()) return reduced;
    EXPECT_TRUE(reduced._isComplete && putOff._isComplete && all._isComplete);
    EXPECT_EQ(reduced._outcomes, all._outcomes);
    // Each execution was run once.
    EXPECT_EQ(reduced._executions, putOff._executions);
    EXPECT_LE(reduced._executions, all._executions);
    return reduced;
}

Outcomes outcomesOf(const std::function<void()>& scenario)
{
    const model::Result result = exploreInAllWays(scenario);
    EXPECT_EQ(result._violation, "");
    return result._outcomes;
}

std::string violationOf(const std::function<void()>& scenario)
{
    const std::string text = exploreInAllWays(scenario)._violation;
    return text.substr(0, text.find('\n'));
}

// Two threads store to one object each and then load the other's.
std::function<void()> storeBuffering(memory_order storing, memory_order loading)
{
    return [=]
    {
        std::atomic<int> x{0}, y{0};
        int a = 9, b = 9;
        model::thread([&] { x.store(1, storing), a = y.load(loading); });
        model::thread([&] { y.store(1, storing), b = x.load(loading); });
        model::join();
        model::outcome(digits({a, b}));
    };
}

TEST(ModelChecker, StoreBufferingIsSeenUnlessAllIsSequential)
{
    const Outcomes all{"00", "01", "10", "11"};
    EXPECT_EQ(outcomesOf(storeBuffering(relaxed, relaxed)), all);
    EXPECT_EQ(outcomesOf(storeBuffering(release, acquire)), all);
    EXPECT_EQ(outcomesOf(storeBuffering(sequential, acquire)), all);
    EXPECT_EQ(outcomesOf(storeBuffering(release, sequential)), all);
    EXPECT_EQ(outcomesOf(storeBuffering(sequential, sequential)), Outcomes({"01", "10", "11"}));
}

// The same with something between store and load.
std::function<void()> storeBufferingWith(const std::function<void()>& first,
                                         const std::function<void()>& second)
{
    return [=]
    {
        std::atomic<int> x{0}, y{0};
        int a = 9, b = 9;
        model::thread([&] { x.store(1, relaxed), first(), a = y.load(relaxed); });
        model::thread([&] { y.store(1, relaxed), second(), b = x.load(relaxed); });
        model::join();
        model::outcome(digits({a, b}));
    };
}

TEST(ModelChecker, FencesForbidStoreBufferingOnlyInBothThreads)
{
    const auto none = [] {};
    const auto full = [] { std::atomic_thread_fence(sequential); };
    const auto half = [] { std::atomic_thread_fence(std::memory_order_acq_rel); };
    const Outcomes all{"00", "01", "10", "11"};
    const Outcomes ordered{"01", "10", "11"};
    EXPECT_EQ(outcomesOf(storeBufferingWith(full, full)), ordered);
    EXPECT_EQ(outcomesOf(storeBufferingWith(full, none)), all);
    EXPECT_EQ(outcomesOf(storeBufferingWith(half, half)), all);
}

TEST(ModelChecker, AHeavyBarrierOrdersLightFencesButTheyDoNotOrderEachOther)
{
    const auto none = [] {};
    const auto light = [] { std::atomic_signal_fence(sequential); };
    const auto heavy = [] { model::heavyBarrier(); };
    const auto full = [] { std::atomic_thread_fence(sequential); };
    const Outcomes all{"00", "01", "10", "11"};
    const Outcomes ordered{"01", "10", "11"};
    EXPECT_EQ(outcomesOf(storeBufferingWith(light, heavy)), ordered);
    EXPECT_EQ(outcomesOf(storeBufferingWith(heavy, heavy)), ordered);
    EXPECT_EQ(outcomesOf(storeBufferingWith(heavy, full)), ordered);
    EXPECT_EQ(outcomesOf(storeBufferingWith(light, light)), all);
    EXPECT_EQ(outcomesOf(storeBufferingWith(light, full)), all);
    EXPECT_EQ(outcomesOf(storeBufferingWith(none, heavy)), all);
}

// A value is written, then a flag; the reader looks at the flag, then at the value.
std::function<void()> messagePassing(memory_order storing, memory_order loading)
{
    return [=]
    {
        std::atomic<int> value{0}, flag{0};
        int a = 9, b = 9;
        model::thread([&] { value.store(1, relaxed), flag.store(1, storing); });
        model::thread([&] { a = flag.load(loading), b = value.load(relaxed); });
        model::join();
        model::outcome(digits({a, b}));
    };
}

TEST(ModelChecker, AMessageIsPassedByReleaseAndAcquireOnly)
{
    const Outcomes all{"00", "01", "10", "11"};
    EXPECT_EQ(outcomesOf(messagePassing(relaxed, relaxed)), all);
    EXPECT_EQ(outcomesOf(messagePassing(release, relaxed)), all);
    EXPECT_EQ(outcomesOf(messagePassing(relaxed, acquire)), all);
    EXPECT_EQ(outcomesOf(messagePassing(release, acquire)), Outcomes({"00", "01", "11"}));
}

TEST(ModelChecker, AMessageIsPassedByFences)
{
    const auto scenario = []
    {
        std::atomic<int> value{0}, flag{0};
        int a = 9, b = 9;
        model::thread(
            [&]
            {
                value.store(1, relaxed);
                std::atomic_thread_fence(release);
                flag.store(1, relaxed);
            });
        model::thread(
            [&]
            {
                a = flag.load(relaxed);
                std::atomic_thread_fence(acquire);
                b = value.load(relaxed);
            });
        model::join();
        model::outcome(digits({a, b}));
    };
    EXPECT_EQ(outcomesOf(scenario), Outcomes({"00", "01", "11"}));
}

std::function<void()> plainMessage(memory_order storing, memory_order loading)
{
    return [=]
    {
        int value = 0;
        std::atomic<bool> flag{false};
        model::thread([&] { value = 1, flag.store(true, storing); });
        model::thread([&] { model::require(!flag.load(loading) || value == 1, "no value"); });
        model::join();
    };
}

TEST(ModelChecker, APlainValueIsARaceUnlessItsFlagOrdersIt)
{
    EXPECT_EQ(violationOf(plainMessage(relaxed, relaxed)), "a data race");
    EXPECT_EQ(violationOf(plainMessage(release, relaxed)), "a data race");
    EXPECT_EQ(violationOf(plainMessage(relaxed, acquire)), "a data race");
    EXPECT_EQ(violationOf(plainMessage(release, acquire)), "");
}

// A value from the future of its own cause is not shown, by design: it would be "11".
TEST(ModelChecker, LoadBufferingIsLeftOut)
{
    const auto scenario = []
    {
        std::atomic<int> x{0}, y{0};
        int a = 9, b = 9;
        model::thread([&] { a = x.load(relaxed), y.store(1, relaxed); });
        model::thread([&] { b = y.load(relaxed), x.store(1, relaxed); });
        model::join();
        model::outcome(digits({a, b}));
    };
    EXPECT_EQ(outcomesOf(scenario), Outcomes({"00", "01", "10"}));
}

TEST(ModelChecker, ReadsOfOneObjectAreCoherent)
{
    const auto scenario = []
    {
        std::atomic<int> x{0};
        int a = 9, b = 9;
        model::thread([&] { x.store(1, relaxed), x.store(2, relaxed); });
        model::thread([&] { a = x.load(relaxed), b = x.load(relaxed); });
        model::join();
        model::outcome(digits({a, b}));
    };
    EXPECT_EQ(outcomesOf(scenario), Outcomes({"00", "01", "02", "11", "12", "22"}));
}

TEST(ModelChecker, TwoReadersAgreeOnTheOrderOfOneObject)
{
    const auto scenario = []
    {
        std::atomic<int> x{0};
        int a = 9, b = 9, c = 9, d = 9;
        model::thread([&] { x.store(1, relaxed); });
        model::thread([&] { x.store(2, relaxed); });
        model::thread([&] { a = x.load(relaxed), b = x.load(relaxed); });
        model::thread([&] { c = x.load(relaxed), d = x.load(relaxed); });
        model::join();
        model::require(!(a == 1 && b == 2 && c == 2 && d == 1), "two orders");
        model::require(!(a == 2 && b == 1 && c == 1 && d == 2), "two orders");
        model::outcome(digits({a, b}));
    };
    model::Options options;
    const model::Result result = model::explore(scenario, options);
    EXPECT_EQ(result._violation, "");
    EXPECT_EQ(result._outcomes, Outcomes({"00", "01", "02", "11", "12", "22", "21"}));
    options._putsAllOff = true;
    EXPECT_EQ(model::explore(scenario, options)._executions, result._executions);
}

// Two threads write both objects in opposite orders: the first store of each may be the last one.
std::function<void()> twoPlusTwoWrites(memory_order order)
{
    return [=]
    {
        std::atomic<int> x{0}, y{0};
        model::thread([&] { x.store(1, order), y.store(2, order); });
        model::thread([&] { y.store(1, order), x.store(2, order); });
        model::join();
        model::outcome(digits({x.load(relaxed), y.load(relaxed)}));
    };
}

TEST(ModelChecker, AStoreMayBeOrderedBeforeAnEarlierOne)
{
    EXPECT_EQ(outcomesOf(twoPlusTwoWrites(release)), Outcomes({"11", "12", "21", "22"}));
    EXPECT_EQ(outcomesOf(twoPlusTwoWrites(sequential)), Outcomes({"12", "21", "22"}));
}

TEST(ModelChecker, AReleaseSequenceGoesOnThroughAReadModifyWriteOnly)
{
    const auto scenario = [](bool modifies)
    {
        return [=]
        {
            int value = 0;
            std::atomic<int> flag{0};
            model::thread([&] { value = 1, flag.store(1, release); });
            model::thread(
                [&]
                {
                    if (modifies)
                        flag.fetch_add(1, relaxed);
                    else if (flag.load(relaxed) == 1)
                        flag.store(2, relaxed);
                });
            model::thread([&] { model::require(flag.load(acquire) != 2 || value == 1, "none"); });
            model::join();
        };
    };
    EXPECT_EQ(violationOf(scenario(true)), "");
    EXPECT_EQ(violationOf(scenario(false)), "a data race");
}

std::function<void()> independentReads(memory_order storing, memory_order loading)
{
    return [=]
    {
        std::atomic<int> x{0}, y{0};
        int a = 9, b = 9, c = 9, d = 9;
        model::thread([&] { x.store(1, storing); });
        model::thread([&] { y.store(1, storing); });
        model::thread([&] { a = x.load(loading), b = y.load(loading); });
        model::thread([&] { c = y.load(loading), d = x.load(loading); });
        model::join();
        model::outcome(digits({a, b, c, d}));
    };
}

TEST(ModelChecker, IndependentReadsOfIndependentWritesAgreeOnlyIfSequential)
{
    model::Options options;
    const auto scenario = independentReads(release, acquire);
    const model::Result result = model::explore(scenario, options);
    EXPECT_EQ(result._outcomes.size(), 16U);
    EXPECT_EQ(result._executions, 16U);
    options._putsAllOff = true;
    EXPECT_EQ(model::explore(scenario, options)._executions, 16U);
    const model::Result ordered = model::explore(independentReads(sequential, sequential));
    EXPECT_EQ(ordered._outcomes.size(), 15U);
    EXPECT_EQ(ordered._outcomes.count("1010"), 0U);
}

TEST(ModelChecker, NoReadModifyWriteIsLost)
{
    const auto scenario = []
    {
        std::atomic<int> x{0};
        int a = 9, b = 9, c = 9;
        model::thread([&] { a = x.fetch_add(1, relaxed); });
        model::thread([&] { b = x.fetch_add(1, relaxed); });
        model::thread([&] { c = x.fetch_add(1, relaxed); });
        model::join();
        model::require(x.load(relaxed) == 3, "lost");
        model::outcome(digits({a, b, c}));
    };
    const model::Result result = exploreInAllWays(scenario);
    EXPECT_EQ(result._outcomes, Outcomes({"012", "021", "102", "120", "201", "210"}));
    EXPECT_EQ(result._executions, 6U);
}

TEST(ModelChecker, AComparisonSucceedsOnceForEachValue)
{
    const auto scenario = []
    {
        std::atomic<int> x{0};
        const auto take = [&x](int value)
        {
            int expected = 0;
            return x.compare_exchange_strong(expected, value, sequential);
        };
        bool first = false, second = false;
        model::thread([&] { first = take(1); });
        model::thread([&] { second = take(2); });
        model::join();
        model::outcome(digits({first, second, x.load(relaxed)}));
    };
    EXPECT_EQ(outcomesOf(scenario), Outcomes({"012", "101"}));
}

std::function<void()> counting(bool locks)
{
    return [=]
    {
        std::mutex mutex;
        int count = 0;
        const auto increase = [&]
        {
            std::unique_lock<std::mutex> lock(mutex, std::defer_lock);
            if (locks) lock.lock();
            ++count;
        };
        model::thread(increase);
        model::thread(increase);
        model::join();
        model::outcome(digits({count}));
    };
}

TEST(ModelChecker, AMutexProtects)
{
    EXPECT_EQ(outcomesOf(counting(true)), Outcomes({"2"}));
    EXPECT_EQ(model::explore(counting(true))._executions, 2U);
    EXPECT_EQ(violationOf(counting(false)), "a data race");
}

TEST(ModelChecker, LocksInOppositeOrdersAreADeadlock)
{
    const auto scenario = [](bool isOpposite)
    {
        return [=]
        {
            std::mutex a, b;
            const auto both = [](std::mutex& first, std::mutex& second)
            {
                const std::lock_guard outer(first);
                const std::lock_guard inner(second);
            };
            model::thread([&] { both(a, b); });
            model::thread([&] { isOpposite ? both(b, a) : both(a, b); });
            model::join();
        };
    };
    EXPECT_EQ(violationOf(scenario(true)), "a deadlock");
    EXPECT_EQ(violationOf(scenario(false)), "");
}

// A thread sleeps until there is something; the other one provides it and wakes it.
std::function<void()> sleeping(bool looksUnderLock, bool locksToProvide)
{
    return [=]
    {
        std::mutex mutex;
        std::condition_variable news;
        std::atomic<bool> isThere{false};
        model::thread(
            [&]
            {
                if (!looksUnderLock && isThere.load()) return;
                std::unique_lock<std::mutex> lock(mutex);
                if (looksUnderLock)
                    while (!isThere.load()) news.wait(lock);
                else
                    news.wait(lock);
            });
        model::thread(
            [&]
            {
                if (locksToProvide)
                {
                    const std::lock_guard guard(mutex);
                    isThere = true;
                }
                else
                    isThere = true;
                news.notify_one();
            });
        model::join();
    };
}

TEST(ModelChecker, ALostWakeUpIsADeadlock)
{
    EXPECT_EQ(violationOf(sleeping(true, true)), "");
    EXPECT_EQ(violationOf(sleeping(false, true)), "a deadlock");
    EXPECT_EQ(violationOf(sleeping(true, false)), "a deadlock");
}

TEST(ModelChecker, AWaitExpiresOnlyIfThatIsAskedFor)
{
    const auto scenario = []
    {
        std::mutex mutex;
        std::condition_variable news;
        bool isThere = false;
        bool isSeen = false;
        model::thread(
            [&]
            {
                std::unique_lock<std::mutex> lock(mutex);
                isSeen = news.wait_for(lock, std::chrono::seconds(1), [&] { return isThere; });
            });
        model::thread(
            [&]
            {
                const std::lock_guard guard(mutex);
                isThere = true;
                news.notify_all();
            });
        model::join();
        model::outcome(digits({isSeen}));
    };
    EXPECT_EQ(outcomesOf(scenario), Outcomes({"1"}));
    model::Options options;
    options._expiringWaits = 1;
    EXPECT_EQ(model::explore(scenario, options)._outcomes, Outcomes({"0", "1"}));
}

TEST(ModelChecker, MemoryIsNotUsedAfterItsRelease)
{
    const auto scenario = [](memory_order order)
    {
        return [=]
        {
            auto value = std::make_unique<int>(1);
            std::atomic<bool> isDone{false};
            model::thread([&] { *value = 2, isDone.store(true, order); });
            model::thread(
                [&]
                {
                    if (isDone.load(order == release ? acquire : relaxed)) value.reset();
                });
            model::join();
        };
    };
    EXPECT_EQ(violationOf(scenario(release)), "");
    EXPECT_EQ(violationOf(scenario(relaxed)), "a data race");
    EXPECT_EQ(violationOf(
                  []
                  {
                      int* const value = new int(1);
                      volatile int* volatile same = value;
                      delete value;
                      *same = 2;
                  }),
              "use of memory that was released");
}

// Dekker's entry protocol, whose proof needs all of the model: stores, loads and fences.
std::function<void()> dekker(bool hasFences)
{
    return [=]
    {
        std::atomic<bool> wants[2] = {false, false};
        int inside = 0;
        const auto enter = [&](int self)
        {
            wants[self].store(true, relaxed);
            if (hasFences) std::atomic_thread_fence(sequential);
            if (!wants[1 - self].load(relaxed)) ++inside;
        };
        model::thread([&] { enter(0); });
        model::thread([&] { enter(1); });
        model::join();
    };
}

TEST(ModelChecker, DekkersEntryNeedsItsFences)
{
    EXPECT_EQ(violationOf(dekker(true)), "");
    EXPECT_EQ(violationOf(dekker(false)), "a data race");
}

TEST(ModelChecker, OperationsCanBeWeakenedOneByOne)
{
    const auto scenario = plainMessage(release, acquire);
    const model::Result whole = model::explore(scenario);
    EXPECT_EQ(whole._violation, "");
    ASSERT_EQ(whole._sites.size(), 2U);
    for (const auto& [site, strength] : whole._sites)
    {
        model::Options options;
        options._weakened[site] = strength;
        EXPECT_NE(model::explore(scenario, options)._violation, "") << model::describe(site);
    }
}

} // namespace
