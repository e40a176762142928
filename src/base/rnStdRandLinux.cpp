#include "base/rnStdRand.h"

#include <cstdint>

namespace Zu
{

namespace
{

constinit thread_local std::uint32_t state = 1;

} // namespace

// Here the runtime's own numbers have another range, and one stream for all threads.
int rnStdRand()
{
    state = state * 214013 + 2531011;
    return static_cast<int>(state >> 16 & 0x7fff);
}

void rnStdSeed(unsigned int seed)
{
    state = seed;
}

} // namespace Zu
