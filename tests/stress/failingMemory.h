// Makes allocations fail on command, throughout a program whose libraries are linked statically.

#ifndef ZU_TESTS_STRESS_FAILINGMEMORY_H
#define ZU_TESTS_STRESS_FAILINGMEMORY_H

#include <atomic>

namespace stress
{

// Which allocation of the calling thread fails, counted from 1; 0 for none.
extern constinit thread_local int countdown;

// While it is set, all allocations of all threads fail, except those of spared threads.
extern std::atomic<bool> isMemoryGone;
extern constinit thread_local bool isSpared;

// Which allocation of all threads that are not spared fails, counted from 1; 0 for none.
extern std::atomic<int> unsparedCountdown;

} // namespace stress

#endif
