#include "base/internalAssert.h"

#include <cstdio>
#include <cstdlib>

namespace Zu
{

void internalAssertionFailed(const char* expression, const char* file, int line)
{
    std::fprintf(stderr, "Assertion failed: %s, file %s, line %d\n", expression, file, line);
    std::fflush(stderr);
    std::abort();
}

} // namespace Zu
