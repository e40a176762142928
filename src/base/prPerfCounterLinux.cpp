#include "base/prPerfCounter.h"

#include "base/prEx.h"

namespace Zu
{

// This platform publishes nothing in this form.
std::uint64_t prGetCounterValue(unsigned int, unsigned int, const char*)
{
    throw PrEx::ExUnsupported(__FILE__, __LINE__);
}

} // namespace Zu
