/// @file
/// The severity levels of the logger.

#ifndef ZU_BASE_LGTYPES_H
#define ZU_BASE_LGTYPES_H

#include "baseApi.h"

#include <cstdint>

/// Types used throughout the logger.
namespace Zu::LgTypes
{

/// How severe an event is, from the most severe level to Tracing. Profiling is not on that scale:
/// it is a separate switch.
enum Level : std::int32_t
{
    /// Can't be switched off.
    InternalError,
    /// Can't be switched off; the lowest threshold.
    FatalError,
    /// The least severe of the errors.
    Error,
    /// The threshold of groups unless another one is set.
    Warning,
    /// Less severe than a warning.
    Informational,
    /// The least severe level.
    Tracing,
    /// Switched on or off independently of the threshold.
    Profiling,
    /// How many levels there are.
    NUM_LEVELS
};

/// The bit of each level in the masks of groups. The last bit belongs to no level.
inline constexpr std::uint32_t levelBit[] = {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01};

/// The level's text as it appears in log lines: "Internal Error", "Fatal Error", "Error",
/// "Warning", "Informational", "Tracing" or "Profiling". Raises ExInternalError
/// "Assertion 'l < NUM_LEVELS' failed." for a value that is not a level.
ZU_BASE_API const char* levelToString(Level l);

/// The level with this text; letter case and every blank matter. Raises LgEx::InvalidLevelString
/// for any other text and ExInternalError "Assertion 's' failed." for null.
ZU_BASE_API Level stringToLevel(const char* s);

} // namespace Zu::LgTypes

#endif
