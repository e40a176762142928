/// @file
/// Numbers as they are shown.

#ifndef ZU_BASE_WITHOUTNANSIGN_H
#define ZU_BASE_WITHOUTNANSIGN_H

#include <limits>
#include <type_traits>

namespace Zu
{

/// The value, but for a NaN one without a sign: platforms write that sign or leave it out, and
/// texts are the same everywhere. What is no floating-point number stays as it is.
template <class T> constexpr T withoutNaNSign(const T& value) noexcept
{
    if constexpr (std::is_floating_point_v<T>)
        return value != value ? std::numeric_limits<T>::quiet_NaN() : value;
    else
        return value;
}

} // namespace Zu

#endif
