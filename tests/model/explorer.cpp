#include "explorer.h"

#include <algorithm>
#include <exception>
#include <sstream>

namespace model
{

namespace
{

// Blocks that are made, copied or released as a whole, and take most of the time then: a thread's
// own. What accesses parts of them is seen.
constexpr std::size_t LARGE = 4096;

// An execution does not have more operations: a loop would be without end.
constexpr std::size_t MAX_STEPS = 20000;

// Not the beginning of time, in nanoseconds.
constexpr std::int64_t SECOND = 1'000'000'000;

// Longer than any limit.
constexpr std::int64_t YEARS = SECOND * 86400 * 365 * 10;

// The counter at the beginning of a scenario: not 0.
constexpr std::uint64_t TICKS = 1'000'000;

constexpr std::uint64_t NO_STORES = ~std::uint64_t{0};

// Two light fences don't depend on each other, nor does one on what is not a heavy one.
bool dependInOrder(Kind a, Kind b)
{
    const bool isHeavy = a == Kind::HeavyFence || b == Kind::HeavyFence;
    const bool isLight = a == Kind::LightFence || b == Kind::LightFence;
    return isHeavy || !isLight;
}

// What could be taken away from it.
int strengthOf(const Operation& operation)
{
    if (operation._kind == Kind::LightFence) return WithoutLightFence;
    const bool isFence = operation._kind == Kind::Fence;
    const bool acquires = (isFence || mayRead(operation._kind)) && isAcquire(operation._order);
    const bool releases = (isFence || mayWrite(operation._kind)) && isRelease(operation._order);
    return (acquires ? WithoutAcquire : 0) | (releases ? WithoutRelease : 0);
}

// While one exists, the runtime's own work is not part of the scenario.
class Outside
{
public:
    explicit Outside(Explorer*& current) : _current(current), _saved(current)
    {
        _current = nullptr;
    }
    ~Outside()
    {
        _current = _saved;
    }
    Outside(const Outside&) = delete;
    Outside& operator=(const Outside&) = delete;

private:
    Explorer*& _current;
    Explorer* _saved;
};

} // namespace

Explorer* Explorer::theCurrent = nullptr;

Explorer::Explorer(const std::function<void()>& scenario, const Options& options)
    : _scenario(scenario), _options(options)
{
    for (int i = 0; i < MAX_THREADS; ++i) _pool.push_back(std::make_unique<Thread>());
}

Result Explorer::run()
{
    do
    {
        runOnce();
        if (!_result._violation.empty()) return _result;
        if (_result._executions >= _options._limit) return _result;
    } while (backtrack());
    _result._isComplete = true;
    return _result;
}

void Explorer::runThread(void* thread)
{
    auto& self = *static_cast<Thread*>(thread);
    Explorer& explorer = *theCurrent;
    try
    {
        self._body();
    }
    catch (const std::exception& exception)
    {
        explorer.fail(std::string("an exception: ") + exception.what());
    }
    self._isFinished = true;
    self._fiber.stop();
}

std::uint64_t Explorer::begin(std::function<void()> body)
{
    const Outside outside(theCurrent);
    passOn();
    if (_threads.size() == MAX_THREADS) throw std::length_error("too many threads");
    Thread& thread = *_pool[_threads.size()];
    const View* const creator = _threads.empty() ? nullptr : &running()._view;
    thread._view = View();
    if (creator) thread._view.join(*creator);
    thread._view._thread = static_cast<int>(_threads.size());
    thread._view.tick();
    if (creator) running()._view.tick();
    thread._body = std::move(body);
    thread._isFinished = thread._isNotified = thread._isPutOff = false;
    thread._expired = 0;
    thread._ahead = 0;
    thread._next = Operation();
    thread._wokenAlone = 0;
    thread._storesAlone = NO_STORES;
    thread._fiber.begin(&runThread, &thread);
    _threads.push_back(&thread);
    return _threads.size() - 1;
}

// Runs the scenario along the path, and beyond it with first choices.
void Explorer::runOnce()
{
    _memory.reset();
    _shared.clear();
    Arena::reset();
    _threads.clear();
    _trace.clear();
    _outcome.clear();
    _areOthersLeft = false;
    _time = SECOND;
    _ticks = TICKS;
    _depth = 0;
    _decided = _path.size();
    _watchedSize = 0;
    if (_options._watcher) _options._watcher->begin();
    begin(_scenario);
    while (Thread* const thread = next())
    {
        carryOut(*thread);
        if (!_result._violation.empty()) break;
        _running = static_cast<std::size_t>(thread->_view._thread);
        theCurrent = this;
        thread->_fiber.go();
        theCurrent = nullptr;
        passOn();
        if (!_result._violation.empty()) break;
        if (_trace.size() > MAX_STEPS) check("a loop without end");
    }
    noteEnd();
}

void Explorer::noteEnd()
{
    bool isPutOff = false;
    bool isFinished = true;
    for (Thread* const thread : _threads)
    {
        if (thread->_isFinished) continue;
        // For ever asleep, but nobody minds.
        const bool isLeft =
            _areOthersLeft && thread != _threads.front() && thread->_next._kind == Kind::WakeUp;
        isFinished = isFinished && isLeft;
        // A lock that was put off may be taken by now.
        isPutOff = isPutOff || isEnabled(*thread);
        // What it waits for may depend on decisions.
        want(thread->_next, thread->_view._thread, thread->_view._cause);
    }
    if (!_result._violation.empty()) return;
    if (isFinished && !isPutOff)
    {
        ++_result._executions;
        if (!_outcome.empty()) _result._outcomes.insert(_outcome);
        const std::string problem = _options._watcher ? _options._watcher->end() : std::string();
        if (!problem.empty()) check(problem.c_str());
    }
    else if (isPutOff)
        ++_result._deadEnds;
    else
        check("a deadlock");
}

bool Explorer::backtrack()
{
    while (!_path.empty())
    {
        Node& node = _path.back();
        const int last = node._isOperation && node._isWanted ? node._count : node._count - 1;
        if (node._chosen < last)
        {
            ++node._chosen;
            return true;
        }
        _path.pop_back();
    }
    return false;
}

int Explorer::choose(int count, const Thread* thread)
{
    if (!thread && count == 1) return 0;
    if (_depth == _path.size())
    {
        Node node{};
        node._count = count;
        node._isOperation = thread != nullptr;
        node._isWanted = _options._putsAllOff;
        if (thread)
        {
            node._thread = thread->_view._thread;
            node._time = thread->_view.time() + 1;
            node._kind = thread->_next._kind;
            node._address = thread->_next._address;
            node._mutex = thread->_next._mutex;
            node._condition = conditionOf(thread->_next);
            node._isSequential = isSequential(thread->_next);
        }
        _path.push_back(node);
    }
    return _path[_depth++]._chosen;
}

// Operations on which other threads' possibilities depend only in that there are more of them.
bool Explorer::isImmediate(const Thread& thread) const
{
    const Operation& next = thread._next;
    switch (next._kind)
    {
    case Kind::Begin:
    case Kind::Unlock:
        return true;
    case Kind::Store:
    case Kind::Fence:
        return next._order != Sequential;
    case Kind::Join:
        if (next._operand != ALL_THREADS) return _threads[next._operand]->_isFinished;
        return std::all_of(_threads.begin() + 1, _threads.end(),
                           [](const Thread* other) { return other->_isFinished; });
    case Kind::Sleep:
        return _memory.getStoreCount() != thread._storesBefore;
    default:
        return false;
    }
}

bool Explorer::mayExpire(const Thread& thread) const
{
    return thread._next._mayExpire && thread._expired < _options._expiringWaits;
}

bool Explorer::isEnabled(const Thread& thread)
{
    const Operation& next = thread._next;
    if (thread._isFinished) return false;
    if (next._kind == Kind::Join || next._kind == Kind::Sleep) return isImmediate(thread);
    if (next._kind == Kind::WakeUp && !thread._isNotified && !mayExpire(thread)) return false;
    return !isLocking(next._kind) || _shared[next._mutex]._owner < 0;
}

// How many operations of other threads there were with which the order of this one matters.
std::uint64_t Explorer::countOrdered(const Operation& operation)
{
    std::uint64_t count = isSequential(operation) ? _memory.countOrdered(operation._kind) : 0;
    if (isLocking(operation._kind)) count += _shared[operation._mutex]._count;
    if (const std::uintptr_t condition = conditionOf(operation)) count += _shared[condition]._count;
    return count;
}

// In how many ways the thread can go on; 0 if it can't, or was put off and nothing is new.
int Explorer::countChoices(Thread& thread)
{
    if (!isEnabled(thread)) return 0;
    const bool isNew = !thread._isPutOff || countOrdered(thread._next) != thread._orderedBefore;
    if (!mayRead(thread._next._kind)) return isNew ? 1 : 0;
    _memory.findSources(thread._view, thread._next, _sources);
    if (!isNew)
        std::erase_if(_sources,
                      [&](const Store* store) { return store->_number <= thread._storesBefore; });
    return static_cast<int>(_sources.size());
}

void Explorer::putOff(Thread& thread)
{
    thread._isPutOff = true;
    thread._storesBefore = _memory.getStoreCount();
    thread._orderedBefore = countOrdered(thread._next);
}

// The thread whose turn it is; null at the end, in a deadlock, and where all are put off.
Explorer::Thread* Explorer::next()
{
    if (_options._everyTurn) return nextOfAll();
    for (Thread* const thread : _threads)
        if (!thread->_isFinished && isImmediate(*thread)) return thread;
    for (Thread* const thread : _threads)
    {
        const int count = countChoices(*thread);
        if (count == 0) continue;
        _choice = choose(count, thread);
        if (_choice < count) return thread;
        putOff(*thread);
    }
    return wakeOne();
}

// What a sleeping thread looks at has not changed, but its time goes on. Once it has looked in vain
// at all that was stored, it is not woken again if that only helps threads that are put off.
Explorer::Thread* Explorer::wakeOne()
{
    const bool isPutOff = std::any_of(_threads.begin(), _threads.end(),
                                      [this](const Thread* thread) { return isEnabled(*thread); });
    Thread* woken = nullptr;
    for (Thread* const thread : _threads)
    {
        if (thread->_isFinished || thread->_next._kind != Kind::Sleep) continue;
        if (isPutOff && thread->_storesAlone == _memory.getStoreCount()) continue;
        if (!woken || thread->_wokenAlone < woken->_wokenAlone) woken = thread;
    }
    if (!woken) return nullptr;
    ++woken->_wokenAlone;
    woken->_storesAlone = _memory.getStoreCount();
    _memory.catchUp(woken->_view);
    return woken;
}

Explorer::Thread* Explorer::nextOfAll()
{
    std::vector<Thread*> able;
    for (Thread* const thread : _threads)
        if (countChoices(*thread) != 0) able.push_back(thread);
    if (able.empty()) return wakeOne();
    Thread* const thread = able[static_cast<std::size_t>(choose(static_cast<int>(able.size())))];
    _choice = choose(std::max(countChoices(*thread), 1));
    return thread;
}

// Decisions for operations that may have been made differently, had this one come first.
void Explorer::want(const Operation& operation, int thread, const Times& cause)
{
    for (std::size_t i = 0; i < _depth; ++i)
    {
        Node& node = _path[i];
        if (!node._isOperation || node._isWanted || node._chosen == node._count) continue;
        if (node._thread == thread) continue;
        if (node._time <= cause[static_cast<std::size_t>(node._thread)]) continue;
        const bool isSame = node._address == operation._address;
        node._isWanted = (isSame && mayRead(node._kind) && mayWrite(operation._kind)) ||
                         (isLocking(node._kind) && isLocking(operation._kind) &&
                          node._mutex == operation._mutex) ||
                         (node._condition != 0 && node._condition == conditionOf(operation)) ||
                         (node._isSequential && isSequential(operation) &&
                          dependInOrder(node._kind, operation._kind));
    }
}

void Explorer::carryOut(Thread& thread)
{
    Operation& operation = thread._next;
    if (_depth >= _decided) want(operation, thread._view._thread, thread._view._cause);
    thread._isPutOff = false;
    thread._view.tick();
    switch (operation._kind)
    {
    case Kind::Begin:
        break;
    case Kind::Load:
    case Kind::Store:
    case Kind::Modify:
    case Kind::CompareExchange:
        access(thread, operation);
        break;
    case Kind::Fence:
    case Kind::LightFence:
    case Kind::HeavyFence:
        _memory.fence(thread._view, operation);
        break;
    case Kind::Lock:
    case Kind::WakeUp:
        lock(thread, operation);
        break;
    case Kind::Wait:
        wait(thread, operation);
        [[fallthrough]];
    case Kind::Unlock:
    {
        Shared& mutex = _shared[operation._mutex];
        if (mutex._owner != thread._view._thread) check("an unlock of another thread's mutex");
        mutex._owner = -1;
        mutex._view = thread._view;
        break;
    }
    case Kind::NotifyOne:
    case Kind::NotifyAll:
        notify(operation);
        break;
    case Kind::Join:
        for (const Thread* const other : _threads)
            if (operation._operand == ALL_THREADS || other == _threads[operation._operand])
                thread._view.join(other->_view);
        break;
    case Kind::Sleep:
        break;
    }
    thread._view.tick();
    _trace.push_back({thread._view._thread, operation});
}

void Explorer::access(Thread& thread, Operation& operation)
{
    if (operation._kind == Kind::Store)
    {
        const auto places = static_cast<int>(_memory.countPlaces(thread._view, operation));
        const int place = choose(places);
        _memory.writeTo(thread._view, operation, static_cast<std::size_t>(place));
        operation._value = operation._operand;
        passOn(thread, operation._address, operation._size);
        return;
    }
    Store& source = *_sources[static_cast<std::size_t>(_choice)];
    if (operation._site != 0) _memory.noteSites(thread._view, operation, source, _result._sites);
    operation._isDone = _memory.readFrom(thread._view, operation, source);
    if (operation._isDone) passOn(thread, operation._address, operation._size);
}

void Explorer::lock(Thread& thread, Operation& operation)
{
    Shared& mutex = _shared[operation._mutex];
    mutex._owner = thread._view._thread;
    ++mutex._count;
    thread._view.join(mutex._view);
    if (operation._kind != Kind::WakeUp) return;
    operation._isDone = thread._isNotified;
    if (!thread._isNotified) ++thread._expired;
    thread._isNotified = false;
    std::erase(_shared[operation._condition]._waiting, thread._view._thread);
}

void Explorer::wait(Thread& thread, const Operation& operation)
{
    Shared& condition = _shared[operation._condition];
    ++condition._count;
    condition._waiting.push_back(thread._view._thread);
}

void Explorer::notify(const Operation& operation)
{
    Shared& condition = _shared[operation._condition];
    ++condition._count;
    const auto notifyAt = [&](int i)
    {
        const auto place = condition._waiting.begin() + i;
        _threads[static_cast<std::size_t>(*place)]->_isNotified = true;
        condition._waiting.erase(place);
    };
    if (condition._waiting.empty()) return;
    if (operation._kind == Kind::NotifyOne)
        return notifyAt(choose(static_cast<int>(condition._waiting.size())));
    while (!condition._waiting.empty()) notifyAt(0);
}

std::uint64_t Explorer::perform(Operation operation, bool* isDone)
{
    Thread& thread = running();
    {
        const Outside outside(theCurrent);
        passOn();
        noteSite(operation);
        thread._next = operation;
        if (isAtomicAccess(operation._kind)) check(_memory.prepare(thread._view, operation));
    }
    thread._fiber.stop();
    if (isDone) *isDone = thread._next._isDone;
    return thread._next._value;
}

// The order as it is written is noted, and weakened if that is asked for.
void Explorer::noteSite(Operation& operation)
{
    const int strength = strengthOf(operation);
    if (operation._site == 0 || strength == 0) return;
    _result._allSites[operation._site] |= strength;
    // Whether an access orders anything is only known when it is made.
    if (!isAtomicAccess(operation._kind)) _result._sites[operation._site] |= strength;
    const auto found = _options._weakened.find(operation._site);
    if (found == _options._weakened.end() || (found->second & strength) == 0) return;
    if (strength == WithoutLightFence) operation._kind = Kind::Fence;
    const int left = strength & ~found->second;
    operation._order = left == WithoutAcquire   ? Acquire
                       : left == WithoutRelease ? Release
                                                : Relaxed;
    if (left != WithoutAcquire) operation._failureOrder = Relaxed;
}

int Explorer::chooseOne(int count)
{
    const Outside outside(theCurrent);
    return choose(count);
}

// A limit may be over at each of the first sleeps.
void Explorer::sleep(std::int64_t nanoseconds)
{
    const bool mayBeLong = running()._expired < _options._expiringWaits;
    const bool isLong = mayBeLong && chooseOne(2) == 1;
    setTime(getTime() + (isLong ? YEARS : nanoseconds));
    if (isLong)
    {
        ++running()._expired;
        return;
    }
    running()._storesBefore = _memory.getStoreCount();
    Operation operation;
    operation._kind = Kind::Sleep;
    perform(operation);
}

void Explorer::read(std::uintptr_t address, std::size_t size)
{
    if (size > LARGE) return;
    const Outside outside(theCurrent);
    check(_memory.read(running()._view, address, size));
}

void Explorer::write(std::uintptr_t address, std::size_t size)
{
    watch(address, size);
    if (size > LARGE) return;
    const Outside outside(theCurrent);
    check(_memory.write(running()._view, address, size));
}

void Explorer::release(std::uintptr_t address, std::size_t size)
{
    if (size > LARGE) return;
    const Outside outside(theCurrent);
    check(_memory.release(running()._view, address, size));
}

void Explorer::addOutcome(const std::string& text)
{
    const Outside outside(theCurrent);
    _outcome.append(_outcome.empty() ? "" : " ").append(text);
}

void Explorer::note(std::uint64_t what)
{
    if (!_options._watcher) return;
    const Outside outside(theCurrent);
    passOn();
    _options._watcher->noted(pointOf(running()), what);
}

// The call comes before the access: what it writes is there when the thread's next one comes.
void Explorer::watch(std::uintptr_t address, std::size_t size)
{
    if (!_options._watcher) return;
    const Outside outside(theCurrent);
    passOn();
    _watched = address;
    _watchedSize = size;
}

void Explorer::passOn()
{
    if (_watchedSize > 0) passOn(running(), _watched, _watchedSize);
    _watchedSize = 0;
}

void Explorer::passOn(const Thread& thread, std::uintptr_t address, std::size_t size) const
{
    if (!_options._watcher || !_options._watcher->includes(address)) return;
    _options._watcher->written(pointOf(thread), reinterpret_cast<const void*>(address), size);
}

Watcher::Point Explorer::pointOf(const Thread& thread)
{
    return {thread._view._thread, thread._view.time(), thread._view._cause.data()};
}

void Explorer::fail(const std::string& text)
{
    {
        const Outside outside(theCurrent);
        check(text.c_str());
    }
    running()._fiber.stop();
    std::terminate();
}

// The thread is stopped at its next operation; nothing is run after a violation.
void Explorer::check(const char* problem)
{
    if (!problem || !_result._violation.empty()) return;
    _result._violation = std::string(problem) + "\n" + describeTrace();
}

std::string Explorer::describeTrace() const
{
    static const char* const NAMES[] = {
        "begins",       "loads",        "stores", "changes", "compares", "fence",
        "light fence",  "heavy fence",  "locks",  "unlocks", "waits",    "wakes up",
        "notifies one", "notifies all", "joins",  "sleeps"};
    static const char* const ORDERS[] = {"relaxed", "consume",         "acquire",
                                         "release", "acquire-release", "sequential"};
    std::ostringstream text;
    for (const Step& step : _trace)
    {
        const Operation& operation = step._operation;
        text << "  thread " << step._thread << ' ' << NAMES[static_cast<int>(operation._kind)];
        const std::uintptr_t object = operation._address != 0     ? operation._address
                                      : operation._condition != 0 ? operation._condition
                                                                  : operation._mutex;
        if (object != 0) text << " 0x" << std::hex << object << std::dec;
        if (isAtomicAccess(operation._kind))
            text << ' ' << operation._value << ' ' << ORDERS[operation._order];
        if (operation._site != 0) text << " at 0x" << std::hex << operation._site << std::dec;
        text << '\n';
    }
    text << "  then thread " << _running << '\n';
    return text.str();
}

Result explore(const std::function<void()>& scenario, const Options& options)
{
    return Explorer(scenario, options).run();
}

void thread(std::function<void()> body)
{
    Explorer::current()->begin(std::move(body));
}

void join()
{
    Operation operation;
    operation._kind = Kind::Join;
    operation._operand = ALL_THREADS;
    Explorer::current()->perform(operation);
}

void require(bool condition, const char* text)
{
    if (!condition) Explorer::current()->fail(text);
}

void leaveOthers()
{
    Explorer::current()->leaveOthers();
}

void outcome(const std::string& text)
{
    Explorer::current()->addOutcome(text);
}

void note(std::uint64_t what)
{
    Explorer::current()->note(what);
}

bool heavyBarrier()
{
    Operation operation;
    operation._kind = Kind::HeavyFence;
    operation._order = Sequential;
    Explorer::current()->perform(operation);
    return true;
}

} // namespace model
