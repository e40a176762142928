// The checker's reduction, by small random programs: it must find the same results as the run of
// all interleavings, and run each execution once.

#include "modelChecker.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace
{

enum Act
{
    Load,
    Store,
    Add,
    Compare,
    Fence,
    Light,
    Heavy,
    Increase,
    Count
};

struct Instruction
{
    int _act;
    int _object;
    std::memory_order _order;
};

using Program = std::vector<std::vector<Instruction>>;

class Maker
{
public:
    explicit Maker(std::uint32_t seed) : _random(seed) {}

    Program make()
    {
        Program program;
        const int threads = 2 + below(2);
        // Without reduction the number of interleavings explodes.
        const int length = threads == 2 ? 3 + below(2) : 2;
        for (int i = 0; i < threads; ++i)
        {
            program.emplace_back();
            for (int j = 0; j < length; ++j) program.back().push_back(makeInstruction());
        }
        return program;
    }

private:
    int below(int bound)
    {
        return static_cast<int>(_random() % static_cast<std::uint32_t>(bound));
    }

    // Loads and stores are the more frequent ones.
    Instruction makeInstruction()
    {
        const int act = below(3) == 0 ? below(Count) : below(2);
        return {act, below(2), orderOf(act)};
    }

    std::memory_order orderOf(int act)
    {
        using std::memory_order;
        const int which = below(3);
        if (which == 0) return std::memory_order_relaxed;
        if (which == 1) return std::memory_order_seq_cst;
        if (act == Load) return std::memory_order_acquire;
        if (act == Store) return std::memory_order_release;
        return std::memory_order_acq_rel;
    }

    std::mt19937 _random;
};

struct Shared
{
    std::array<std::atomic<int>, 2> _objects{};
    std::mutex _mutex;
    int _count = 0;
};

// Appends what the instruction has read.
void carryOut(const Instruction& instruction, int value, Shared& shared, std::string& read)
{
    std::atomic<int>& object = shared._objects[static_cast<std::size_t>(instruction._object)];
    int got = 0;
    switch (instruction._act)
    {
    case Load:
        got = object.load(instruction._order);
        break;
    case Store:
        return object.store(value, instruction._order);
    case Add:
        got = object.fetch_add(10, instruction._order);
        break;
    case Compare:
        object.compare_exchange_strong(got, value, instruction._order, std::memory_order_relaxed);
        break;
    case Fence:
        return std::atomic_thread_fence(instruction._order);
    case Light:
        return std::atomic_signal_fence(std::memory_order_seq_cst);
    case Heavy:
        model::heavyBarrier();
        return;
    default:
    {
        const std::lock_guard guard(shared._mutex);
        got = ++shared._count;
    }
    }
    read += std::to_string(got) + ',';
}

std::function<void()> running(const Program& program)
{
    return [&program]
    {
        Shared shared;
        std::vector<std::string> read(program.size());
        for (std::size_t i = 0; i < program.size(); ++i)
            model::thread(
                [&, i]
                {
                    int value = static_cast<int>(i) * 3;
                    for (const Instruction& instruction : program[i])
                        carryOut(instruction, ++value, shared, read[i]);
                });
        model::join();
        for (const std::string& text : read) model::outcome(text);
        for (std::atomic<int>& object : shared._objects)
            model::outcome(std::to_string(object.load(std::memory_order_relaxed)));
    };
}

std::string textOf(const Program& program)
{
    static const char* const NAMES[] = {"load",  "store", "add",   "compare",
                                        "fence", "light", "heavy", "increase"};
    std::string text;
    for (const std::vector<Instruction>& thread : program)
    {
        text += "thread:";
        for (const Instruction& instruction : thread)
            text += std::string(" ") + NAMES[instruction._act] + " " +
                    std::to_string(instruction._object) + " order " +
                    std::to_string(static_cast<int>(instruction._order)) + ";";
        text += '\n';
    }
    return text;
}

TEST(ModelCheckerReduction, FindsAllResultsOfRandomPrograms)
{
    const bool isLong = std::getenv("ZU_MODEL_LONG") != nullptr;
    const std::uint32_t programs = isLong ? 200 : 60;
    std::uint64_t reducedCount = 0;
    std::uint64_t allCount = 0;
    for (std::uint32_t seed = 1; seed <= programs; ++seed)
    {
        const Program program = Maker(seed).make();
        model::Options options;
        const model::Result reduced = model::explore(running(program), options);
        options._putsAllOff = true;
        const model::Result putOff = model::explore(running(program), options);
        options._everyTurn = true;
        options._limit = isLong ? 20'000 : 5'000;
        const model::Result all = model::explore(running(program), options);
        EXPECT_EQ(reduced._violation + putOff._violation + all._violation, "");
        EXPECT_EQ(reduced._executions, putOff._executions) << seed << '\n' << textOf(program);
        if (all._isComplete)
        {
            EXPECT_EQ(reduced._outcomes, all._outcomes) << seed << '\n' << textOf(program);
        }
        for (const std::string& outcome : all._outcomes)
            EXPECT_EQ(reduced._outcomes.count(outcome), 1U) << seed << '\n' << textOf(program);
        if (testing::Test::HasFailure()) return;
        reducedCount += reduced._executions + reduced._deadEnds;
        allCount += all._executions;
    }
    std::cout << "  " << programs << " programs: " << reducedCount << " runs for " << allCount
              << " interleavings\n";
}

} // namespace
