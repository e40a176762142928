#include "base/rnStdRand.h"

#include <cstdlib>

namespace Zu
{

static_assert(RAND_MAX == 32767);

int rnStdRand()
{
    return std::rand();
}

void rnStdSeed(unsigned int seed)
{
    std::srand(seed);
}

} // namespace Zu
