// The calls that the compiler puts in with -fsanitize=thread. Their names and parameters are those
// of the sanitizer's library. Outside of a scenario they do what the access does.

#include "explorer.h"
#include "operation.h"

#include <cstdint>
#include <cstring>

using model::Change;
using model::Explorer;
using model::Kind;
using model::Operation;
using model::Order;

namespace
{

void noteRead(const void* place, std::size_t size)
{
    if (Explorer* const explorer = Explorer::current())
        explorer->read(reinterpret_cast<std::uintptr_t>(place), size);
}

void noteWrite(const void* place, std::size_t size)
{
    if (Explorer* const explorer = Explorer::current())
        explorer->write(reinterpret_cast<std::uintptr_t>(place), size);
}

template <class Value>
Operation operationAt(Kind kind, const volatile Value* place, int order, void* site)
{
    Operation operation;
    operation._kind = kind;
    operation._address = reinterpret_cast<std::uintptr_t>(place);
    operation._size = sizeof(Value);
    operation._order = static_cast<Order>(order);
    operation._site = reinterpret_cast<model::Site>(site);
    return operation;
}

template <class Value> Value load(const volatile Value* place, int order, void* site)
{
    Explorer* const explorer = Explorer::current();
    if (!explorer) return __atomic_load_n(place, __ATOMIC_SEQ_CST);
    return static_cast<Value>(explorer->perform(operationAt(Kind::Load, place, order, site)));
}

template <class Value> void store(volatile Value* place, Value value, int order, void* site)
{
    Explorer* const explorer = Explorer::current();
    if (!explorer) return __atomic_store_n(place, value, __ATOMIC_SEQ_CST);
    Operation operation = operationAt(Kind::Store, place, order, site);
    operation._operand = value;
    explorer->perform(operation);
}

template <class Value>
Value modify(volatile Value* place, Value value, Change change, int order, void* site)
{
    Explorer* const explorer = Explorer::current();
    if (!explorer)
    {
        // A single thread.
        const Value old = *place;
        *place = static_cast<Value>(model::changed(change, old, value));
        return old;
    }
    Operation operation = operationAt(Kind::Modify, place, order, site);
    operation._change = change;
    operation._operand = value;
    return static_cast<Value>(explorer->perform(operation));
}

template <class Value>
bool compare(volatile Value* place, Value* expected, Value value, int order, int failureOrder,
             void* site)
{
    Explorer* const explorer = Explorer::current();
    if (!explorer)
        return __atomic_compare_exchange_n(place, expected, value, false, __ATOMIC_SEQ_CST,
                                           __ATOMIC_SEQ_CST);
    Operation operation = operationAt(Kind::CompareExchange, place, order, site);
    operation._failureOrder = static_cast<Order>(failureOrder);
    operation._expected = *expected;
    operation._operand = value;
    bool isDone = false;
    *expected = static_cast<Value>(explorer->perform(operation, &isDone));
    return isDone;
}

void fence(Kind kind, int order, void* site)
{
    Explorer* const explorer = Explorer::current();
    if (!explorer) return;
    Operation operation;
    operation._kind = kind;
    operation._order = static_cast<Order>(order);
    operation._site = reinterpret_cast<model::Site>(site);
    explorer->perform(operation);
}

} // namespace

#define SITE __builtin_return_address(0)

extern "C"
{

    void __tsan_init() {}
    void __tsan_func_entry(void*) {}
    void __tsan_func_exit() {}
    void __tsan_vptr_update(void** place, void*)
    {
        noteWrite(place, sizeof *place);
    }
    void __tsan_vptr_read(void** place)
    {
        noteRead(place, sizeof *place);
    }
    void __tsan_read_range(void* place, unsigned long size)
    {
        noteRead(place, size);
    }
    void __tsan_write_range(void* place, unsigned long size)
    {
        noteWrite(place, size);
    }

#define PLAIN(SIZE)                                                                                \
    void __tsan_read##SIZE(void* place)                                                            \
    {                                                                                              \
        noteRead(place, SIZE);                                                                     \
    }                                                                                              \
    void __tsan_write##SIZE(void* place)                                                           \
    {                                                                                              \
        noteWrite(place, SIZE);                                                                    \
    }                                                                                              \
    void __tsan_unaligned_read##SIZE(void* place)                                                  \
    {                                                                                              \
        noteRead(place, SIZE);                                                                     \
    }                                                                                              \
    void __tsan_unaligned_write##SIZE(void* place)                                                 \
    {                                                                                              \
        noteWrite(place, SIZE);                                                                    \
    }                                                                                              \
    void __tsan_read_write##SIZE(void* place)                                                      \
    {                                                                                              \
        noteWrite(place, SIZE);                                                                    \
    }                                                                                              \
    void __tsan_unaligned_read_write##SIZE(void* place)                                            \
    {                                                                                              \
        noteWrite(place, SIZE);                                                                    \
    }

    PLAIN(1)
    PLAIN(2)
    PLAIN(4)
    PLAIN(8)
    PLAIN(16)

#define MODIFY(BITS, NAME, CHANGE)                                                                 \
    std::uint##BITS##_t __tsan_atomic##BITS##_##NAME(volatile std::uint##BITS##_t* place,          \
                                                     std::uint##BITS##_t value, int order)         \
    {                                                                                              \
        return modify(place, value, Change::CHANGE, order, SITE);                                  \
    }

#define ATOMIC(BITS)                                                                               \
    std::uint##BITS##_t __tsan_atomic##BITS##_load(const volatile std::uint##BITS##_t* place,      \
                                                   int order)                                      \
    {                                                                                              \
        return load(place, order, SITE);                                                           \
    }                                                                                              \
    void __tsan_atomic##BITS##_store(volatile std::uint##BITS##_t* place,                          \
                                     std::uint##BITS##_t value, int order)                         \
    {                                                                                              \
        store(place, value, order, SITE);                                                          \
    }                                                                                              \
    MODIFY(BITS, exchange, Exchange)                                                               \
    MODIFY(BITS, fetch_add, Add)                                                                   \
    MODIFY(BITS, fetch_sub, Subtract)                                                              \
    MODIFY(BITS, fetch_and, And)                                                                   \
    MODIFY(BITS, fetch_or, Or)                                                                     \
    MODIFY(BITS, fetch_xor, Xor)                                                                   \
    MODIFY(BITS, fetch_nand, Nand)                                                                 \
    bool __tsan_atomic##BITS##_compare_exchange_strong(                                            \
        volatile std::uint##BITS##_t* place, std::uint##BITS##_t* expected,                        \
        std::uint##BITS##_t value, int order, int failureOrder)                                    \
    {                                                                                              \
        return compare(place, expected, value, order, failureOrder, SITE);                         \
    }                                                                                              \
    bool __tsan_atomic##BITS##_compare_exchange_weak(                                              \
        volatile std::uint##BITS##_t* place, std::uint##BITS##_t* expected,                        \
        std::uint##BITS##_t value, int order, int failureOrder)                                    \
    {                                                                                              \
        return compare(place, expected, value, order, failureOrder, SITE);                         \
    }                                                                                              \
    std::uint##BITS##_t __tsan_atomic##BITS##_compare_exchange_val(                                \
        volatile std::uint##BITS##_t* place, std::uint##BITS##_t expected,                         \
        std::uint##BITS##_t value, int order, int failureOrder)                                    \
    {                                                                                              \
        compare(place, &expected, value, order, failureOrder, SITE);                               \
        return expected;                                                                           \
    }

    ATOMIC(8)
    ATOMIC(16)
    ATOMIC(32)
    ATOMIC(64)

    void __tsan_atomic_thread_fence(int order)
    {
        fence(Kind::Fence, order, SITE);
    }

    // One for the compiler alone counts as the light partner of a heavy barrier.
    void __tsan_atomic_signal_fence(int order)
    {
        if (order == model::Sequential) fence(Kind::LightFence, model::Relaxed, SITE);
    }

    // What the linker puts in the place of the C library's functions.

    void* __real_memcpy(void* to, const void* from, std::size_t size);
    void* __real_memmove(void* to, const void* from, std::size_t size);
    void* __real_memset(void* to, int value, std::size_t size);
    int __real_memcmp(const void* a, const void* b, std::size_t size);
    void* __real_memchr(const void* text, int value, std::size_t size);
    std::size_t __real_strlen(const char* text);

    void* __wrap_memcpy(void* to, const void* from, std::size_t size)
    {
        noteRead(from, size);
        noteWrite(to, size);
        return __real_memcpy(to, from, size);
    }

    void* __wrap_memmove(void* to, const void* from, std::size_t size)
    {
        noteRead(from, size);
        noteWrite(to, size);
        return __real_memmove(to, from, size);
    }

    void* __wrap_memset(void* to, int value, std::size_t size)
    {
        noteWrite(to, size);
        return __real_memset(to, value, size);
    }

    int __wrap_memcmp(const void* a, const void* b, std::size_t size)
    {
        noteRead(a, size);
        noteRead(b, size);
        return __real_memcmp(a, b, size);
    }

    void* __wrap_memchr(const void* text, int value, std::size_t size)
    {
        void* const found = __real_memchr(text, value, size);
        const auto* const begin = static_cast<const char*>(text);
        noteRead(text,
                 found ? static_cast<std::size_t>(static_cast<char*>(found) - begin) + 1 : size);
        return found;
    }

    std::size_t __wrap_strlen(const char* text)
    {
        const std::size_t length = __real_strlen(text);
        noteRead(text, length + 1);
        return length;
    }

} // extern "C"
