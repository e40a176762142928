/// @file
/// A position in a ring that one thread moves and another reads.

#ifndef ZU_BASE_LGRINGINDEX_H
#define ZU_BASE_LGRINGINDEX_H

#include <atomic>
#include <cstdint>

namespace Zu
{

/// A position from 0 to the size of a ring minus one; all arithmetic wraps. The size is a power of
/// two.
///
/// Thread-safety: one thread writes, any may read. A store is a release and a load an acquire, so
/// anything written before a position was moved is visible to a thread that has seen it moved.
/// There is no read-modify-write.
class LgRingIndex
{
public:
    /// The beginning of a ring of this size, a power of two.
    explicit LgRingIndex(std::uint32_t size) noexcept : _mask(size - 1), _value(0) {}

    /// @{
    /// The same position in a ring of the same size.
    LgRingIndex(const LgRingIndex& other) noexcept : _mask(other._mask), _value(other.get()) {}

    LgRingIndex& operator=(const LgRingIndex& other) noexcept
    {
        _mask = other._mask;
        set(other.get());
        return *this;
    }
    /// @}

    /// Moves to `value` modulo the size.
    LgRingIndex& operator=(std::uint32_t value) noexcept
    {
        set(value);
        return *this;
    }

    /// The position.
    std::uint32_t get() const noexcept
    {
        return _value.load(std::memory_order_acquire);
    }

    /// The same for the thread that writes it, which needs no synchronisation.
    std::uint32_t own() const noexcept
    {
        return _value.load(std::memory_order_relaxed);
    }

    /// The same as get().
    operator std::uint32_t() const noexcept
    {
        return get();
    }

    /// @{
    /// One step forward, or back.
    LgRingIndex& operator++() noexcept
    {
        set(get() + 1);
        return *this;
    }

    LgRingIndex& operator--() noexcept
    {
        set(get() - 1);
        return *this;
    }
    /// @}

    /// The position before the step.
    std::uint32_t operator++(int) noexcept
    {
        const std::uint32_t before = get();
        set(before + 1);
        return before;
    }

    /// The position before the step.
    std::uint32_t operator--(int) noexcept
    {
        const std::uint32_t before = get();
        set(before - 1);
        return before;
    }

    /// The position `count` places ahead.
    std::uint32_t plus(std::uint32_t count) const noexcept
    {
        return (get() + count) & _mask;
    }

    /// The position `count` places back.
    std::uint32_t minus(std::uint32_t count) const noexcept
    {
        return (get() - count) & _mask;
    }

    /// How many steps forward lead to `position`.
    std::uint32_t distanceTo(std::uint32_t position) const noexcept
    {
        return (position - get()) & _mask;
    }

    /// Where the position itself stands.
    const void* place() const noexcept
    {
        return &_value;
    }

    /// The size of the ring.
    std::uint32_t size() const noexcept
    {
        return _mask + 1;
    }

private:
    void set(std::uint32_t value) noexcept
    {
        _value.store(value & _mask, std::memory_order_release);
    }

    std::uint32_t _mask;
    std::atomic<std::uint32_t> _value;
};

} // namespace Zu

#endif
