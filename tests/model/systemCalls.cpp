// The calls to the system that a scenario makes: mutexes, condition variables, memory of the heap.
// Outside of a scenario there is a single thread.

#include "explorer.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <cxxabi.h>
#include <new>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

using model::Explorer;
using model::Kind;
using model::Operation;

namespace model
{

namespace Arena
{

namespace
{

constexpr std::size_t SIZE = 16 << 20;
constexpr std::size_t ALIGNMENT = 64;

// In front of each block is its size.
alignas(ALIGNMENT) char memory[SIZE];
std::size_t used = 0;

} // namespace

void reset()
{
    used = 0;
}

void* get(std::size_t size)
{
    const std::size_t whole = (size + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
    if (whole > SIZE || used + ALIGNMENT + whole > SIZE) throw std::bad_alloc();
    char* const block = memory + used + ALIGNMENT;
    used += ALIGNMENT + whole;
    std::memcpy(block - sizeof size, &size, sizeof size);
    return block;
}

bool contains(const void* place)
{
    const auto address = reinterpret_cast<std::uintptr_t>(place);
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    return address >= begin && address < begin + SIZE;
}

std::size_t sizeAt(const void* place)
{
    std::size_t size = 0;
    std::memcpy(&size, static_cast<const char*>(place) - sizeof size, sizeof size);
    return size;
}

} // namespace Arena

// The system's tool knows the sources of a program.
std::string describe(Site site)
{
    char path[4096];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    path[length < 0 ? 0 : length] = '\0';
    char command[4200];
    std::snprintf(command, sizeof command, "addr2line -C -f -i -e '%s' 0x%llx", path,
                  static_cast<unsigned long long>(site - 1));
    std::FILE* const output = popen(command, "r");
    std::string text;
    if (!output) return text;
    for (int c = std::getc(output); c != EOF; c = std::getc(output)) text += static_cast<char>(c);
    pclose(output);
    return text;
}

} // namespace model

namespace
{

Operation operationOn(Kind kind, const void* mutex, const void* condition)
{
    Operation operation;
    operation._kind = kind;
    operation._mutex = reinterpret_cast<std::uintptr_t>(mutex);
    operation._condition = reinterpret_cast<std::uintptr_t>(condition);
    return operation;
}

int perform(Kind kind, const void* mutex, const void* condition)
{
    if (Explorer* const explorer = Explorer::current())
        explorer->perform(operationOn(kind, mutex, condition));
    return 0;
}

constexpr std::int64_t SECOND = 1'000'000'000;

// The system's name of a thread, which is not 0.
pthread_t threadOf(std::uint64_t number)
{
    return number + 1;
}

int wait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* end)
{
    Explorer* const explorer = Explorer::current();
    if (!explorer) std::abort();
    explorer->perform(operationOn(Kind::Wait, mutex, condition));
    Operation operation = operationOn(Kind::WakeUp, mutex, condition);
    operation._mayExpire = end != nullptr;
    bool isNotified = false;
    explorer->perform(operation, &isNotified);
    if (isNotified) return 0;
    explorer->setTime(end->tv_sec * SECOND + end->tv_nsec);
    return ETIMEDOUT;
}

int sleep(const timespec* time)
{
    if (Explorer* const explorer = Explorer::current())
        explorer->sleep(time->tv_sec * SECOND + time->tv_nsec);
    return 0;
}

void* allocate(std::size_t size)
{
    if (Explorer::current()) return model::Arena::get(size);
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (!block) throw std::bad_alloc();
    return block;
}

void release(void* block)
{
    if (!model::Arena::contains(block)) return std::free(block);
    if (Explorer* const explorer = Explorer::current())
        explorer->release(reinterpret_cast<std::uintptr_t>(block), model::Arena::sizeAt(block));
}

} // namespace

extern "C"
{

    int pthread_mutex_lock(pthread_mutex_t* mutex)
    {
        return perform(Kind::Lock, mutex, nullptr);
    }

    int pthread_mutex_unlock(pthread_mutex_t* mutex)
    {
        return perform(Kind::Unlock, mutex, nullptr);
    }

    // It may fail for no reason.
    int pthread_mutex_trylock(pthread_mutex_t* mutex)
    {
        Explorer* const explorer = Explorer::current();
        if (explorer && explorer->chooseOne(2) == 1) return EBUSY;
        return perform(Kind::Lock, mutex, nullptr);
    }

    int pthread_create(pthread_t* thread, const pthread_attr_t*, void* (*start)(void*), void* with)
    {
        Explorer* const explorer = Explorer::current();
        if (!explorer) std::abort();
        *thread = threadOf(explorer->begin([start, with] { start(with); }));
        return 0;
    }

    int pthread_join(pthread_t thread, void**)
    {
        Explorer* const explorer = Explorer::current();
        if (!explorer) std::abort();
        Operation operation;
        operation._kind = Kind::Join;
        operation._operand = thread - threadOf(0);
        explorer->perform(operation);
        return 0;
    }

    // Outside of a scenario there is the first thread alone.
    pthread_t pthread_self()
    {
        const Explorer* const explorer = Explorer::current();
        return threadOf(explorer ? explorer->getRunning() : 0);
    }

    // The library's own look at the processor's counter.
    std::uint64_t __real__ZN2Zu9HwCounter9timeStampEv();

    std::uint64_t __wrap__ZN2Zu9HwCounter9timeStampEv()
    {
        Explorer* const explorer = Explorer::current();
        return explorer ? explorer->getTick() : __real__ZN2Zu9HwCounter9timeStampEv();
    }

    int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex)
    {
        return wait(condition, mutex, nullptr);
    }

    int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex,
                               const timespec* end)
    {
        return wait(condition, mutex, end);
    }

    int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t,
                               const timespec* end)
    {
        return wait(condition, mutex, end);
    }

    // In a scenario a clock advances with each look at it, and when a wait expires.
    int clock_gettime(clockid_t clock, timespec* time)
    {
        Explorer* const explorer = Explorer::current();
        if (!explorer) return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
        const std::int64_t now = explorer->getTime();
        *time = {now / SECOND, now % SECOND};
        return 0;
    }

    int clock_nanosleep(clockid_t, int, const timespec* time, timespec*)
    {
        return sleep(time);
    }

    int nanosleep(const timespec* time, timespec*)
    {
        return sleep(time);
    }

    int pthread_cond_signal(pthread_cond_t* condition)
    {
        return perform(Kind::NotifyOne, nullptr, condition);
    }

    int pthread_cond_broadcast(pthread_cond_t* condition)
    {
        return perform(Kind::NotifyAll, nullptr, condition);
    }

} // extern "C"

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    if (Explorer::current()) return model::Arena::get(size);
    const auto unit = static_cast<std::size_t>(alignment);
    void* const block = std::aligned_alloc(unit, (size + unit - 1) / unit * unit);
    if (!block) throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept
{
    release(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    release(block);
}

void operator delete(void* block, std::align_val_t) noexcept
{
    release(block);
}

void operator delete(void* block, std::size_t, std::align_val_t) noexcept
{
    release(block);
}

// The library's own checks.
namespace Zu
{

[[noreturn]] void internalAssertionFailed(const char* expression, const char* file, int line);

void internalAssertionFailed(const char* expression, const char* file, int line)
{
    if (Explorer::current()) model::require(false, expression);
    std::fprintf(stderr, "Assertion failed: %s, file %s, line %d\n", expression, file, line);
    std::abort();
}

} // namespace Zu
