/// @file
/// Numbers as text, without the machinery of formatted output. Internal to the library.

#ifndef ZU_BASE_LGNUMBERTEXT_H
#define ZU_BASE_LGNUMBERTEXT_H

#include <cstddef>

namespace Zu
{

/// The size of a buffer for any double: sign, 309 digits, point, six digits.
constexpr std::size_t LG_DOUBLE_TEXT_SIZE = 320;

/// Writes `value` with six decimals as `printf("%f")` does, rounded from its exact value with ties
/// to even, and returns the end of the text, which is not terminated. A NaN is "nan", without a
/// sign. The buffer must have room for LG_DOUBLE_TEXT_SIZE characters.
char* lgWriteDouble(char* buffer, double value);

} // namespace Zu

#endif
