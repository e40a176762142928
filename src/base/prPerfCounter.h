/// @file
/// Values from the performance data that the platform publishes. Internal to the library.

#ifndef ZU_BASE_PRPERFCOUNTER_H
#define ZU_BASE_PRPERFCOUNTER_H

#include <cstdint>
#include <functional>
#include <vector>

namespace Zu
{

/// One value of a counter of an object, both known by the index of their name. `instance` is null
/// for an object without instances; that it is null exactly there is a fatal assertion,
/// "instance == 0" or "instance != 0". Raises what prCounterValueIn() does; always
/// PrEx::ExUnsupported where the platform publishes no such data.
std::uint64_t prGetCounterValue(unsigned int objectIndex, unsigned int counterIndex,
                                const char* instance);

/// What a query answers that had more data than room.
constexpr std::int32_t PR_MORE_DATA = 234;

/// Asks for the data with this value name: fills the buffer, of which so many bytes are given, and
/// returns the platform's own code of success or failure.
using PrQuery =
    std::function<std::int32_t(const char* valueName, unsigned char* buffer, std::uint32_t size)>;

/// The data of an object as the query gives them: it is repeated with a buffer of 8192 bytes and
/// 1024 more each time while it returns PR_MORE_DATA. Any other code, a failure as well, leaves the
/// buffer as it is; what was not filled is 0. Raises ExInternalError when the
/// largest size is not enough: far beyond what any system has, since a source that always wants
/// more must not go on for hours.
std::vector<unsigned char> prPerformanceData(unsigned int objectIndex, const PrQuery& query,
                                             std::uint32_t largest = 16 * 1024 * 1024);

/// The value in a block of the format PERF_DATA_BLOCK. A length of 0, or one that leads out of what
/// it is part of, ends the walk that it is met in, and the rest counts as not there.
///
/// Raises PrEx::ExBadCounterObjectIndex if the object isn't there, PrEx::ExBadCounterInstance if
/// the instance isn't, PrEx::ExBadCounterIndex if the counter or its value isn't,
/// PrEx::ExUnsupported if the value has no fixed length, and ExInternalError if it has none at all.
///
/// The platform's names of instances are in characters of 16 bits, but compared byte by byte with
/// `instance` and its terminator: deliberately so. In practice that leaves `instance` names of one
/// character, of which the first instance that begins with it is taken.
std::uint64_t prCounterValueIn(const std::vector<unsigned char>& data, unsigned int objectIndex,
                               unsigned int counterIndex, const char* instance);

} // namespace Zu

#endif
