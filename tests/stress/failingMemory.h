// Lets allocations fail on command, in all of a program whose libraries are linked statically.

#ifndef ZU_TESTS_STRESS_FAILINGMEMORY_H
#define ZU_TESTS_STRESS_FAILINGMEMORY_H

#include <atomic>

namespace stress
{

// The allocation of the calling thread that fails, counted from 1; 0 for none.
extern constinit thread_local int countdown;

// While it is set, all allocations of all threads fail, but for those that are spared.
extern std::atomic<bool> isMemoryGone;
extern constinit thread_local bool isSpared;

// The allocation of all threads that are not spared that fails, counted from 1; 0 for none.
extern std::atomic<int> unsparedCountdown;

// How many allocations threads have asked for that are not spared.
extern std::atomic<unsigned> unsparedAllocations;

} // namespace stress

#endif
