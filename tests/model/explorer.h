// Runs a scenario once for each of its executions. See modelChecker.h.

#ifndef ZU_TESTS_MODEL_EXPLORER_H
#define ZU_TESTS_MODEL_EXPLORER_H

#include "fiber.h"
#include "memory.h"
#include "modelChecker.h"
#include "operation.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace model
{

class Explorer
{
public:
    Explorer(const std::function<void()>& scenario, const Options& options);

    Result run();

    // The one that runs a scenario, if the caller is a part of the scenario; otherwise null.
    static Explorer* current()
    {
        return theCurrent;
    }

    // For the thread that runs.

    // Carries an operation out, when its turn comes; returns the value that was read.
    std::uint64_t perform(Operation operation, bool* isDone = nullptr);
    void read(std::uintptr_t address, std::size_t size);
    void write(std::uintptr_t address, std::size_t size);
    void release(std::uintptr_t address, std::size_t size);
    // Returns which thread it is.
    std::uint64_t begin(std::function<void()> body);
    // One of several things that may happen.
    int chooseOne(int count);
    void sleep(std::int64_t nanoseconds);
    std::uint64_t getRunning() const
    {
        return _running;
    }
    // Of the processor's counter.
    std::uint64_t getTick()
    {
        return ++_ticks;
    }
    // In nanoseconds.
    std::int64_t getTime()
    {
        return ++_time + running()._ahead;
    }
    void setTime(std::int64_t time)
    {
        running()._ahead = std::max(running()._ahead, time);
    }
    [[noreturn]] void fail(const std::string& text);
    void leaveOthers()
    {
        _areOthersLeft = true;
    }
    void addOutcome(const std::string& text);
    void note(std::uint64_t what);

private:
    struct Thread
    {
        View _view;
        Fiber _fiber;
        std::function<void()> _body;
        // What it is about to do.
        Operation _next;
        bool _isFinished = false;
        bool _isNotified = false;
        int _expired = 0;
        // Of the common clock, after a wait that has expired.
        std::int64_t _ahead = 0;
        // The operation was put off; how many stores, and operations on which it depends, there
        // were then.
        bool _isPutOff = false;
        std::uint64_t _storesBefore = 0;
        std::uint64_t _orderedBefore = 0;
        // How often it was woken because nobody else could go on, and how many stores there were
        // then.
        std::uint64_t _wokenAlone = 0;
        std::uint64_t _storesAlone = 0;
    };

    // A mutex or a condition variable.
    struct Shared
    {
        int _owner;
        std::uint64_t _count;
        View _view;
        std::vector<int> _waiting;
        void reset()
        {
            _owner = -1;
            _count = 0;
            _view = View();
            _waiting.clear();
        }
    };

    // A decision.
    struct Node
    {
        int _chosen;
        // Beyond the last one, if the operation can be put off, is that.
        int _count;
        // Whether it can be put off, and whether there is a reason to.
        bool _isOperation;
        bool _isWanted;
        int _thread;
        Time _time;
        Kind _kind;
        std::uintptr_t _address;
        std::uintptr_t _mutex;
        std::uintptr_t _condition;
        bool _isSequential;
    };

    struct Step
    {
        int _thread;
        Operation _operation;
    };

    static void runThread(void* thread);
    void runOnce();
    bool backtrack();
    Thread* next();
    Thread* nextOfAll();
    Thread* wakeOne();
    bool isImmediate(const Thread& thread) const;
    bool mayExpire(const Thread& thread) const;
    bool isEnabled(const Thread& thread);
    int countChoices(Thread& thread);
    std::uint64_t countOrdered(const Operation& operation);
    void putOff(Thread& thread);
    int choose(int count, const Thread* thread = nullptr);
    void carryOut(Thread& thread);
    void access(Thread& thread, Operation& operation);
    void lock(Thread& thread, Operation& operation);
    void wait(Thread& thread, const Operation& operation);
    void notify(const Operation& operation);
    void want(const Operation& operation, int thread, const Times& cause);
    void noteEnd();
    void watch(std::uintptr_t address, std::size_t size);
    void passOn();
    void passOn(const Thread& thread, std::uintptr_t address, std::size_t size) const;
    static Watcher::Point pointOf(const Thread& thread);
    void noteSite(Operation& operation);
    void check(const char* problem);
    std::string describeTrace() const;
    Thread& running()
    {
        return *_threads[_running];
    }

    static Explorer* theCurrent;

    const std::function<void()>& _scenario;
    const Options& _options;
    Result _result;
    std::vector<std::unique_ptr<Thread>> _pool;
    std::vector<Thread*> _threads;
    std::size_t _running = 0;
    Memory _memory;
    AddressTable<Shared> _shared;
    std::vector<Node> _path;
    // How much of the path was gone so far, and how much of it was decided before.
    std::size_t _depth = 0;
    std::size_t _decided = 0;
    // For the thread that was chosen: its choice, from these sources.
    int _choice = 0;
    std::vector<Store*> _sources;
    std::vector<Step> _trace;
    std::string _outcome;
    bool _areOthersLeft = false;
    std::int64_t _time = 0;
    std::uint64_t _ticks = 0;
    // What the running thread is about to write, for the watcher.
    std::uintptr_t _watched = 0;
    std::size_t _watchedSize = 0;
};

// Memory of the heap for executions, which is the same in each of them.
namespace Arena
{

void reset();
void* get(std::size_t size);
bool contains(const void* place);
std::size_t sizeAt(const void* place);

} // namespace Arena

} // namespace model

#endif
