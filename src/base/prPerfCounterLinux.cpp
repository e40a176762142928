#include "base/prPerfCounter.h"

#include "base/prEx.h"

namespace Zu
{

// Nothing is published in this form here.
std::uint64_t prGetCounterValue(unsigned int, unsigned int, const char*)
{
    throw PrEx::ExUnsupported(__FILE__, __LINE__);
}

} // namespace Zu
