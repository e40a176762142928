/// @file
/// What dates ask the platform. Internal to the library.

#ifndef ZU_BASE_OSDATEPLATFORM_H
#define ZU_BASE_OSDATEPLATFORM_H

#include <cstdint>
#include <optional>

/// Counts of 100-nanosecond ticks since the beginning of 1601.
namespace Zu::OsDatePlatform
{

/// The present time, UTC; to the millisecond.
std::uint64_t currentCount();

/// A count of local time as one of UTC; nothing if the platform refuses it.
std::optional<std::uint64_t> universalOf(std::uint64_t local);

/// A count of UTC as one of local time; as it is if the platform refuses it.
std::uint64_t localOf(std::uint64_t universal);

} // namespace Zu::OsDatePlatform

#endif
