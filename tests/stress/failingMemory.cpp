#include "stress/failingMemory.h"

#include "stress/hardEnd.h"

#include <cstdlib>
#include <new>

namespace stress
{

constinit thread_local int countdown = 0;
std::atomic<bool> isMemoryGone{false};
constinit thread_local bool isSpared = false;
std::atomic<int> unsparedCountdown{0};

namespace
{

bool isRefused()
{
    if (countdown > 0 && --countdown == 0) return true;
    if (isSpared) return false;
    if (unsparedCountdown > 0 && --unsparedCountdown == 0) return true;
    return isMemoryGone;
}

void* allocate(std::size_t size)
{
    return isRefused() ? nullptr : std::malloc(size > 0 ? size : 1);
}

void* allocate(std::size_t size, std::align_val_t alignment)
{
    if (isRefused()) return nullptr;
    return allocateAligned(size > 0 ? size : 1, static_cast<std::size_t>(alignment));
}

void* orRaise(void* memory)
{
    if (!memory) throw std::bad_alloc();
    return memory;
}

} // namespace
} // namespace stress

// All forms are replaced: a sanitizer supplies any that are left out, and those do not match ours.

void* operator new(std::size_t size)
{
    return stress::orRaise(stress::allocate(size));
}

void* operator new[](std::size_t size)
{
    return stress::orRaise(stress::allocate(size));
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return stress::orRaise(stress::allocate(size, alignment));
}

void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return stress::orRaise(stress::allocate(size, alignment));
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return stress::allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return stress::allocate(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    stress::freeAligned(memory);
}

void operator delete[](void* memory, std::align_val_t) noexcept
{
    stress::freeAligned(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    stress::freeAligned(memory);
}

void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept
{
    stress::freeAligned(memory);
}
