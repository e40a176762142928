// A visible operation of a thread.

#ifndef ZU_TESTS_MODEL_OPERATION_H
#define ZU_TESTS_MODEL_OPERATION_H

#include "modelChecker.h"

#include <cstdint>

namespace model
{

// As the compiler passes it: the values of std::memory_order.
enum Order
{
    Relaxed,
    Consume,
    Acquire,
    Release,
    AcquireRelease,
    Sequential
};

constexpr bool isAcquire(Order order)
{
    return order == Acquire || order == Consume || order >= AcquireRelease;
}

constexpr bool isRelease(Order order)
{
    return order >= Release;
}

enum class Kind
{
    Begin,
    Load,
    Store,
    Modify,
    CompareExchange,
    Fence,
    LightFence,
    HeavyFence,
    Lock,
    Unlock,
    // Registers the thread with the condition variable, and unlocks the mutex.
    Wait,
    // The rest of the wait: locks the mutex again.
    WakeUp,
    NotifyOne,
    NotifyAll,
    // Waits for the end of all other threads, or of the one that is its operand.
    Join,
    // A pause between two looks at something that other threads change.
    Sleep
};

constexpr std::uint64_t ALL_THREADS = ~std::uint64_t{0};

// What a read-modify-write does.
enum class Change
{
    Exchange,
    Add,
    Subtract,
    And,
    Or,
    Xor,
    Nand
};

constexpr std::uint64_t changed(Change change, std::uint64_t old, std::uint64_t operand)
{
    switch (change)
    {
    case Change::Add:
        return old + operand;
    case Change::Subtract:
        return old - operand;
    case Change::And:
        return old & operand;
    case Change::Or:
        return old | operand;
    case Change::Xor:
        return old ^ operand;
    case Change::Nand:
        return ~(old & operand);
    default:
        return operand;
    }
}

struct Operation
{
    Kind _kind = Kind::Begin;
    // Of the atomic object.
    std::uintptr_t _address = 0;
    std::uintptr_t _mutex = 0;
    std::uintptr_t _condition = 0;
    unsigned _size = 0;
    Order _order = Relaxed;
    Order _failureOrder = Relaxed;
    Change _change = Change::Exchange;
    std::uint64_t _operand = 0;
    std::uint64_t _expected = 0;
    // A wait that may end without having been woken.
    bool _mayExpire = false;
    Site _site = 0;
    // The value that was read; for a store, that was written.
    std::uint64_t _value = 0;
    // A comparison found what it expected; a wait was woken.
    bool _isDone = false;
};

constexpr bool isAtomicAccess(Kind kind)
{
    return kind >= Kind::Load && kind <= Kind::CompareExchange;
}

constexpr bool mayRead(Kind kind)
{
    return isAtomicAccess(kind) && kind != Kind::Store;
}

constexpr bool mayWrite(Kind kind)
{
    return isAtomicAccess(kind) && kind != Kind::Load;
}

constexpr bool isLocking(Kind kind)
{
    return kind == Kind::Lock || kind == Kind::WakeUp;
}

// The condition variable whose other operations matter to this one; 0 if there is none.
inline std::uintptr_t conditionOf(const Operation& operation)
{
    const bool isWakeUp = operation._kind == Kind::WakeUp && !operation._mayExpire;
    return isWakeUp ? 0 : operation._condition;
}

// Whether the operation is part of the order of sequentially consistent operations.
inline bool isSequential(const Operation& operation)
{
    if (operation._kind == Kind::LightFence || operation._kind == Kind::HeavyFence) return true;
    return operation._order == Sequential;
}

} // namespace model

#endif
