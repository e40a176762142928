/// @file
/// The platform calls under dates. Internal to the library.

#ifndef ZU_BASE_OSDATEPLATFORM_H
#define ZU_BASE_OSDATEPLATFORM_H

#include <cstdint>
#include <optional>

/// Counts of 100-nanosecond ticks since the beginning of 1601.
namespace Zu::OsDatePlatform
{

/// The present time in UTC, to the millisecond.
std::uint64_t currentCount();

/// Converts a count of local time to UTC; nothing if the platform refuses it.
std::optional<std::uint64_t> universalOf(std::uint64_t local);

/// Converts a count of UTC to local time; returns it unchanged if the platform refuses it.
std::uint64_t localOf(std::uint64_t universal);

} // namespace Zu::OsDatePlatform

#endif
