/// @file
/// Values from the performance data that the platform publishes. Internal to the library.

#ifndef ZU_BASE_PRPERFCOUNTER_H
#define ZU_BASE_PRPERFCOUNTER_H

#include <cstdint>
#include <functional>
#include <vector>

namespace Zu
{

/// One value of a counter of an object, both identified by the index of their name. `instance` must
/// be null for an object without instances, and only for such an object; otherwise the process ends
/// with the assertion "instance == 0" or "instance != 0". Raises what prCounterValueIn() raises,
/// and always PrEx::ExUnsupported where the platform publishes no such data.
std::uint64_t prGetCounterValue(unsigned int objectIndex, unsigned int counterIndex,
                                const char* instance);

/// What a query returns that had more data than room.
constexpr std::int32_t PR_MORE_DATA = 234;

/// Queries the data with this value name: fills the buffer, whose size in bytes is given, and
/// returns the platform's own code of success or failure.
using PrQuery =
    std::function<std::int32_t(const char* valueName, unsigned char* buffer, std::uint32_t size)>;

/// The data of an object, as the query returns them. The query is repeated while it returns
/// PR_MORE_DATA, with a buffer that starts at 8192 bytes and grows by 1024 each time. Any other
/// code, even a failure, leaves the buffer as it is; bytes that were not filled are 0. Raises
/// ExInternalError when the largest size is not enough. That size is far beyond what any system
/// has; it stops a source that always wants more from going on for hours.
std::vector<unsigned char> prPerformanceData(unsigned int objectIndex, const PrQuery& query,
                                             std::uint32_t largest = 16 * 1024 * 1024);

/// The value in a block of the format PERF_DATA_BLOCK. A length of 0, or one that leads outside the
/// enclosing record, ends the current walk, and the rest counts as missing.
///
/// Raises PrEx::ExBadCounterObjectIndex if the object isn't there, PrEx::ExBadCounterInstance if
/// the instance isn't, PrEx::ExBadCounterIndex if the counter or its value isn't,
/// PrEx::ExUnsupported if the value has no fixed length, and ExInternalError if it has none at all.
///
/// The platform's instance names have 16-bit characters, but are deliberately compared byte by byte
/// with `instance` and its terminator. In practice that limits `instance` to names of one
/// character, which select the first instance whose name begins with it.
std::uint64_t prCounterValueIn(const std::vector<unsigned char>& data, unsigned int objectIndex,
                               unsigned int counterIndex, const char* instance);

} // namespace Zu

#endif
