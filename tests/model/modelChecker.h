// Explores a scenario of a few threads exhaustively under the memory model of C++.
//
// How it works. The code under test is compiled with -fsanitize=thread, so that the compiler puts
// a call in front of each access to memory and instead of each atomic operation. The sanitizer's
// own library is not linked: the files of this directory define those calls, and the system's for
// mutexes and condition variables. The threads of a scenario are fibers of one thread of the
// system. At each visible operation (atomic operations, fences, mutexes, condition variables) the
// explorer decides which thread goes on, and which store a load sees. A scenario is run again and
// again until all decisions were taken, depth first.
//
// What it models:
// - All executions of C++20 in which no value comes from the future of its own cause: the order of
//   a thread together with "reads from" has no circle (as in Lahav, Vafeiadis, Kang, Hur, Dreyer:
//   Repairing Sequential Consistency in C/C++11, 2017). So load buffering is not shown; no
//   compiler or processor that the library supports shows it where it matters for locks or rings,
//   since a store whose value depends on a load does not overtake it.
// - A modification order for each atomic object, which need not be that of the execution: a store
//   may be put in front of stores that were executed earlier, where coherence allows it.
// - Happens-before by vector clocks (Lamport 1978; Mattern 1989), with release sequences of
//   read-modify-writes, and fences of all orders.
// - Sequentially consistent operations: their order is that in which they are executed (as in
//   Norris, Demsky: CDSChecker, 2013). It has to agree with the order of each object by the four
//   rules of C++20, [atomics.order].
// - Races: plain accesses that conflict with any other access and are not ordered with it, also
//   with the release of memory, and uses of released memory.
// - Mutexes; condition variables; deadlocks, and so wake-ups that are lost, as timed waits
//   expire only if an option says so, and no wait ends by itself.
// - The barrier that a thread imposes on all others, where the system has one (membarrier): it is
//   taken for granted, as a heavy fence whose partners are the fences for the compiler alone
//   (std::atomic_signal_fence) of other threads. A pair of which at least one is heavy is ordered
//   as two sequentially consistent fences are; two light ones are not (as in Goldblatt:
//   Asymmetric Fences, P1202, 2018). That is less than a barrier of the system gives.
//
// Which executions are run. Only what a thread reads and the orders of locks, condition variables
// and sequentially consistent operations make executions differ. So a store is executed at once.
// A load, when its turn has come, has each of the stores that are there in turn as its source; then
// it is put off, and may only see a store that was not there. The latter is left out unless such a
// store was met which did not depend on the load, as in dynamic partial-order reduction (Flanagan,
// Godefroid 2005). Each execution, taken as a graph of what reads from what (Kokologiannakis,
// Lahav, Sagonas, Vafeiadis 2017), is run once. `_everyTurn` runs all interleavings instead,
// without any reduction: only to check the reduction with small scenarios.
//
// What it leaves out: atomic objects of 16 bytes, accesses of different sizes to one of them,
// spurious failures of compare_exchange_weak, blocks of more than 4096 bytes as a whole, signals,
// forks, time, and what code does that was not compiled for it (the standard library's compiled
// part, but memcpy and its kin are seen). Loops that wait for another thread have to be bounded by
// the scenario, or sleep.
//
// A scenario must do the same in each run if it reads the same: what it changes outside of itself,
// it has to restore. Memory of the heap that it gets is there until its end, at the same addresses
// in each run. Statics that a function makes on first use have to be made before.

#ifndef ZU_TESTS_MODEL_MODELCHECKER_H
#define ZU_TESTS_MODEL_MODELCHECKER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>

namespace model
{

// A place in the program that has an atomic operation: the address behind its call.
using Site = std::uintptr_t;

// What is taken away from the memory order of an operation.
enum Weakening
{
    WithoutAcquire = 1,
    WithoutRelease = 2,
    // A fence for the compiler alone does nothing.
    WithoutLightFence = 4
};

// Gets all that is written to a part of the memory, and what the scenario notes, thread by thread.
// With that, whatever the threads may have done so far at any moment of an execution is known.
class Watcher
{
public:
    // Where a thread stands: its own time, and for each thread the last operation without which
    // this one would not be here.
    struct Point
    {
        int _thread;
        std::uint32_t _time;
        const std::uint32_t* _cause;
    };

    Watcher(const void* place, std::size_t size)
        : _begin(reinterpret_cast<std::uintptr_t>(place)), _end(_begin + size)
    {
    }
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;
    virtual ~Watcher() = default;

    bool includes(std::uintptr_t address) const
    {
        return address >= _begin && address < _end;
    }

    // An execution begins.
    virtual void begin() = 0;

    // These bytes were written, and have their new values.
    virtual void written(const Point& point, const void* place, std::size_t size) = 0;

    virtual void noted(const Point& point, std::uint64_t what) = 0;

    // An execution has come to its end. Returns what is wrong with it; empty if nothing.
    virtual std::string end() = 0;

private:
    std::uintptr_t _begin;
    std::uintptr_t _end;
};

struct Options
{
    // Runs all interleavings, without reduction.
    bool _everyTurn = false;
    // Puts every load off, whether or not a new store was met.
    bool _putsAllOff = false;
    // How many waits with a limit may end in each thread without having been woken.
    int _expiringWaits = 0;
    // After that many executions it gives up.
    std::uint64_t _limit = 100'000'000;
    // Operations that are weaker than they are written, as bits.
    std::map<Site, int> _weakened;
    Watcher* _watcher = nullptr;
};

struct Result
{
    // Whether all was explored. Exploration ends at the first violation.
    bool _isComplete = false;
    // Executions that came to their end.
    std::uint64_t _executions = 0;
    // Those that were given up, as what they lead to was run before.
    std::uint64_t _deadEnds = 0;
    // What went wrong, then what was done up to there, a line for each operation; empty if nothing.
    std::string _violation;
    // What the executions gave to outcome().
    std::set<std::string> _outcomes;
    // All operations that are written as an acquire or a release, as bits of Weakening.
    std::map<Site, int> _allSites;
    // Those of them by which something was passed from a thread to another, and fences.
    std::map<Site, int> _sites;
};

// Explores a scenario, whose first thread calls it.
Result explore(const std::function<void()>& scenario, const Options& options = {});

// For scenarios.

// The number of threads, including the first.
constexpr int MAX_THREADS = 5;

// Starts a thread.
void thread(std::function<void()> body);

// Waits for the end of all threads; for the first one.
void join();

// From here on, threads but the first that wait to be woken need not end.
void leaveOthers();

// Something that has to hold in every execution.
void require(bool condition, const char* text);

// Notes a result, of which there may be several in an execution: they are joined by blanks.
void outcome(const std::string& text);

// Something for the watcher.
void note(std::uint64_t what);

// Has all other threads pass a barrier. Returns true, as the system's does.
bool heavyBarrier();

// For the source of a text that describes the site: function and source of each level of inlining,
// the innermost first, separated by line feeds. Takes the system's tool addr2line.
std::string describe(Site site);

} // namespace model

#endif
