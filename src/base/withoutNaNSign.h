/// @file
/// Numbers as they are shown.

#ifndef ZU_BASE_WITHOUTNANSIGN_H
#define ZU_BASE_WITHOUTNANSIGN_H

#include <limits>
#include <type_traits>

namespace Zu
{

/// The value, but a NaN without its sign: platforms differ in whether they write it, and texts must
/// be the same everywhere. A value that is not a floating-point number is returned unchanged.
template <class T> constexpr T withoutNaNSign(const T& value) noexcept
{
    if constexpr (std::is_floating_point_v<T>)
        // Only a NaN is not less than or equal to infinity.
        return value <= std::numeric_limits<T>::infinity() ? value
                                                           : std::numeric_limits<T>::quiet_NaN();
    else
        return value;
}

} // namespace Zu

#endif
