// Vector clocks: what happens before what.

#ifndef ZU_TESTS_MODEL_CLOCKS_H
#define ZU_TESTS_MODEL_CLOCKS_H

#include "modelChecker.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace model
{

// Counts the operations of one thread.
using Time = std::uint32_t;

constexpr Time NEVER = ~Time{0};

// For each thread, the last of its operations that is included.
struct Times : std::array<Time, MAX_THREADS>
{
    void join(const Times& other)
    {
        for (std::size_t i = 0; i < size(); ++i) (*this)[i] = std::max((*this)[i], other[i]);
    }
};

// What a thread knows, and what a store passes on.
struct Clock
{
    // What happened before.
    Times _before{};
    // What happened before a fence that is sequentially ordered before a fence that happened
    // before.
    Times _beforeFence{};
    // Sequentially consistent accesses that are ordered before a fence that happened before.
    Times _inOrder{};

    void join(const Clock& other)
    {
        _before.join(other._before);
        _beforeFence.join(other._beforeFence);
        _inOrder.join(other._inOrder);
    }
};

} // namespace model

#endif
