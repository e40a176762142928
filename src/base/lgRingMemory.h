/// @file
/// Memory for a ring that is not on the heap.

#ifndef ZU_BASE_LGRINGMEMORY_H
#define ZU_BASE_LGRINGMEMORY_H

#include "baseApi.h"

#include <cstdint>

namespace Zu
{

/// The memory of one ring, which the user of a queue provides: for instance in a file that outlives
/// the process. Elements are characters or LgQueue::Entry objects. All bytes are zero at first. The
/// memory may become usable step by step, from its beginning to its end, while the producer goes
/// through the ring for the first time.
///
/// It must outlive what uses it.
class ZU_BASE_API LgRingMemory
{
public:
    LgRingMemory(const LgRingMemory&) = delete;
    LgRingMemory& operator=(const LgRingMemory&) = delete;
    virtual ~LgRingMemory();

    /// Where the first element is.
    void* getBegin() const
    {
        return _begin;
    }

    /// How many elements the ring has: a power of two.
    std::uint32_t getSize() const
    {
        return _size;
    }

    /// How many elements can be used now.
    std::uint32_t getUsable() const
    {
        return _usable;
    }

    /// Makes at least `needed` elements usable if that is possible, and returns how many are now.
    /// Called by the producer, at most once per step; must not log.
    virtual std::uint32_t grow(std::uint32_t needed) = 0;

protected:
    /// `usable` is at least 64, and `size` unless all can be used only later.
    LgRingMemory(void* begin, std::uint32_t size, std::uint32_t usable)
        : _begin(begin), _size(size), _usable(usable)
    {
    }

    /// For grow().
    void setUsable(std::uint32_t usable)
    {
        _usable = usable;
    }

private:
    void* _begin;
    std::uint32_t _size;
    std::uint32_t _usable;
};

} // namespace Zu

#endif
