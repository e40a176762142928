// What a target is: a function that takes an input through a part of the library, and says what
// must hold. The same source is a program of its own for the engine that looks for inputs, and a
// row of the test that runs over the corpora.

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

// The targets that are linked in, by their names.
std::map<std::string, Run>& targets();

struct Registration
{
    Registration(const char* name, Run run);
};

// What the test gets to know of a property that does not hold. It is of no family that a target
// may catch.
struct PropertyFailure
{
    std::string _text;
};

// Ends the program for the engine, which keeps the input then; the test gets a PropertyFailure.
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
