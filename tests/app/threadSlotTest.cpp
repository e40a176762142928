#include "app/threadSlot.h"

#include "app/lgServiceThreads.h"

#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <vector>

namespace
{

namespace ThreadSlot = Zu::ThreadSlot;

// Nothing else in this process traces by thread, so the slot is free for the test. The function
// that is notified stays set until the process ends, as a slot has only one.
constexpr ThreadSlot::Slot SLOT = ThreadSlot::Traces;

struct End
{
    void* _value;
    void* _valueThen;
    std::thread::id _thread;
};

class Ends
{
public:
    static Ends& instance()
    {
        static Ends theEnds;
        return theEnds;
    }

    void clear()
    {
        const std::lock_guard guard(_mutex);
        _ends.clear();
    }

    void add(const End& end)
    {
        const std::lock_guard guard(_mutex);
        _ends.push_back(end);
    }

    std::vector<End> ends()
    {
        const std::lock_guard guard(_mutex);
        return _ends;
    }

private:
    Ends()
    {
        ThreadSlot::setThreadEnded(
            SLOT,
            [](void* value) {
                instance().add({value, ThreadSlot::get(SLOT), std::this_thread::get_id()});
            });
    }

    std::mutex _mutex;
    std::vector<End> _ends;
};

class ThreadSlotTest : public testing::Test
{
protected:
    ThreadSlotTest()
    {
        _ends.clear();
    }

    ~ThreadSlotTest() override
    {
        ThreadSlot::set(SLOT, nullptr);
    }

    Ends& _ends = Ends::instance();
    int _first = 1;
    int _second = 2;
};

TEST_F(ThreadSlotTest, EachThreadBeginsWithNull)
{
    EXPECT_EQ(ThreadSlot::get(SLOT), nullptr);
    ThreadSlot::set(SLOT, &_first);
    // Consecutive threads may get the same memory.
    for (int i = 0; i < 20; ++i)
        std::thread(
            [this]
            {
                EXPECT_EQ(ThreadSlot::get(SLOT), nullptr);
                ThreadSlot::set(SLOT, &_second);
            })
            .join();
}

TEST_F(ThreadSlotTest, AValueIsTheThreadsOwn)
{
    ThreadSlot::set(SLOT, &_first);
    std::thread(
        [this]
        {
            ThreadSlot::set(SLOT, &_second);
            EXPECT_EQ(ThreadSlot::get(SLOT), &_second);
        })
        .join();
    EXPECT_EQ(ThreadSlot::get(SLOT), &_first);
}

TEST_F(ThreadSlotTest, TheLastValueHolds)
{
    for (int* const value : {&_first, &_second, static_cast<int*>(nullptr), &_first})
    {
        ThreadSlot::set(SLOT, value);
        EXPECT_EQ(ThreadSlot::get(SLOT), value);
    }
}

TEST_F(ThreadSlotTest, TheEndOfAThreadIsToldOnItWithItsValue)
{
    std::thread thread(
        [this]
        {
            ThreadSlot::set(SLOT, &_first);
            ThreadSlot::set(SLOT, &_second);
            EXPECT_TRUE(_ends.ends().empty());
        });
    const std::thread::id id = thread.get_id();
    thread.join();
    const std::vector<End> ends = _ends.ends();
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(ends[0]._value, &_second);
    EXPECT_EQ(ends[0]._thread, id);
}

TEST_F(ThreadSlotTest, TheValueIsNullWhileItsEndIsTold)
{
    std::thread([this] { ThreadSlot::set(SLOT, &_first); }).join();
    const std::vector<End> ends = _ends.ends();
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(ends[0]._valueThen, nullptr);
}

TEST_F(ThreadSlotTest, TheEndOfAThreadWithoutAValueIsNotTold)
{
    std::thread([] {}).join();
    std::thread([] { EXPECT_EQ(ThreadSlot::get(SLOT), nullptr); }).join();
    std::thread([] { ThreadSlot::set(SLOT, nullptr); }).join();
    std::thread(
        [this]
        {
            ThreadSlot::set(SLOT, &_first);
            ThreadSlot::set(SLOT, nullptr);
        })
        .join();
    EXPECT_TRUE(_ends.ends().empty());
}

TEST_F(ThreadSlotTest, TheEndsOfManyThreadsAreToldOnceEach)
{
    constexpr std::size_t THREADS = 16;
    std::vector<int> values(THREADS, 0);
    std::vector<std::thread> threads;
    for (int& value : values)
        threads.emplace_back(
            [&value]
            {
                ThreadSlot::set(SLOT, &value);
                EXPECT_EQ(ThreadSlot::get(SLOT), &value);
            });
    for (std::thread& thread : threads) thread.join();
    const std::vector<End> ends = _ends.ends();
    EXPECT_EQ(ends.size(), THREADS);
    for (const End& end : ends) ++*static_cast<int*>(end._value);
    EXPECT_EQ(values, std::vector<int>(THREADS, 1));
}

TEST_F(ThreadSlotTest, TheSlotsHaveValuesOfTheirOwn)
{
    // Ensures that the other slot is set up, too.
    Zu::LgServiceThreads::instance();
    std::thread(
        [this]
        {
            ThreadSlot::set(SLOT, &_first);
            EXPECT_EQ(ThreadSlot::get(ThreadSlot::Queue), nullptr);
            EXPECT_EQ(ThreadSlot::get(SLOT), &_first);
        })
        .join();
    EXPECT_EQ(_ends.ends().size(), 1U);
}

} // namespace
