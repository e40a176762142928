// A fuzz target is a function that runs a part of the library on an input and states the properties
// that must be true. The same source is a separate program for the fuzzing engine, and a row of the
// test that runs over the corpora.

#ifndef ZU_FUZZ_FUZZTARGET_H
#define ZU_FUZZ_FUZZTARGET_H

#include "input.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace fuzz
{

using Run = void (*)(Input input);

// The linked targets by name.
std::map<std::string, Run>& targets();

struct Registration
{
    Registration(const char* name, Run run);
};

// Reports a violated property to the test. It belongs to no exception family that a target may
// catch.
struct PropertyFailure
{
    std::string _text;
};

// Ends the program of the engine, which then keeps the input; in the test raises PropertyFailure.
[[noreturn]] void fail(const char* property, const char* file, int line);

} // namespace fuzz

#define FUZZ_REQUIRE(property) ((property) ? void() : ::fuzz::fail(#property, __FILE__, __LINE__))

#ifdef FUZZ_WITH_ENGINE
#define FUZZ_TARGET(name, run)                                                                     \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)              \
    {                                                                                              \
        run(::fuzz::Input(data, size));                                                            \
        return 0;                                                                                  \
    }                                                                                              \
    static_assert(true)
#else
#define FUZZ_TARGET(name, run)                                                                     \
    static const ::fuzz::Registration theRegistration(#name, run);                                 \
    static_assert(true)
#endif

#endif
