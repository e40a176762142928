#include "fiber.h"

#include <cstdint>
#include <cstdlib>

namespace model
{

// Not cleared: most of it is never used.
Fiber::Fiber() : _stack(new char[SIZE]) {}

void Fiber::begin(void (*function)(void*), void* argument)
{
    _function = function;
    _argument = argument;
    _isBegun = false;
}

// The arguments of a context are numbers of 32 bits.
void Fiber::enter(unsigned high, unsigned low)
{
    auto* const fiber = reinterpret_cast<Fiber*>(static_cast<std::uintptr_t>(high) << 32 | low);
    fiber->_function(fiber->_argument);
    std::abort();
}

void Fiber::go()
{
    if (_setjmp(_caller) != 0) return;
    if (_isBegun) _longjmp(_here, 1);
    _isBegun = true;
    getcontext(&_context);
    _context.uc_stack.ss_sp = _stack.get();
    _context.uc_stack.ss_size = SIZE;
    _context.uc_link = nullptr;
    const auto self = reinterpret_cast<std::uintptr_t>(this);
    makecontext(&_context, reinterpret_cast<void (*)()>(&enter), 2,
                static_cast<unsigned>(self >> 32), static_cast<unsigned>(self));
    setcontext(&_context);
    std::abort();
}

void Fiber::stop()
{
    if (_setjmp(_here) == 0) _longjmp(_caller, 1);
}

} // namespace model
