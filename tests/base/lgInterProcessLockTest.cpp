#include "base/lgInterProcessLock.h"

#include "base/exSysError.h"
#include "base/objPtr.h"
#include "support/childProcess.h"
#include "support/errorCode.h"
#include "support/marker.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

using support::codeOf;
using support::onWindows;
using Zu::ExSysErrorWindows;
using Zu::LgInterProcessLock;
using Zu::LgInterProcessLockGuard;

using Lock = Zu::ObjPtr<LgInterProcessLock>;

// A name that no other test and no other run of this one uses.
std::string nameOf(const std::string& text)
{
    return "zuTest " + std::to_string(support::processId()) + " " + text;
}

Lock create(const std::string& name)
{
    return Lock(LgInterProcessLock::create(name.c_str()));
}

// Another process that carries out a command of lockProgram, step by step as the markers permit.
class Child
{
public:
    Child(const std::string& mode, const std::string& name, int rounds = 0)
        : _result(std::async(std::launch::async,
                             [this, mode, name, rounds]
                             {
                                 return support::runProgram(
                                     "lockProgram", {mode},
                                     {{"LOCK_NAME", name},
                                      {"LOCK_DIR", _dir.path()},
                                      {"LOCK_ROUNDS", std::to_string(rounds)}});
                             }))
    {
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    ~Child()
    {
        letGo();
    }

    // Waits until it has reached the point where it needs permission to continue. If it ends
    // before, reports why.
    testing::AssertionResult isReady()
    {
        while (_result.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
            if (support::isMarked(_dir.file("held"))) return testing::AssertionSuccess();
        const support::ProgramResult result = _result.get();
        return testing::AssertionFailure()
               << "it has ended with " << result.exitCode << ": " << result.err;
    }

    void letGo() const
    {
        support::setMarker(_dir.file("go"));
    }

    bool isLeaving() const
    {
        return support::isMarked(_dir.file("leaving"));
    }

    std::string file(const std::string& name) const
    {
        return _dir.file(name);
    }

    // Expects that it ends as it should.
    void join()
    {
        letGo();
        const support::ProgramResult result = _result.get();
        EXPECT_EQ(result.exitCode, 0) << result.err;
    }

private:
    support::TempDir _dir;
    std::future<support::ProgramResult> _result;
};

// Whether a thread that does not hold the lock can take it. Exceptions of the attempt are passed
// on.
bool isFree(LgInterProcessLock& lock)
{
    std::future<void> taken = std::async(std::launch::async,
                                         [&]
                                         {
                                             lock.lock();
                                             lock.unlock();
                                         });
    if (taken.wait_for(support::PATIENCE) == std::future_status::ready)
    {
        taken.get();
        return true;
    }
    // The thread must not wait for ever.
    lock.unlock();
    return false;
}

// Increments a number in several threads, each step within `guarded`. The result is correct if no
// two were inside at the same time.
void expectExclusion(const std::function<void(const std::function<void()>&)>& guarded)
{
    constexpr int threads = 4;
    constexpr int rounds = 500;
    // Read and written in two steps, between which others may come; atomic for no other reason.
    std::atomic<int> number = 0;
    const auto step = [&]
    {
        const int old = number;
        std::this_thread::yield();
        number = old + 1;
    };
    std::vector<std::future<void>> workers;
    for (int i = 0; i < threads; ++i)
    {
        workers.push_back(std::async(std::launch::async,
                                     [&]
                                     {
                                         for (int round = 0; round < rounds; ++round) guarded(step);
                                     }));
    }
    for (std::future<void>& worker : workers) worker.get();
    EXPECT_EQ(number, threads * rounds);
}

TEST(LgInterProcessLock, AnotherProcessWaitsForTheHolder)
{
    // Slashes and characters that file names can't have are as good as others.
    const std::string name = nameOf("odd/../%2F:*?\"<>|");
    Child child("hold", name);
    ASSERT_TRUE(child.isReady());
    const Lock lock = create(name);
    std::atomic<bool> isTrying = false;
    std::future<bool> wasLeaving = std::async(std::launch::async,
                                              [&]
                                              {
                                                  isTrying = true;
                                                  const LgInterProcessLockGuard guard(lock.get());
                                                  return child.isLeaving();
                                              });
    while (!isTrying) std::this_thread::yield();
    child.letGo();
    EXPECT_TRUE(wasLeaving.get());
    child.join();
}

TEST(LgInterProcessLock, AnotherNameIsAnotherLockForAnotherProcess)
{
    Child child("hold", nameOf("one"));
    ASSERT_TRUE(child.isReady());
    const Lock lock = create(nameOf("other"));
    EXPECT_TRUE(isFree(*lock));
    // It was free while the other process held its own.
    EXPECT_FALSE(child.isLeaving());
    child.join();
}

// Every step has its own lock object, so the lock is also made and destroyed again and again.
TEST(LgInterProcessLock, ProcessesAndThreadsExcludeEachOtherWhileLocksComeAndGo)
{
    constexpr int rounds = 150;
    const std::string name = nameOf("number");
    Child child("count", name, rounds);
    ASSERT_TRUE(child.isReady());
    const auto count = [&]
    {
        for (int i = 0; i < rounds; ++i)
        {
            const Lock lock = create(name);
            const LgInterProcessLockGuard guard(lock.get());
            int number = 0;
            std::ifstream(child.file("number")) >> number;
            std::ofstream(child.file("number")) << number + 1;
        }
    };
    child.letGo();
    std::future<void> one = std::async(std::launch::async, count);
    std::future<void> two = std::async(std::launch::async, count);
    one.get();
    two.get();
    child.join();
    int number = 0;
    std::ifstream(child.file("number")) >> number;
    EXPECT_EQ(number, 3 * rounds);
}

TEST(LgInterProcessLock, ThreadsExcludeEachOther)
{
    const Lock lock = create(nameOf("threads"));
    expectExclusion(
        [&](const std::function<void()>& step)
        {
            const LgInterProcessLockGuard guard(lock.get());
            step();
        });
}

TEST(LgInterProcessLock, ObjectsOfOneNameAreOneLock)
{
    const Lock one = create(nameOf("same"));
    const Lock other = create(nameOf("same"));
    std::atomic<unsigned int> turn = 0;
    expectExclusion(
        [&](const std::function<void()>& step)
        {
            const LgInterProcessLockGuard guard((turn++ % 2 ? one : other).get());
            step();
        });
    // So a thread that holds it by one object has it by the other too.
    one->lock();
    other->lock();
    one->unlock();
    other->unlock();
    EXPECT_TRUE(isFree(*one));
    EXPECT_NE(codeOf([&] { other->unlock(); }), 0);
}

TEST(LgInterProcessLock, TheHolderMayTakeItAgainAndReleasesItAsOften)
{
    const Lock lock = create(nameOf("recursion"));
    expectExclusion(
        [&](const std::function<void()>& step)
        {
            const LgInterProcessLockGuard outer(lock.get());
            {
                const LgInterProcessLockGuard inner(lock.get());
                const LgInterProcessLockGuard innermost(lock.get());
            }
            step();
        });
    EXPECT_NE(codeOf([&] { lock->unlock(); }), 0);
    EXPECT_TRUE(isFree(*lock));
}

TEST(LgInterProcessLock, NamesOfDifferentTextAreDifferentLocks)
{
    const std::string name = nameOf("a/b");
    const Lock held = create(name);
    held->lock();
    const std::vector<std::string> others = {
        nameOf("a/B"),   nameOf("ab"),    nameOf("a/b "),    nameOf("a/b/"), nameOf("a//b"),
        nameOf("a%2Fb"), nameOf("a%2fb"), nameOf("a%252Fb"), nameOf("a_b"),  nameOf("a-b"),
        nameOf("a.b"),   nameOf("a/"),    nameOf("b"),       nameOf(""),     " " + name};
    for (const std::string& other : others) EXPECT_TRUE(isFree(*create(other))) << other;
    // Long names are significant to their ends.
    const std::string longName = nameOf(std::string(150, 'x'));
    const Lock longHeld = create(longName + "1");
    longHeld->lock();
    EXPECT_TRUE(isFree(*create(longName + "2")));
    longHeld->unlock();
    held->unlock();
    EXPECT_TRUE(isFree(*create(name)));
}

// Windows keeps its locks in object directories, which a backslash separates.
TEST(LgInterProcessLock, ABackslashIsACharacterLikeOthersExceptOnWindows)
{
    const std::string name = nameOf("no such directory") + "\\lock";
    if (onWindows)
    {
        EXPECT_THROW(create(name), ExSysErrorWindows);
        return;
    }
    const Lock held = create(name);
    held->lock();
    EXPECT_TRUE(isFree(*create(nameOf("no such directory") + "/lock")));
    EXPECT_TRUE(isFree(*create(nameOf("no such directory") + "lock")));
    held->unlock();
    EXPECT_TRUE(isFree(*held));
}

TEST(LgInterProcessLock, ALockThatCannotBeMadeRaises)
{
    EXPECT_NE(codeOf([] { create(nameOf(std::string(5000, 'x'))); }), 0);
}

TEST(LgInterProcessLock, WithoutANameItIsALockOfThisProcessAndNoOther)
{
    const Lock lock(LgInterProcessLock::create(nullptr));
    expectExclusion(
        [&](const std::function<void()>& step)
        {
            const LgInterProcessLockGuard outer(lock.get());
            {
                const LgInterProcessLockGuard inner(lock.get());
            }
            step();
        });
    const Lock other(LgInterProcessLock::create(nullptr));
    lock->lock();
    EXPECT_TRUE(isFree(*other));
    lock->unlock();
    EXPECT_NE(codeOf([&] { lock->unlock(); }), 0);
}

TEST(LgInterProcessLock, OnlyTheHolderMayRelease)
{
    const Lock lock = create(nameOf("release"));
    EXPECT_THROW(lock->unlock(), ExSysErrorWindows);
    EXPECT_NE(codeOf([&] { lock->unlock(); }), 0);
    lock->lock();
    const auto unlockInThread = [&] {
        return std::async(std::launch::async, [&] { return codeOf([&] { lock->unlock(); }); })
            .get();
    };
    EXPECT_NE(unlockInThread(), 0);
    EXPECT_EQ(codeOf([&] { lock->unlock(); }), 0);
    EXPECT_NE(codeOf([&] { lock->unlock(); }), 0);
    EXPECT_TRUE(isFree(*lock));
}

// The first one after the holder's death gets an exception, and not the lock.
void expectToldOnce(LgInterProcessLock& lock)
{
    EXPECT_NE(codeOf([&] { lock.lock(); }), 0);
    EXPECT_NE(codeOf([&] { lock.unlock(); }), 0);
    EXPECT_TRUE(isFree(lock));
    EXPECT_EQ(codeOf([&] { lock.lock(); }), 0);
    EXPECT_EQ(codeOf([&] { lock.lock(); }), 0);
    EXPECT_EQ(codeOf([&] { lock.unlock(); }), 0);
    EXPECT_EQ(codeOf([&] { lock.unlock(); }), 0);
    EXPECT_TRUE(isFree(lock));
}

TEST(LgInterProcessLock, AProcessThatDiedHoldingItIsToldToTheNextTakerOnce)
{
    const std::string name = nameOf("dead process");
    const Lock lock = create(name);
    for (int death = 0; death < 2; ++death)
    {
        Child child("die", name);
        ASSERT_TRUE(child.isReady());
        child.join();
        expectToldOnce(*lock);
    }
}

TEST(LgInterProcessLock, AThreadThatEndedHoldingItIsToldToTheNextTakerOnce)
{
    const Lock lock = create(nameOf("dead thread"));
    std::thread([&] { lock->lock(); }).join();
    expectToldOnce(*lock);
    const Lock nameless(LgInterProcessLock::create(nullptr));
    std::thread([&] { nameless->lock(); }).join();
    expectToldOnce(*nameless);
}

TEST(LgInterProcessLock, OfThoseWhoWaitWhenTheHolderDiesOneIsTold)
{
    const std::string name = nameOf("waiting");
    Child child("die", name);
    ASSERT_TRUE(child.isReady());
    const Lock lock = create(name);
    std::atomic<int> trying = 0;
    std::atomic<int> told = 0;
    std::vector<std::future<void>> waiting;
    for (int i = 0; i < 3; ++i)
    {
        waiting.push_back(std::async(std::launch::async,
                                     [&]
                                     {
                                         ++trying;
                                         if (codeOf([&] { lock->lock(); }) != 0)
                                             ++told;
                                         else
                                             lock->unlock();
                                     }));
    }
    while (trying < 3) std::this_thread::yield();
    child.join();
    for (std::future<void>& one : waiting) one.get();
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(isFree(*lock));
}

// Nobody else had the lock when its holder died: the next one may get an exception, but is not
// locked out.
TEST(LgInterProcessLock, ADeadUserWhoWasAloneKeepsNobodyOut)
{
    const std::string name = nameOf("alone");
    Child child("die", name);
    child.join();
    const Lock lock = create(name);
    if (codeOf([&] { lock->lock(); }) == 0) lock->unlock();
    EXPECT_TRUE(isFree(*lock));
}

// Counts its calls; the two operations raise on demand.
class FakeLock : public LgInterProcessLock
{
public:
    void lock() override
    {
        ++_locked;
        if (_lockRaises) throw std::range_error("lock");
    }

    void unlock() override
    {
        ++_unlocked;
        if (_unlockRaises) throw std::domain_error("unlock");
    }

    int _locked = 0;
    int _unlocked = 0;
    bool _lockRaises = false;
    bool _unlockRaises = false;
};

TEST(LgInterProcessLockGuard, HoldsTheLockForItsScope)
{
    FakeLock lock;
    {
        const LgInterProcessLockGuard guard(&lock);
        EXPECT_EQ(lock._locked, 1);
        EXPECT_EQ(lock._unlocked, 0);
    }
    EXPECT_EQ(lock._locked, 1);
    EXPECT_EQ(lock._unlocked, 1);
}

TEST(LgInterProcessLockGuard, WithoutALockDoesNothing)
{
    EXPECT_NO_THROW(LgInterProcessLockGuard(nullptr));
}

TEST(LgInterProcessLockGuard, ReleasesOnTheWayOutOfAnException)
{
    const Lock real = create(nameOf("unwinding"));
    FakeLock fake;
    const auto leave = [&]
    {
        const LgInterProcessLockGuard one(&fake);
        const LgInterProcessLockGuard other(real.get());
        throw std::length_error("scope");
    };
    EXPECT_THROW(leave(), std::length_error);
    EXPECT_EQ(fake._unlocked, 1);
    EXPECT_TRUE(isFree(*real));
    EXPECT_NE(codeOf([&] { real->unlock(); }), 0);
}

TEST(LgInterProcessLockGuard, WhatLockingRaisesLeavesTheConstructorAndNothingIsReleased)
{
    FakeLock lock;
    lock._lockRaises = true;
    EXPECT_THROW(LgInterProcessLockGuard{&lock}, std::range_error);
    EXPECT_EQ(lock._unlocked, 0);
}

TEST(LgInterProcessLockGuard, WhatReleasingRaisesLeavesTheDestructor)
{
    FakeLock lock;
    lock._unlockRaises = true;
    EXPECT_THROW(LgInterProcessLockGuard{&lock}, std::domain_error);
    EXPECT_EQ(lock._unlocked, 1);
    // The same from a real lock, which somebody released before.
    const Lock real = create(nameOf("released"));
    const auto release = [&]
    {
        const LgInterProcessLockGuard guard(real.get());
        real->unlock();
    };
    EXPECT_THROW(release(), ExSysErrorWindows);
}

TEST(LgInterProcessLockGuard, WhatReleasingRaisesGivesWayToTheExceptionUnderWay)
{
    FakeLock lock;
    lock._unlockRaises = true;
    const auto leave = [&]
    {
        const LgInterProcessLockGuard guard(&lock);
        throw std::length_error("scope");
    };
    EXPECT_THROW(leave(), std::length_error);
    EXPECT_EQ(lock._unlocked, 1);
}

// An owner of a lock passes on what the lock's end raises.
TEST(LgInterProcessLock, ItsEndMayRaise)
{
    struct RaisingAtEnd : FakeLock
    {
        ~RaisingAtEnd() noexcept(false) override
        {
            throw std::domain_error("end");
        }
    };
    EXPECT_THROW(Lock(new RaisingAtEnd), std::domain_error);
}

} // namespace
