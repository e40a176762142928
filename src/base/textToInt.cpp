#include "base/textToInt.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <limits>

namespace Zu
{

int textToInt(const char* text)
{
    using Limits = std::numeric_limits<int>;
    const int savedError = errno;
    const long long number = std::strtoll(text, nullptr, 10);
    errno = savedError;
    return static_cast<int>(std::clamp<long long>(number, Limits::min(), Limits::max()));
}

} // namespace Zu
