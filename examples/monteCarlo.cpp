// A Monte Carlo run on several threads, with the same result for any number of them.
#include "base/base.h"
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <iostream>
#include <thread>
#include <vector>

namespace
{

constexpr std::uint64_t BLOCKS = 64;
constexpr std::uint64_t POINTS_PER_BLOCK = 10000;

// How many points of a block are in the quarter circle. Each block has its own part of the stream.
std::uint64_t countInside(Zu::RnLecuyerUniformRng<double> rng, std::uint64_t block)
{
    rng.skip(block * POINTS_PER_BLOCK * 2);
    std::uint64_t inside = 0;
    for (std::uint64_t i = 0; i < POINTS_PER_BLOCK; ++i)
    {
        const double x = rng.eval();
        const double y = rng.eval();
        inside += x * x + y * y < 1 ? 1 : 0;
    }
    return inside;
}

std::uint64_t run(unsigned int threadCount)
{
    const Zu::RnLecuyerUniformRng<double> rng;
    std::atomic<std::uint64_t> next{0};
    std::atomic<std::uint64_t> inside{0};
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < threadCount; ++i)
        threads.emplace_back(
            [&]
            {
                for (std::uint64_t block = next++; block < BLOCKS; block = next++)
                    inside += countInside(rng, block);
            });
    for (std::thread& thread : threads) thread.join();
    return inside;
}

} // namespace

int main()
{
    const std::uint64_t inside = run(std::max(2U, std::thread::hardware_concurrency()));
    std::cout << "pi is about " << 4.0 * static_cast<double>(inside) / (BLOCKS * POINTS_PER_BLOCK)
              << "\n"
              << (inside == run(1) ? "one thread counts the same" : "one thread counts otherwise")
              << "\n";
}
