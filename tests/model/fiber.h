// A thread of a scenario: a stack of its own, on which it runs until it is stopped.

#ifndef ZU_TESTS_MODEL_FIBER_H
#define ZU_TESTS_MODEL_FIBER_H

#include <csetjmp>
#include <functional>
#include <memory>
#include <ucontext.h>

namespace model
{

class Fiber
{
public:
    Fiber();
    Fiber(const Fiber&) = delete;
    Fiber& operator=(const Fiber&) = delete;

    // Forgets what it was doing, and runs this from its next go() on. The function does not return:
    // in the end it calls stop() and is not continued.
    void begin(void (*function)(void*), void* argument);

    // Runs it until it calls stop().
    void go();

    // Returns from go(); the next go() goes on here.
    void stop();

private:
    static constexpr std::size_t SIZE = 512 * 1024;
    static void enter(unsigned high, unsigned low);

    std::unique_ptr<char[]> _stack;
    void (*_function)(void*) = nullptr;
    void* _argument = nullptr;
    bool _isBegun = false;
    ucontext_t _context;
    // A jump is cheaper than a change of contexts, which is a system call.
    jmp_buf _here;
    jmp_buf _caller;
};

} // namespace model

#endif
