#include "base/rnStdRand.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace
{

using Zu::rnStdRand;
using Zu::rnStdSeed;

// The documented congruential generator: bits 16 to 30 of its word.
struct Reference
{
    std::uint32_t _state;

    int operator()()
    {
        _state = _state * 214013 + 2531011;
        return static_cast<int>(_state >> 16 & 0x7FFF);
    }
};

std::vector<int> numbers(int n)
{
    std::vector<int> result;
    for (int i = 0; i < n; ++i) result.push_back(rnStdRand());
    return result;
}

std::vector<int> expectedNumbers(std::uint32_t seed, int n)
{
    Reference reference{seed};
    std::vector<int> result;
    for (int i = 0; i < n; ++i) result.push_back(reference());
    return result;
}

TEST(RnStdRand, IsTheCongruentialStreamOfEverySeed)
{
    for (const unsigned int seed : {0U, 1U, 2U, 32767U, 32768U, 55555U, 99999U, 2147483562U,
                                    2147483647U, 2147483648U, 2531011U, 4294967294U, 4294967295U})
    {
        rnStdSeed(seed);
        EXPECT_EQ(numbers(2000), expectedNumbers(seed, 2000)) << seed;
    }
}

TEST(RnStdRand, BeginsWithTheNumbersThatEverybodyKnows)
{
    rnStdSeed(1);
    EXPECT_EQ(numbers(5), (std::vector<int>{41, 18467, 6334, 26500, 19169}));
}

TEST(RnStdRand, ANewThreadBeginsWithTheSeedOne)
{
    rnStdSeed(77);
    rnStdRand();
    std::vector<int> ofThread;
    std::thread thread([&ofThread] { ofThread = numbers(100); });
    thread.join();
    EXPECT_EQ(ofThread, expectedNumbers(1, 100));
}

TEST(RnStdRand, EachThreadHasAStreamOfItsOwn)
{
    rnStdSeed(11);
    const std::vector<int> before = numbers(10);
    std::vector<int> ofThread;
    std::thread thread(
        [&ofThread]
        {
            rnStdSeed(22);
            ofThread = numbers(100);
        });
    thread.join();
    EXPECT_EQ(ofThread, expectedNumbers(22, 100));

    std::vector<int> all = before;
    for (const int number : numbers(90)) all.push_back(number);
    EXPECT_EQ(all, expectedNumbers(11, 100));
}

TEST(RnStdRand, ThreadsDrawAtOnceWithoutMixingTheirStreams)
{
    constexpr unsigned int THREADS = 4;
    std::vector<std::vector<int>> results(THREADS);
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < THREADS; ++i)
        threads.emplace_back(
            [i, &results]
            {
                rnStdSeed(100 + i);
                results[i] = numbers(5000);
            });
    for (std::thread& thread : threads) thread.join();
    for (unsigned int i = 0; i < THREADS; ++i)
        EXPECT_EQ(results[i], expectedNumbers(100 + i, 5000)) << i;
}

TEST(RnStdRand, BothEndsOfTheSpanAreReached)
{
    // The word before the one whose bits are wanted; the multiplier is odd, so it has an inverse.
    std::uint32_t inverse = 1;
    for (int i = 0; i < 5; ++i) inverse *= 2 - 214013 * inverse;
    ASSERT_EQ(std::uint32_t{214013} * inverse, 1U);
    rnStdSeed((0x7FFF0000U - 2531011U) * inverse);
    EXPECT_EQ(rnStdRand(), 32767);
    rnStdSeed((0x8000FFFFU - 2531011U) * inverse);
    EXPECT_EQ(rnStdRand(), 0);
}

} // namespace
