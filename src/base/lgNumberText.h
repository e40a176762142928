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

/// The size of a buffer for a number that lgWriteUsualDouble() takes: sign, 16 digits, point, six
/// digits.
constexpr std::size_t LG_USUAL_DOUBLE_TEXT_SIZE = 24;

/// Does the same for the numbers that logs are full of, in about half the time: zeros, and absolute
/// values from 2^-11 to below 2^52. Returns null for others and writes nothing. The buffer must
/// have room for LG_USUAL_DOUBLE_TEXT_SIZE characters.
char* lgWriteUsualDouble(char* buffer, double value);

} // namespace Zu

#endif
